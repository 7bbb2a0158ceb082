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

QByteArray defaultJson() {
    return QJsonDocument(MailComposerData::defaultRecord().toJson()).toJson();
}

void expectBadInput(const RenderRun &run, const char *mentions) {
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.out.isEmpty());
    const QString err = QString::fromUtf8(run.err);
    EXPECT_TRUE(err.startsWith("velino-render : ")) << err.toStdString();
    EXPECT_TRUE(err.contains(QString::fromUtf8(mentions))) << err.toStdString();
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
    for (const QJsonValue &item : checklist) {
        EXPECT_TRUE(item.toObject().value("ok").toBool());
        EXPECT_TRUE(item.toObject().value("text").isString());
    }
}

TEST(VelinoRender, RawFormatsPrintTheOutputAloneFromStdinOrFile) {
    const RenderRun html = runRender({"--format", "html"}, defaultJson());
    EXPECT_EQ(html.out, test::readTestData("default_email.html"));
    const RenderRun text = runRender({"--format", "text", "-"}, defaultJson());
    EXPECT_EQ(text.out, test::readTestData("default_email.txt"));

    QTemporaryDir dir;
    QFile file(dir.filePath("record.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(defaultJson());
    file.close();
    const RenderRun subject = runRender({"--format", "subject", file.fileName()});
    EXPECT_EQ(subject.exitCode, 0);
    EXPECT_EQ(subject.out, "Votre devis Korvel est pret");
}

TEST(VelinoRender, RepairThenPresetThenRecord) {
    MailComposerData legacy = MailComposerData::defaultRecord();
    legacy.footerNote = "Merci+beaucoup";
    legacy.subject = "Ancien%20objet";
    const QByteArray input = QJsonDocument(legacy.toJson()).toJson();

    const RenderRun repaired = runRender({"--repair", "--format", "record"}, input);
    ASSERT_EQ(repaired.exitCode, 0);
    const QJsonObject record = QJsonDocument::fromJson(repaired.out).object();
    EXPECT_EQ(record.value("footerNote").toString(), "Merci beaucoup");
    EXPECT_EQ(record.value("subject").toString(), "Ancien objet");

    const RenderRun preset =
        runRender({"--repair", "--preset", "pret", "--format", "subject"}, input);
    EXPECT_EQ(preset.out, "Votre appareil est pret");
    const RenderRun unrepaired = runRender({"--format", "record"}, input);
    EXPECT_EQ(QJsonDocument::fromJson(unrepaired.out).object().value("footerNote").toString(),
              "Merci+beaucoup");
}

TEST(VelinoRender, BadInputGivesOneFrenchLineAndStatus2) {
    QJsonObject missing = MailComposerData::defaultRecord().toJson();
    missing.remove("footerNote");
    expectBadInput(runRender({}, QJsonDocument(missing).toJson()), "cle manquante : footerNote");

    QJsonObject null = MailComposerData::defaultRecord().toJson();
    null.insert("subject", QJsonValue::Null);
    expectBadInput(runRender({}, QJsonDocument(null).toJson()), "valeur null pour la cle subject");

    QJsonObject number = MailComposerData::defaultRecord().toJson();
    number.insert("ctaURL", 4);
    expectBadInput(runRender({}, QJsonDocument(number).toJson()), "ctaURL");

    expectBadInput(runRender({}, "{\"subject\": "), "JSON invalide");
    expectBadInput(runRender({}, "[]"), "objet est attendu");
    expectBadInput(runRender({}, ""), "JSON invalide");
    expectBadInput(runRender({}, "{\"a\":\"\xff\xfe\"}"), "UTF-8");
    expectBadInput(runRender({"--preset", "promo", "--default"}), "preset inconnu : \"promo\"");
    expectBadInput(runRender({"/nonexistent/record.json"}), "impossible de lire");
}

TEST(VelinoRender, UsageErrorsShowTheUsageLine) {
    for (const QStringList &args :
         {QStringList{"--format", "pdf", "--default"}, QStringList{"--bogus"},
          QStringList{"--preset"}, QStringList{"a.json", "b.json"}}) {
        const RenderRun run = runRender(args);
        EXPECT_EQ(run.exitCode, 2) << args.join(' ').toStdString();
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_TRUE(run.err.contains("usage : velino-render")) << args.join(' ').toStdString();
    }
}

// Each input differs from a valid record by one form outside RFC 8259.
TEST(VelinoRender, RefusesEveryInputOutsideStrictJson) {
    const QByteArray valid =
        QJsonDocument(MailComposerData::defaultRecord().toJson()).toJson(QJsonDocument::Compact);
    const auto withTail = [&valid](const char *member) {
        return valid.left(valid.size() - 1) + member + '}';
    };
    const struct {
        QByteArray input;
        const char *mentions;
    } cases[] = {
        {withTail(",\"x\":1."), "chiffre attendu apres le point d'un nombre"},
        {QByteArray(valid).replace("Votre devis", "Votre\tdevis"),
         "caractere de controle non echappe dans un texte"},
        {withTail(",\"x\":007"), "zero en tete d'un nombre"},
        {valid + " {}", "contenu en trop apres le document"},
        {QByteArray(valid).replace("Korvel", "Korv\xE9l"), "UTF-8"},
        {QByteArray(100000, '[') + QByteArray(100000, ']'), "imbrication trop profonde"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.mentions);
        expectBadInput(runRender({"--format", "subject"}, c.input), c.mentions);
    }
    EXPECT_EQ(runRender({"--format", "subject"}, valid).exitCode, 0);
}
