#include "render_request.h"

#include "json_reader.h"
#include "mail_template_context.h"
#include "rendered_mail_json.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace velino::cli {

const char kUsage[] =
    "usage : velino-render [--default] [--repair] [--preset devis|pret|rdv|relance] "
    "[--format json|html|text|subject|record] [FICHIER|-]\n";

RenderOptions parseRenderArguments(const QStringList &arguments) {
    RenderOptions options;
    bool inputGiven = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments[i];
        const auto nextValue = [&]() {
            if (i + 1 >= arguments.size())
                throw BadInput{QStringLiteral("l'option %1 attend une valeur.").arg(arg), true};
            return arguments[++i];
        };
        if (arg == u"--default") {
            options.useDefault = true;
        } else if (arg == u"--repair") {
            options.repair = true;
        } else if (arg == u"--preset") {
            const QString id = nextValue();
            options.preset = presetKindFromId(id);
            if (!options.preset)
                throw BadInput{QStringLiteral("preset inconnu : \"%1\" (attendu : devis, pret, "
                                              "rdv ou relance).")
                                   .arg(id)};
        } else if (arg == u"--format") {
            options.format = nextValue();
            static const QStringList formats = {QStringLiteral("json"), QStringLiteral("html"),
                                                QStringLiteral("text"), QStringLiteral("subject"),
                                                QStringLiteral("record")};
            if (!formats.contains(options.format))
                throw BadInput{QStringLiteral("format inconnu : \"%1\".").arg(options.format),
                               true};
        } else if (arg.startsWith(u"--")) {
            throw BadInput{QStringLiteral("option inconnue : %1.").arg(arg), true};
        } else if (!inputGiven) {
            options.input = arg;
            inputGiven = true;
        } else {
            throw BadInput{QStringLiteral("un seul fichier d'entree est accepte."), true};
        }
    }
    if (options.useDefault && inputGiven)
        throw BadInput{QStringLiteral("--default ne lit aucun fichier."), true};
    return options;
}

MailComposerData decodeRenderInput(const QByteArray &bytes) {
    if (!bytes.isValidUtf8())
        throw BadInput{QStringLiteral("l'entree n'est pas du texte UTF-8 valide.")};
    QString error;
    const std::optional<QJsonObject> object = parseJsonObject(bytes, &error);
    if (!object)
        throw BadInput{error + u'.'};
    std::optional<MailComposerData> record = MailComposerData::fromJson(*object, QString(), &error);
    if (!record)
        throw BadInput{QStringLiteral("fiche invalide, ") + error + u'.'};
    return *record;
}

QByteArray renderOutput(const RenderOptions &options, MailComposerData record) {
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

} // namespace velino::cli
