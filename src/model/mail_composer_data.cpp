#include "mail_composer_data.h"

#include "default_texts.h"
#include "json_reader.h"
#include "text.h"

#include <QJsonValue>

namespace velino {

namespace {

const std::array<MailComposerData::Field, 31> kFields = {{
    {u"recipientName", &MailComposerData::recipientName},
    {u"recipientEmail", &MailComposerData::recipientEmail},
    {u"subject", &MailComposerData::subject},
    {u"preheader", &MailComposerData::preheader},
    {u"mailTitle", &MailComposerData::mailTitle},
    {u"mailIntro", &MailComposerData::mailIntro},
    {u"mailBody", &MailComposerData::mailBody},
    {u"highlight", &MailComposerData::highlight},
    {u"detailLabel1", &MailComposerData::detailLabel1},
    {u"detailValue1", &MailComposerData::detailValue1},
    {u"detailLabel2", &MailComposerData::detailLabel2},
    {u"detailValue2", &MailComposerData::detailValue2},
    {u"detailLabel3", &MailComposerData::detailLabel3},
    {u"detailValue3", &MailComposerData::detailValue3},
    {u"detailLabel4", &MailComposerData::detailLabel4},
    {u"detailValue4", &MailComposerData::detailValue4},
    {u"ctaLabel", &MailComposerData::ctaLabel},
    {u"ctaURL", &MailComposerData::ctaURL},
    {u"closingNote", &MailComposerData::closingNote},
    {u"logoURL", &MailComposerData::logoURL},
    {u"accentPrimary", &MailComposerData::accentPrimary},
    {u"accentSecondary", &MailComposerData::accentSecondary},
    {u"titleFont", &MailComposerData::titleFont},
    {u"bodyFont", &MailComposerData::bodyFont},
    {u"businessName", &MailComposerData::businessName},
    {u"businessTagline", &MailComposerData::businessTagline},
    {u"senderName", &MailComposerData::senderName},
    {u"senderRole", &MailComposerData::senderRole},
    {u"senderPhone", &MailComposerData::senderPhone},
    {u"senderEmail", &MailComposerData::senderEmail},
    {u"footerNote", &MailComposerData::footerNote},
}};

} // namespace

const std::array<MailComposerData::Field, 31> &MailComposerData::fields() {
    return kFields;
}

const MailComposerData::Field *MailComposerData::field(QStringView name) {
    for (const Field &f : kFields) {
        if (f.name == name)
            return &f;
    }
    return nullptr;
}

MailComposerData MailComposerData::blank() {
    return MailComposerData{};
}

MailComposerData MailComposerData::defaultRecord() {
    MailComposerData d;
    d.recipientName = QStringLiteral("Mme Lambert");
    d.recipientEmail = QLatin1String(kDefaultClientEmail);
    d.subject = texts::defaultSubject();
    d.preheader = texts::defaultPreheader();
    d.mailTitle = texts::defaultMailTitle();
    d.mailIntro = texts::defaultMailIntro();
    d.mailBody = texts::defaultMailBody();
    d.highlight = texts::highlightDevis();
    d.detailLabel1 = QStringLiteral("Appareil");
    d.detailValue1 = QStringLiteral("iPhone 14 Pro");
    d.detailLabel2 = QStringLiteral("Intervention");
    d.detailValue2 = QStringLiteral("Remplacement ecran OLED");
    d.detailLabel3 = QStringLiteral("Montant");
    d.detailValue3 = QStringLiteral("149,95 EUR");
    d.detailLabel4 = QStringLiteral("Delai");
    d.detailValue4 = QStringLiteral("Sous 24 heures");
    d.ctaLabel = QStringLiteral("Repondre a ce mail");
    d.ctaURL = texts::workshopMailto();
    d.closingNote = QStringLiteral("Si vous souhaitez valider, il vous suffit de repondre a ce "
                                   "message. Nous restons disponibles si vous avez la moindre "
                                   "question.");
    d.logoURL = fallbackLogoURL();
    d.accentPrimary = fallbackPrimary();
    d.accentSecondary = fallbackSecondary();
    d.titleFont = fallbackTitleFont();
    d.bodyFont = fallbackBodyFont();
    d.businessName = QStringLiteral("Korvel");
    d.businessTagline = QStringLiteral("Reparation appareils · iPhone, iPad, Mac");
    d.senderName = QStringLiteral("Jules Marchand");
    d.senderRole = QStringLiteral("Atelier Korvel");
    d.senderPhone = QStringLiteral("06 12 34 56 78");
    d.senderEmail = QLatin1String(kWorkshopContactEmail);
    d.footerNote =
        QStringLiteral("Merci pour votre confiance. Ce message a ete prepare depuis VELINO.");
    return d;
}

QString MailComposerData::fallbackLogoURL() {
    return QLatin1String(kFallbackLogoURL);
}
QString MailComposerData::fallbackPrimary() {
    return texts::defaultPrimary();
}
QString MailComposerData::fallbackSecondary() {
    return texts::defaultSecondary();
}
QString MailComposerData::fallbackTitleFont() {
    return texts::defaultTitleFont();
}
QString MailComposerData::fallbackBodyFont() {
    return texts::defaultBodyFont();
}

QJsonObject MailComposerData::toJson() const {
    QJsonObject object;
    for (const Field &f : kFields)
        object.insert(f.name, this->*f.member);
    return object;
}

void MailComposerData::writeJson(JsonWriter &writer) const {
    writer.beginObject();
    for (const Field &f : kFields) {
        writer.key(f.name);
        writer.string(this->*f.member);
    }
    writer.endObject();
}

std::optional<MailComposerData> MailComposerData::fromJson(const QJsonObject &object,
                                                           const QString &path, QString *error) {
    JsonReader reader(object, path, error);
    MailComposerData d;
    for (const Field &f : kFields) {
        d.*f.member = reader.string(f.name);
        if (!reader.ok())
            return std::nullopt;
    }
    return d;
}

bool MailComposerData::operator==(const MailComposerData &other) const {
    for (const Field &f : kFields) {
        if (!text::canonicallyEqual(this->*f.member, other.*f.member))
            return false;
    }
    return true;
}

} // namespace velino
