// velino-render: renders one content record (JSON) to the e-mail, its text version, subject,
// checklist and status. Bad input gives one French line on stderr and exit status 2;
// nothing is printed on stdout unless the whole result is ready.

#include "json_reader.h"
#include "mail_composer_data.h"
#include "mail_template_context.h"
#include "rendered_mail_json.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <optional>

using namespace velino;

namespace {

constexpr int kBadInput = 2;

const char kUsage[] =
    "usage : velino-render [--default] [--repair] [--preset devis|pret|rdv|relance] "
    "[--format json|html|text|subject|record] [FICHIER|-]\n";

struct Options {
    bool useDefault = false;
    bool repair = false;
    std::optional<PresetKind> preset;
    QString format = QStringLiteral("json");
    QString input = QStringLiteral("-");
};

class BadInput {
public:
    explicit BadInput(QString message, bool showUsage = false)
        : message(std::move(message)), showUsage(showUsage) {}
    QString message;
    bool showUsage;
};

Options parseArguments(int argc, char **argv) {
    Options options;
    bool inputGiven = false;
    for (int i = 1; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        const auto nextValue = [&]() {
            if (i + 1 >= argc)
                throw BadInput(QStringLiteral("l'option %1 attend une valeur.").arg(arg), true);
            return QString::fromLocal8Bit(argv[++i]);
        };
        if (arg == u"--default") {
            options.useDefault = true;
        } else if (arg == u"--repair") {
            options.repair = true;
        } else if (arg == u"--preset") {
            const QString id = nextValue();
            options.preset = presetKindFromId(id);
            if (!options.preset)
                throw BadInput(QStringLiteral("preset inconnu : \"%1\" (attendu : devis, pret, "
                                              "rdv ou relance).")
                                   .arg(id));
        } else if (arg == u"--format") {
            options.format = nextValue();
            static const QStringList formats = {QStringLiteral("json"), QStringLiteral("html"),
                                                QStringLiteral("text"), QStringLiteral("subject"),
                                                QStringLiteral("record")};
            if (!formats.contains(options.format))
                throw BadInput(QStringLiteral("format inconnu : \"%1\".").arg(options.format),
                               true);
        } else if (arg.startsWith(u"--")) {
            throw BadInput(QStringLiteral("option inconnue : %1.").arg(arg), true);
        } else if (!inputGiven) {
            options.input = arg;
            inputGiven = true;
        } else {
            throw BadInput(QStringLiteral("un seul fichier d'entree est accepte."), true);
        }
    }
    if (options.useDefault && inputGiven)
        throw BadInput(QStringLiteral("--default ne lit aucun fichier."), true);
    return options;
}

QByteArray readInput(const QString &path) {
    QFile file;
    const bool opened = path == u"-" ? file.open(stdin, QIODevice::ReadOnly)
                                     : (file.setFileName(path), file.open(QIODevice::ReadOnly));
    if (!opened)
        throw BadInput(QStringLiteral("impossible de lire %1 : %2.")
                           .arg(path == u"-" ? QStringLiteral("l'entree standard") : path,
                                file.errorString()));
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw BadInput(
            QStringLiteral("lecture interrompue de %1 : %2.").arg(path, file.errorString()));
    return bytes;
}

MailComposerData readRecord(const Options &options) {
    if (options.useDefault)
        return MailComposerData::defaultRecord();
    const QByteArray bytes = readInput(options.input);
    if (!bytes.isValidUtf8())
        throw BadInput(QStringLiteral("l'entree n'est pas du texte UTF-8 valide."));
    QString error;
    const std::optional<QJsonObject> object = parseJsonObject(bytes, &error);
    if (!object)
        throw BadInput(error + u'.');
    std::optional<MailComposerData> record = MailComposerData::fromJson(*object, QString(), &error);
    if (!record)
        throw BadInput(QStringLiteral("fiche invalide, ") + error + u'.');
    return *record;
}

QByteArray render(const Options &options, MailComposerData record) {
    if (options.repair)
        record.normalizeLegacyTextFields();
    if (options.preset)
        record.applyPreset(*options.preset);
    if (options.format == u"record")
        return QJsonDocument(record.toJson()).toJson(QJsonDocument::Compact) + '\n';

    const MailTemplateContext context(std::move(record));
    if (options.format == u"html")
        return context.htmlDocument().toUtf8();
    if (options.format == u"text")
        return context.plainText().toUtf8();
    if (options.format == u"subject")
        return context.subject.toUtf8();
    return QJsonDocument(renderedMailJson(context)).toJson(QJsonDocument::Compact) + '\n';
}

bool writeAll(const QByteArray &bytes) {
    return std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout) ==
               static_cast<size_t>(bytes.size()) &&
           std::fflush(stdout) == 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        const Options options = parseArguments(argc, argv);
        const QByteArray output = render(options, readRecord(options));
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
