#pragma once

#include "mail_app_executor.h"

#include <QStringList>

namespace velino {

// One value of Thunderbird's -compose argument. Thunderbird splits that argument at every
// comma outside quotes, then takes a value written between single quotes literally and
// passes every other value through decodeURIComponent. A quoted value ends at the first
// quote followed by a comma, so it cannot hold "',"; unquoted, percent-encoded values have no
// such limit. So each value is written unquoted, with every UTF-8 byte outside the ASCII
// letters, the digits and "-._~@/+:" as "%" and two upper-case hexadecimal digits: quotes,
// commas, equals signs, percent signs, line breaks and non-ASCII letters all arrive intact,
// and the argument is plain ASCII whatever the locale.
QString thunderbirdComposeValue(const QString &value);

// "to=…,from=…,subject=…,format=html,message=…", each value encoded as above; the message is
// the path of a UTF-8 file holding the HTML document. It starts with "to=", one of the
// prefixes by which Thunderbird recognises a -compose argument.
QString thunderbirdComposeArgument(const QString &recipient, const QString &sender,
                                   const QString &subject, const QString &messagePath);

// Longest -compose argument handed to Thunderbird; Linux refuses single arguments of 128 KiB
// and more.
inline constexpr qsizetype maxThunderbirdArgumentLength = 100000;

// Thunderbird on Linux (and on any other system that is not macOS):
// - finding: the `thunderbird` program on PATH, else the Flatpak org.mozilla.Thunderbird
//   when `flatpak info org.mozilla.Thunderbird` succeeds (then run as
//   `flatpak run org.mozilla.Thunderbird`);
// - launching: nothing; the compose command starts Thunderbird or hands the draft to the
//   running instance, whereas a separate start just before it could race for the profile;
// - the draft: the HTML is written to a new file, then `thunderbird -compose …` is started
//   detached (a first instance keeps running until Thunderbird is closed), so only a failed
//   start can be reported. The file is left in place: Thunderbird reads it later, once its
//   compose window opens.
// The file goes to the file system's private folder, which a Snap package reads as well
// (it sees neither /tmp nor hidden folders); the Flatpak gets it in its own
// ~/.var/app/org.mozilla.Thunderbird/cache/velino, which it sees at the same path. Either
// folder is private to the user, and so is the file.
class ThunderbirdExecutor final : public MailAppExecutor {
public:
    ThunderbirdExecutor(ProgramLauncher &launcher, FileSystem &fileSystem, IdGenerator &ids)
        : launcher_(launcher), fileSystem_(fileSystem), ids_(ids) {}

    bool findApplication() override;
    void launchApplication() override {}
    std::optional<DraftFailure> runDraft(const MailDraft &draft) override;

private:
    struct Command {
        QString program;
        QStringList leadingArguments;
        QString draftDirectory; // empty: the file system's private folder
    };

    ProgramLauncher &launcher_;
    FileSystem &fileSystem_;
    IdGenerator &ids_;
    std::optional<Command> command_;
};

} // namespace velino
