#include "apple_mail_executor.h"

#include "text.h"

#include <QRegularExpression>

namespace velino {
namespace {

const QString osascript = QStringLiteral("/usr/bin/osascript");
const QString open = QStringLiteral("/usr/bin/open");
const QString mailBundleId = QStringLiteral("com.apple.mail");

// Prints the application's path, or an empty line when no application has the identifier.
const QString findMailProgram =
    QStringLiteral("ObjC.import('AppKit');"
                   "var url = $.NSWorkspace.sharedWorkspace.URLForApplicationWithBundleIdentifier("
                   "'com.apple.mail');"
                   "(!url || url.isNil()) ? '' : url.path.js");

} // namespace

OsascriptError parseOsascriptError(const QByteArray &standardError) {
    OsascriptError error;
    QString message = text::trimmed(QString::fromUtf8(standardError));
    const QString marker = QStringLiteral("error: ");
    if (const qsizetype at = message.indexOf(marker); at >= 0)
        message = message.mid(at + marker.size());

    static const QRegularExpression trailingNumber(QStringLiteral("\\((-?\\d+)\\)\\s*$"));
    if (const QRegularExpressionMatch match = trailingNumber.match(message); match.hasMatch()) {
        bool ok = false;
        const int number = match.captured(1).toInt(&ok);
        if (ok)
            error.number = number;
        message.truncate(match.capturedStart());
    }
    message = text::trimmed(message);
    if (!message.isEmpty())
        error.message = message;
    return error;
}

bool AppleMailExecutor::findApplication() {
    const ProgramLauncher::Result result =
        launcher_.run(osascript, {QStringLiteral("-l"), QStringLiteral("JavaScript"),
                                  QStringLiteral("-e"), findMailProgram});
    return result.started && result.exitCode == 0 &&
           !text::isBlank(QString::fromUtf8(result.standardOutput));
}

void AppleMailExecutor::launchApplication() {
    launcher_.startDetached(open, {QStringLiteral("-b"), mailBundleId});
}

std::optional<DraftFailure> AppleMailExecutor::runDraft(const MailDraft &draft) {
    const ProgramLauncher::Result result =
        launcher_.run(osascript, {QStringLiteral("-")}, draft.script.toUtf8());
    if (!result.started) {
        DraftFailure failure;
        failure.notPrepared = true;
        return failure;
    }
    if (result.exitCode == 0)
        return std::nullopt;
    const OsascriptError error = parseOsascriptError(result.standardError);
    DraftFailure failure;
    failure.message = error.message;
    failure.number = error.number;
    return failure;
}

} // namespace velino
