#pragma once

#include "mail_app_executor.h"

#include <QByteArray>

namespace velino {

// What osascript reported on its standard error after a failed run.
struct OsascriptError {
    std::optional<QString> message; // trimmed, never empty
    std::optional<int> number;
};

// Reads lines such as "<stdin>:210:236: execution error: Mail got an error: Not authorized
// to send Apple events to Mail. (-1743)": the message follows the first "error: ", the
// number is the parenthesised integer that ends the text. Without the marker the whole text
// is the message.
OsascriptError parseOsascriptError(const QByteArray &standardError);

// Apple Mail on macOS, driven by the system's command-line tools:
// - finding: osascript runs a short JavaScript for Automation program asking the workspace
//   (LaunchServices) for the application with bundle identifier "com.apple.mail". Unlike
//   mdfind it does not depend on Spotlight indexing, and unlike `id of application "Mail"`
//   it never shows the "Where is Mail?" chooser when Mail is missing;
// - launching: `open -b com.apple.mail`, detached, its outcome never observed;
// - the draft: `osascript -` with the AppleScript program on standard input, run to the end.
class AppleMailExecutor final : public MailAppExecutor {
public:
    explicit AppleMailExecutor(ProgramLauncher &launcher) : launcher_(launcher) {}

    bool findApplication() override;
    void launchApplication() override;
    std::optional<DraftFailure> runDraft(const MailDraft &draft) override;

private:
    ProgramLauncher &launcher_;
};

} // namespace velino
