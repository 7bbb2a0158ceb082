#include "thunderbird_executor.h"

#include "identifiers.h"

#include <QDir>

namespace velino {
namespace {

const QString flatpakId = QStringLiteral("org.mozilla.Thunderbird");

DraftFailure failed(const QString &message) {
    DraftFailure failure;
    failure.message = message;
    failure.number = 5;
    return failure;
}

DraftFailure notPrepared() {
    DraftFailure failure;
    failure.notPrepared = true;
    return failure;
}

} // namespace

QString thunderbirdComposeValue(const QString &value) {
    // Letters, digits and "-._~" are kept by default.
    return QString::fromLatin1(value.toUtf8().toPercentEncoding("@/+:"));
}

QString thunderbirdComposeArgument(const QString &recipient, const QString &sender,
                                   const QString &subject, const QString &messagePath) {
    return QStringLiteral("to=") + thunderbirdComposeValue(recipient) + QStringLiteral(",from=") +
           thunderbirdComposeValue(sender) + QStringLiteral(",subject=") +
           thunderbirdComposeValue(subject) + QStringLiteral(",format=html,message=") +
           thunderbirdComposeValue(messagePath);
}

bool ThunderbirdExecutor::findApplication() {
    if (const std::optional<QString> program =
            launcher_.findProgram(QStringLiteral("thunderbird"))) {
        command_ = Command{*program, {}, QString()};
        return true;
    }
    if (const std::optional<QString> flatpak = launcher_.findProgram(QStringLiteral("flatpak"))) {
        const ProgramLauncher::Result info =
            launcher_.run(*flatpak, {QStringLiteral("info"), flatpakId});
        if (info.started && info.exitCode == 0) {
            command_ = Command{*flatpak,
                               {QStringLiteral("run"), flatpakId},
                               QDir::homePath() + QStringLiteral("/.var/app/") + flatpakId +
                                   QStringLiteral("/cache/velino")};
            return true;
        }
    }
    command_.reset();
    return false;
}

std::optional<DraftFailure> ThunderbirdExecutor::runDraft(const MailDraft &draft) {
    if (!command_ && !findApplication())
        return notPrepared();

    const QString directory =
        command_->draftDirectory.isEmpty() ? fileSystem_.privateFolder() : command_->draftDirectory;
    if (directory.isEmpty())
        return notPrepared();
    const QString path = QDir(directory).filePath(QStringLiteral("velino-brouillon-") +
                                                  uuidText(ids_.newId()) + QStringLiteral(".html"));
    const QString argument =
        thunderbirdComposeArgument(draft.recipient, draft.sender, draft.subject, path);
    if (argument.size() > maxThunderbirdArgumentLength)
        return failed(QStringLiteral("L'objet ou les adresses sont trop longs pour Thunderbird."));

    if (!fileSystem_.writePrivateUtf8(path, draft.html))
        return notPrepared();

    QStringList arguments = command_->leadingArguments;
    arguments << QStringLiteral("-compose") << argument;
    if (!launcher_.startDetached(command_->program, arguments))
        return failed(QStringLiteral("Thunderbird n'a pas pu etre lance pour creer le brouillon."));
    return std::nullopt;
}

} // namespace velino
