#include "json_cursor.h"
#include "mail_composer_data.h"
#include "test_records.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace velino;

namespace {

bool cursorAccepts(const QByteArray &json) {
    JsonCursor cursor(json);
    return cursor.skipValue() && cursor.finish();
}

bool qtAccepts(const QByteArray &json) {
    QJsonParseError error{};
    QJsonDocument::fromJson(json, &error);
    return error.error == QJsonParseError::NoError;
}

} // namespace

// The streamed reader is at least as strict as Qt's parser (which lets through a few
// forms outside the JSON grammar, such as "1." or a raw tab in a text) and accepts every
// well-formed document.
TEST(JsonCursor, IsNeverMoreLenientThanQtsParser) {
    const QByteArray valid =
        "{\"a\": [1, -0.5e+3, true, false, null, {\"b\": \"\\u00e9\\ud83d\\ude00\\n\\/\"}],"
        " \"c\": {}, \"d\": [], \"e\": \"plain\"}";
    ASSERT_TRUE(qtAccepts(valid));
    EXPECT_TRUE(cursorAccepts(valid));
    for (const char *invalid : {"{\"a\":01}",
                                "{\"a\":1.}",
                                "{\"a\":-}",
                                "{\"a\":.5}",
                                "{\"a\":1e}",
                                "{\"a\":tru}",
                                "{\"a\":\"x\ty\"}",
                                "{\"a\":\"\\x\"}",
                                "{\"a\":\"\\u12g4\"}",
                                "{\"a\":1,}",
                                "[1 2]",
                                "{\"a\" 1}",
                                "{a:1}",
                                "{\"a\":1} x",
                                "{\"a\":[1}",
                                "{\"a\":\"unterminated}",
                                "[",
                                "{\"a\":NaN}",
                                "{\"a\":1e999}",
                                "\xef\xbb\xbf{}"}) {
        EXPECT_FALSE(cursorAccepts(QByteArray(invalid))) << invalid;
    }

    QRandomGenerator random(1122);
    const QByteArray document =
        QJsonDocument(
            QJsonObject{{"data", MailComposerData::defaultRecord().toJson()},
                        {"list", QJsonArray{1.5, -2, true, QJsonValue::Null, "t\xc3\xa9l\\\"x"}}})
            .toJson();
    int disagreements = 0;
    for (int round = 0; round < 2000; ++round) {
        QByteArray mutated = document;
        for (int edits = random.bounded(1, 4); edits > 0; --edits) {
            const int at = random.bounded(static_cast<int>(mutated.size()));
            switch (random.bounded(3)) {
            case 0:
                mutated[at] = "{}[],:\"\\0-e.t \x01"[random.bounded(15)];
                break;
            case 1:
                mutated.remove(at, 1);
                break;
            default:
                mutated.insert(at, "\"}],:1"[random.bounded(6)]);
            }
        }
        if (cursorAccepts(mutated) && !qtAccepts(mutated)) {
            ++disagreements;
            ADD_FAILURE() << mutated.toStdString();
            if (disagreements > 3)
                break;
        }
    }
    EXPECT_EQ(disagreements, 0);
}

TEST(JsonCursor, DecodesEscapesAndSkipsUnknownMembers) {
    QJsonObject record = MailComposerData::defaultRecord().toJson();
    record.insert("subject", QString::fromUtf16(u"Pr\u00eat \"vite\" \\ \U0001F600\n\t/"));
    record.insert("unknown", QJsonObject{{"nested", QJsonArray{1, "x", QJsonObject{}}}});
    const QByteArray json = QJsonDocument(record).toJson();
    JsonCursor cursor(json);
    QString error;
    const auto decoded = MailComposerData::fromJson(cursor, "data", &error);
    ASSERT_TRUE(decoded.has_value()) << error.toStdString();
    EXPECT_TRUE(cursor.finish());
    EXPECT_EQ(decoded->subject, record.value("subject").toString());

    // An escaped key is the same key.
    JsonCursor escapedKey("{\"sub\\u006aect\": 3}");
    ASSERT_TRUE(escapedKey.beginObject());
    QByteArrayView key;
    ASSERT_TRUE(escapedKey.nextMember(&key));
    EXPECT_EQ(key, QByteArrayView("subject"));
}

TEST(JsonCursor, RecordErrorsNameTheKeyPath) {
    const auto errorFor = [](const QJsonObject &record) {
        const QByteArray json = QJsonDocument(record).toJson();
        JsonCursor cursor(json);
        QString error;
        EXPECT_FALSE(MailComposerData::fromJson(cursor, "customPresets[3].data", &error));
        return error;
    };
    QJsonObject record = MailComposerData::defaultRecord().toJson();
    record.remove("footerNote");
    EXPECT_EQ(errorFor(record), "cle manquante : customPresets[3].data.footerNote");
    record = MailComposerData::defaultRecord().toJson();
    record.insert("ctaURL", QJsonValue::Null);
    EXPECT_EQ(errorFor(record), "valeur null pour la cle customPresets[3].data.ctaURL");
    record.insert("ctaURL", QJsonArray());
    EXPECT_EQ(errorFor(record),
              "type incorrect pour la cle customPresets[3].data.ctaURL : texte attendu, tableau "
              "trouve");

    JsonCursor broken("{\"subject\": \"x\" \"preheader\": \"y\"}");
    QString error;
    EXPECT_FALSE(MailComposerData::fromJson(broken, "data", &error));
    EXPECT_EQ(error, "JSON invalide a l'octet 16 : virgule manquante entre deux valeurs");
}

TEST(JsonCursor, DeepNestingIsRefusedWithoutExhaustingTheStack) {
    const QByteArray deep = QByteArray(100000, '[') + QByteArray(100000, ']');
    JsonCursor cursor(deep);
    EXPECT_FALSE(cursor.skipValue());
    EXPECT_TRUE(cursor.error().contains("imbrication trop profonde"));
}
