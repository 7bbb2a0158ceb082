#pragma once

#include "json_writer.h"
#include "preset_kind.h"

#include <QJsonObject>
#include <QMetaType>
#include <QString>

#include <array>
#include <optional>

namespace velino {

// The whole editable content of one client e-mail: 31 texts, none optional.
struct MailComposerData {
    Q_GADGET
    Q_PROPERTY(QString recipientName MEMBER recipientName)
    Q_PROPERTY(QString recipientEmail MEMBER recipientEmail)
    Q_PROPERTY(QString subject MEMBER subject)
    Q_PROPERTY(QString preheader MEMBER preheader)
    Q_PROPERTY(QString mailTitle MEMBER mailTitle)
    Q_PROPERTY(QString mailIntro MEMBER mailIntro)
    Q_PROPERTY(QString mailBody MEMBER mailBody)
    Q_PROPERTY(QString highlight MEMBER highlight)
    Q_PROPERTY(QString detailLabel1 MEMBER detailLabel1)
    Q_PROPERTY(QString detailValue1 MEMBER detailValue1)
    Q_PROPERTY(QString detailLabel2 MEMBER detailLabel2)
    Q_PROPERTY(QString detailValue2 MEMBER detailValue2)
    Q_PROPERTY(QString detailLabel3 MEMBER detailLabel3)
    Q_PROPERTY(QString detailValue3 MEMBER detailValue3)
    Q_PROPERTY(QString detailLabel4 MEMBER detailLabel4)
    Q_PROPERTY(QString detailValue4 MEMBER detailValue4)
    Q_PROPERTY(QString ctaLabel MEMBER ctaLabel)
    Q_PROPERTY(QString ctaURL MEMBER ctaURL)
    Q_PROPERTY(QString closingNote MEMBER closingNote)
    Q_PROPERTY(QString logoURL MEMBER logoURL)
    Q_PROPERTY(QString accentPrimary MEMBER accentPrimary)
    Q_PROPERTY(QString accentSecondary MEMBER accentSecondary)
    Q_PROPERTY(QString titleFont MEMBER titleFont)
    Q_PROPERTY(QString bodyFont MEMBER bodyFont)
    Q_PROPERTY(QString businessName MEMBER businessName)
    Q_PROPERTY(QString businessTagline MEMBER businessTagline)
    Q_PROPERTY(QString senderName MEMBER senderName)
    Q_PROPERTY(QString senderRole MEMBER senderRole)
    Q_PROPERTY(QString senderPhone MEMBER senderPhone)
    Q_PROPERTY(QString senderEmail MEMBER senderEmail)
    Q_PROPERTY(QString footerNote MEMBER footerNote)

public:
    QString recipientName;
    QString recipientEmail;
    QString subject;
    QString preheader;
    QString mailTitle;
    QString mailIntro;
    QString mailBody;
    QString highlight;
    QString detailLabel1;
    QString detailValue1;
    QString detailLabel2;
    QString detailValue2;
    QString detailLabel3;
    QString detailValue3;
    QString detailLabel4;
    QString detailValue4;
    QString ctaLabel;
    QString ctaURL;
    QString closingNote;
    QString logoURL;
    QString accentPrimary;
    QString accentSecondary;
    QString titleFont;
    QString bodyFont;
    QString businessName;
    QString businessTagline;
    QString senderName;
    QString senderRole;
    QString senderPhone;
    QString senderEmail;
    QString footerNote;

    // The content the store starts from and returns to on reset.
    static MailComposerData defaultRecord();
    // Thirty-one empty texts.
    static MailComposerData blank();

    static QString fallbackLogoURL();
    static QString fallbackPrimary();
    static QString fallbackSecondary();
    static QString fallbackTitleFont();
    static QString fallbackBodyFont();

    // Overwrites the 17 message texts with those of a built-in preset.
    void applyPreset(PresetKind kind);
    // Repairs texts stored by earlier versions (percent escapes, "+" for blanks,
    // former highlight lines); addresses, colours, fonts and the phone are left alone.
    void normalizeLegacyTextFields();

    QJsonObject toJson() const;
    void writeJson(JsonWriter &writer) const;
    // Strict: all 31 keys, each a string. On failure *error names the key, under path.
    static std::optional<MailComposerData> fromJson(const QJsonObject &object, const QString &path,
                                                    QString *error);

    // Field by field under canonical equivalence.
    bool operator==(const MailComposerData &other) const;

    struct Field {
        QStringView name;
        QString MailComposerData::*member;
    };
    // The 31 fields in declaration order.
    static const std::array<Field, 31> &fields();
    // The field named so, or nullptr.
    static const Field *field(QStringView name);
};

} // namespace velino

Q_DECLARE_METATYPE(velino::MailComposerData)
