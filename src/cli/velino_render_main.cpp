// velino-render: renders one content record (JSON) to the e-mail, its text version, subject,
// checklist and status. Bad input gives one French line on stderr and exit status 2;
// nothing is printed on stdout unless the whole result is ready.

#include "render_request.h"

#include <QFile>
#include <QStringList>

#include <cstdio>
#include <new>

using namespace velino;
using namespace velino::cli;

namespace {

constexpr int kBadInput = 2;

QByteArray readInput(const QString &path) {
    QFile file;
    const bool opened = path == u"-" ? file.open(stdin, QIODevice::ReadOnly)
                                     : (file.setFileName(path), file.open(QIODevice::ReadOnly));
    if (!opened)
        throw BadInput{QStringLiteral("impossible de lire %1 : %2.")
                           .arg(path == u"-" ? QStringLiteral("l'entree standard") : path,
                                file.errorString())};
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw BadInput{
            QStringLiteral("lecture interrompue de %1 : %2.").arg(path, file.errorString())};
    return bytes;
}

bool writeAll(const QByteArray &bytes) {
    return std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout) ==
               static_cast<size_t>(bytes.size()) &&
           std::fflush(stdout) == 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        QStringList arguments;
        for (int i = 1; i < argc; ++i)
            arguments.append(QString::fromLocal8Bit(argv[i]));
        const RenderOptions options = parseRenderArguments(arguments);
        MailComposerData record = options.useDefault ? MailComposerData::defaultRecord()
                                                     : decodeRenderInput(readInput(options.input));
        const QByteArray output = renderOutput(options, std::move(record));
        if (!writeAll(output)) {
            std::fputs("velino-render : ecriture impossible sur la sortie standard.\n", stderr);
            return 1;
        }
        return 0;
    } catch (const BadInput &bad) {
        const QByteArray line = "velino-render : " + bad.message.toUtf8() + '\n';
        std::fputs(line.constData(), stderr);
        if (bad.showUsage)
            std::fputs(kUsage, stderr);
        return kBadInput;
    } catch (const std::bad_alloc &) {
        std::fputs("velino-render : memoire insuffisante pour cette entree.\n", stderr);
        return kBadInput;
    }
}
