#include "mail_composer_data.h"
#include "qt_services.h"
#include "test_records.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace velino;

namespace {

ProgramLauncher::Result runRender(const QStringList &args, const QByteArray &input = {}) {
    return QtProgramLauncher().run(QStringLiteral(VELINO_RENDER_BINARY), args, input);
}

QByteArray json(const MailComposerData &record) {
    return QJsonDocument(record.toJson()).toJson(QJsonDocument::Compact);
}

} // namespace

TEST(VelinoRender, JsonOutputOfTheDefaultRecord) {
    const auto run = runRender({"--default"});
    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    const QJsonObject out = QJsonDocument::fromJson(run.standardOutput).object();
    EXPECT_EQ(out.value("html").toString().toUtf8(), test::readTestData("default_email.html"));
    EXPECT_EQ(out.value("htmlBytes").toInteger(), test::readTestData("default_email.html").size());
    EXPECT_EQ(out.value("text").toString().toUtf8(), test::readTestData("default_email.txt"));
    EXPECT_EQ(out.value("subject").toString(), "Votre devis Korvel est pret");
    EXPECT_EQ(out.value("formatStatus").toString(), "Pret a envoyer");
    EXPECT_EQ(out.value("detailsCount").toInt(), 4);
    EXPECT_EQ(out.value("fileName").toString(), "votre-devis-korvel-est-pret.html");
    const QJsonArray checklist = out.value("checklist").toArray();
    ASSERT_EQ(checklist.size(), 8);
    for (const QJsonValue &item : checklist)
        EXPECT_TRUE(item["ok"].toBool() && item["text"].isString());
}

TEST(VelinoRender, RawFormatsPrintTheOutputAloneFromStdinOrFile) {
    const QByteArray input = json(MailComposerData::defaultRecord());
    EXPECT_EQ(runRender({"--format", "html"}, input).standardOutput,
              test::readTestData("default_email.html"));
    QTemporaryDir dir;
    ASSERT_TRUE(QtFileSystem(dir.path()).writeUtf8Atomically(dir.filePath("r.json"), input));
    const auto subject = runRender({"--format", "subject", dir.filePath("r.json")});
    EXPECT_EQ(subject.exitCode, 0);
    EXPECT_EQ(subject.standardOutput, "Votre devis Korvel est pret");
}

TEST(VelinoRender, RepairsLegacyTextsOnlyWhenAsked) {
    MailComposerData legacy = MailComposerData::defaultRecord();
    legacy.footerNote = "Merci+beaucoup";
    legacy.subject = "Ancien%20objet";
    const auto record = [&](const QStringList &args) {
        const auto run = runRender(args + QStringList{"--format", "record"}, json(legacy));
        EXPECT_EQ(run.exitCode, 0);
        const QJsonObject out = QJsonDocument::fromJson(run.standardOutput).object();
        return out["footerNote"].toString() + "|" + out["subject"].toString();
    };
    EXPECT_EQ(record({"--repair"}), "Merci beaucoup|Ancien objet");
    EXPECT_EQ(record({}), "Merci+beaucoup|Ancien%20objet");
}

// Each kind of bad input once: the record and JSON syntax tests check every form.
TEST(VelinoRender, BadInputGivesOneFrenchLineAndStatus2) {
    const QByteArray valid = json(MailComposerData::defaultRecord());
    QJsonObject noFooter = MailComposerData::defaultRecord().toJson();
    noFooter.remove("footerNote");
    const std::tuple<QStringList, QByteArray, const char *> cases[] = {
        {{}, QJsonDocument(noFooter).toJson(), "cle manquante : footerNote"},
        {{}, "{\"subject\": ", "JSON invalide"},
        {{}, "[]", "objet est attendu"},
        {{"--preset", "promo", "--default"}, {}, "preset inconnu : \"promo\""},
        {{"/nonexistent/record.json"}, {}, "impossible de lire"},
        {{"--format", "subject"}, valid + " {}", "contenu en trop apres le document"},
        {{"--format", "pdf", "--default"}, {}, "usage : velino-render"},
        {{"--preset"}, {}, "usage : velino-render"}};
    for (const auto &[args, input, mentions] : cases) {
        SCOPED_TRACE(mentions);
        const auto run = runRender(args, input);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_TRUE(run.standardOutput.isEmpty());
        const QString err = QString::fromUtf8(run.standardError);
        EXPECT_TRUE(err.startsWith("velino-render : ") || err.contains("usage : "))
            << err.toStdString();
        EXPECT_TRUE(err.contains(QString::fromUtf8(mentions))) << err.toStdString();
    }
}
