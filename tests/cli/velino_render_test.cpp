#include "mail_composer_data.h"
#include "test_records.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace velino;

namespace {

struct RenderRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

RenderRun runRender(const QStringList &args, const QByteArray &input = {}) {
    QProcess process;
    process.start(QStringLiteral(VELINO_RENDER_BINARY), args);
    EXPECT_TRUE(process.waitForStarted());
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit)
        << "crashed on " << input.left(80).toStdString();
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QByteArray json(const MailComposerData &record) {
    return QJsonDocument(record.toJson()).toJson(QJsonDocument::Compact);
}

} // namespace

TEST(VelinoRender, JsonOutputOfTheDefaultRecord) {
    const RenderRun run = runRender({"--default"});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QJsonObject out = QJsonDocument::fromJson(run.out).object();
    EXPECT_EQ(out.value("html").toString().toUtf8(), test::readTestData("default_email.html"));
    EXPECT_EQ(out.value("htmlBytes").toInteger(), test::readTestData("default_email.html").size());
    EXPECT_EQ(out.value("text").toString().toUtf8(), test::readTestData("default_email.txt"));
    EXPECT_EQ(out.value("subject").toString(), "Votre devis Korvel est pret");
    EXPECT_EQ(out.value("formatStatus").toString(), "Pret a envoyer");
    EXPECT_EQ(out.value("detailsCount").toVariant().typeId(), QMetaType::LongLong);
    EXPECT_EQ(out.value("detailsCount").toInt(), 4);
    EXPECT_EQ(out.value("fileName").toString(), "votre-devis-korvel-est-pret.html");
    const QJsonArray checklist = out.value("checklist").toArray();
    ASSERT_EQ(checklist.size(), 8);
    for (const QJsonValue &item : checklist)
        EXPECT_TRUE(item["ok"].toBool() && item["text"].isString());
}

TEST(VelinoRender, RawFormatsPrintTheOutputAloneFromStdinOrFile) {
    const QByteArray input = json(MailComposerData::defaultRecord());
    EXPECT_EQ(runRender({"--format", "html"}, input).out, test::readTestData("default_email.html"));
    EXPECT_EQ(runRender({"--format", "text", "-"}, input).out,
              test::readTestData("default_email.txt"));
    QTemporaryDir dir;
    QFile file(dir.filePath("record.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(input) == input.size());
    file.close();
    const RenderRun subject = runRender({"--format", "subject", file.fileName()});
    EXPECT_EQ(subject.exitCode, 0);
    EXPECT_EQ(subject.out, "Votre devis Korvel est pret");
}

TEST(VelinoRender, RepairThenPresetThenRecord) {
    MailComposerData legacy = MailComposerData::defaultRecord();
    legacy.footerNote = "Merci+beaucoup";
    legacy.subject = "Ancien%20objet";
    const auto record = [&](const QStringList &args) {
        const RenderRun run = runRender(args + QStringList{"--format", "record"}, json(legacy));
        EXPECT_EQ(run.exitCode, 0);
        const QJsonObject out = QJsonDocument::fromJson(run.out).object();
        return out["footerNote"].toString() + "|" + out["subject"].toString();
    };
    EXPECT_EQ(record({"--repair"}), "Merci beaucoup|Ancien objet");
    EXPECT_EQ(record({}), "Merci+beaucoup|Ancien%20objet");
    EXPECT_EQ(runRender({"--repair", "--preset", "pret", "--format", "subject"}, json(legacy)).out,
              "Votre appareil est pret");
}

// Bad records, and inputs that each differ from a valid record by one form outside RFC 8259
// (the JSON syntax tests check every form).
TEST(VelinoRender, BadInputGivesOneFrenchLineAndStatus2) {
    const QByteArray valid = json(MailComposerData::defaultRecord());
    const auto withTail = [&](const char *member) { return valid.chopped(1) + member + '}'; };
    const auto with = [](const char *key, const QJsonValue &value) {
        QJsonObject record = MailComposerData::defaultRecord().toJson();
        value.isUndefined() ? void(record.remove(key)) : void(record.insert(key, value));
        return QJsonDocument(record).toJson();
    };
    const std::tuple<QStringList, QByteArray, const char *> cases[] = {
        {{}, with("footerNote", QJsonValue::Undefined), "cle manquante : footerNote"},
        {{}, with("subject", QJsonValue::Null), "valeur null pour la cle subject"},
        {{}, with("ctaURL", 4), "ctaURL"},
        {{}, "{\"subject\": ", "JSON invalide"},
        {{}, "[]", "objet est attendu"},
        {{}, "", "JSON invalide"},
        {{}, "{\"a\":\"\xff\xfe\"}", "UTF-8"},
        {{"--preset", "promo", "--default"}, {}, "preset inconnu : \"promo\""},
        {{"/nonexistent/record.json"}, {}, "impossible de lire"},
        {{"--format", "subject"},
         withTail(",\"x\":1."),
         "chiffre attendu apres le point d'un nombre"},
        {{"--format", "subject"}, withTail(",\"x\":007"), "zero en tete d'un nombre"},
        {{"--format", "subject"}, valid + " {}", "contenu en trop apres le document"},
        {{"--format", "subject"},
         QByteArray(100000, '[') + QByteArray(100000, ']'),
         "imbrication trop profonde"},
        {{"--format", "pdf", "--default"}, {}, "usage : velino-render"},
        {{"--bogus"}, {}, "usage : velino-render"},
        {{"--preset"}, {}, "usage : velino-render"},
        {{"a.json", "b.json"}, {}, "usage : velino-render"},
    };
    for (const auto &[args, input, mentions] : cases) {
        SCOPED_TRACE(mentions);
        const RenderRun run = runRender(args, input);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_TRUE(run.out.isEmpty());
        const QString err = QString::fromUtf8(run.err);
        EXPECT_TRUE(err.startsWith("velino-render : ") || err.contains("usage : "))
            << err.toStdString();
        EXPECT_TRUE(err.contains(QString::fromUtf8(mentions))) << err.toStdString();
    }
}
