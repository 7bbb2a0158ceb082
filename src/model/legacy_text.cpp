#include "legacy_text.h"

#include "mail_composer_data.h"

#include "default_texts.h"
#include "text.h"

#include <array>
#include <utility>

namespace velino {
namespace {

// Former highlight lines of the built-in presets and the current line replacing each.
const std::array<std::pair<QString, QString>, 9> &legacyCopyReplacements() {
    static const std::array<std::pair<QString, QString>, 9> table = {{
        {QStringLiteral("Palette Korvel integree · Lecture parfaite sur iPhone et ordinateur"),
         texts::highlightDevis()},
        {QStringLiteral("Lecture parfaite sur iPhone et ordinateur · Reponse simple par email"),
         texts::highlightDevis()},
        {QStringLiteral("Devis clair · Delai estime · Reponse directe par email"),
         texts::highlightDevis()},
        {QStringLiteral("Retrait possible aujourd'hui · Reglement CB ou especes"),
         texts::highlightPret()},
        {QStringLiteral("Appareil disponible · Retrait simple · Korvel"), texts::highlightPret()},
        {QStringLiteral("Mail simple · Informations claires · Relecture rapide sur mobile"),
         texts::highlightRdv()},
        {QStringLiteral("Creneau confirme · Accueil atelier Korvel"), texts::highlightRdv()},
        {QStringLiteral("Ton pro et fluide · Reprise de contact sans lourdeur"),
         texts::highlightRelance()},
        {QStringLiteral("Demande toujours ouverte chez Korvel"), texts::highlightRelance()},
    }};
    return table;
}

// [A-Za-z\u00C0-\u00FF0-9]
bool isPlusNeighbour(QChar c) {
    const char16_t u = c.unicode();
    return (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z') || (u >= '0' && u <= '9') ||
           (u >= 0xC0 && u <= 0xFF);
}

// A "+" between two letters or digits, in a text with no blank: the plus stood for a blank.
bool plusStandsForBlank(QStringView trimmedText) {
    if (!trimmedText.contains(u'+') || trimmedText.contains(u' '))
        return false;
    for (qsizetype i = 1; i + 1 < trimmedText.size(); ++i) {
        if (trimmedText[i] == u'+' && isPlusNeighbour(trimmedText[i - 1]) &&
            isPlusNeighbour(trimmedText[i + 1]))
            return true;
    }
    return false;
}

} // namespace

std::optional<QString> percentDecoded(const QString &text) {
    if (!text.contains(u'%'))
        return text;
    const QByteArray utf8 = text.toUtf8();
    QByteArray bytes;
    bytes.reserve(utf8.size());
    for (qsizetype i = 0; i < utf8.size(); ++i) {
        if (utf8[i] != '%') {
            bytes.append(utf8[i]);
            continue;
        }
        if (i + 2 >= utf8.size())
            return std::nullopt;
        const int high = text::hexDigitValue(static_cast<unsigned char>(utf8[i + 1]));
        const int low = text::hexDigitValue(static_cast<unsigned char>(utf8[i + 2]));
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.append(static_cast<char>(high * 16 + low));
        i += 2;
    }
    if (!bytes.isValidUtf8())
        return std::nullopt;
    return QString::fromUtf8(bytes);
}

QString normalizeLegacyText(const QString &text) {
    QString decoded = percentDecoded(text).value_or(text);
    if (plusStandsForBlank(text::trimmedView(decoded)))
        decoded.replace(u'+', u' ');

    // The former lines are in normalisation form C: compare with the key's own form C.
    const QString key = text::nfc(text::trimmed(decoded));
    for (const auto &[former, current] : legacyCopyReplacements()) {
        if (key == former)
            return current;
    }
    return decoded;
}

void MailComposerData::normalizeLegacyTextFields() {
    for (QString MailComposerData::*member :
         {&MailComposerData::recipientName,   &MailComposerData::subject,
          &MailComposerData::preheader,       &MailComposerData::mailTitle,
          &MailComposerData::mailIntro,       &MailComposerData::mailBody,
          &MailComposerData::highlight,       &MailComposerData::detailLabel1,
          &MailComposerData::detailValue1,    &MailComposerData::detailLabel2,
          &MailComposerData::detailValue2,    &MailComposerData::detailLabel3,
          &MailComposerData::detailValue3,    &MailComposerData::detailLabel4,
          &MailComposerData::detailValue4,    &MailComposerData::ctaLabel,
          &MailComposerData::closingNote,     &MailComposerData::businessName,
          &MailComposerData::businessTagline, &MailComposerData::senderName,
          &MailComposerData::senderRole,      &MailComposerData::footerNote}) {
        this->*member = normalizeLegacyText(this->*member);
    }
}

} // namespace velino
