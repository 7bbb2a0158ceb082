#pragma once

#include "platform_services.h"

#include <QString>

#include <memory>
#include <optional>

namespace velino {

// One draft, as the bridge hands it to the mail application.
struct MailDraft {
    QString subject;   // as rendered, untrimmed
    QString recipient; // trimmed, never empty
    QString sender;    // trimmed, never empty
    QString html;      // the complete HTML document
    QString script;    // the AppleScript program carrying the four values (mailDraftScript)
};

// Why a draft could not be created.
struct DraftFailure {
    // The draft could not even be handed over (no script engine, no temporary file).
    bool notPrepared = false;
    // What the mail application or its script engine said, when it said anything.
    std::optional<QString> message;
    std::optional<int> number;
};

// The half of the bridge that depends on the platform: finds the desktop mail application,
// launches it and creates the draft. Every external program goes through a ProgramLauncher
// and every file through a FileSystem.
class MailAppExecutor {
public:
    virtual ~MailAppExecutor() = default;
    // True when the mail application is installed.
    virtual bool findApplication() = 0;
    // Launches or activates the application without waiting for it.
    virtual void launchApplication() = 0;
    // Creates the visible draft; nothing on success.
    virtual std::optional<DraftFailure> runDraft(const MailDraft &draft) = 0;
};

enum class MailPlatform { MacOS, Linux };

// The platform this build runs on; Linux stands for every system that is not macOS.
MailPlatform currentMailPlatform();

// Apple Mail through osascript on macOS, Thunderbird elsewhere. The services must outlive
// the executor.
std::unique_ptr<MailAppExecutor> makeMailAppExecutor(MailPlatform platform,
                                                     ProgramLauncher &launcher,
                                                     FileSystem &fileSystem, IdGenerator &ids);

} // namespace velino
