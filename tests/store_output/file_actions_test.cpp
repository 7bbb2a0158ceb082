#include "output_fixture.h"

#include "identifiers.h"
#include "suggested_file_name.h"

#include <QRegularExpression>

#include <sys/stat.h>

using namespace velino;
using velino::test::FixedIds;
using velino::test::OutputTest;

namespace {

QByteArray fileBytes(const QString &path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void writeFile(const QString &path, const QByteArray &bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

} // namespace

// ---- Export ----------------------------------------------------------------------------

TEST_F(OutputTest, ExportWritesTheDocumentToTheChosenFile) {
    const auto store = makeOutputStore();
    store->setDataField("subject", "RDV : lundi 10h");
    const QString target = dir.filePath("rendez-vous.html");
    writeFile(target, QByteArray(200000, 'x')); // an older, longer file is replaced whole
    saveDialog->answer = target;
    store->exportHTML();
    EXPECT_EQ(fileBytes(target), store->generatedHTML().toUtf8());
    EXPECT_TRUE(store->generatedHTML().contains("RDV : lundi 10h"));
    EXPECT_EQ(store->lastAction(), "HTML exporte vers rendez-vous.html.");
    EXPECT_EQ(*log, QStringList({"saveDialog", "lastAction: HTML exporte vers rendez-vous.html."}));

    // Accents stay in the suggested name, the file and the report.
    const QString subject = QString::fromUtf16(u"Votre devis \u2013 iPhone 13 (\u00C9cran) \u2713");
    store->setDataField("subject", subject);
    const QString accented = dir.filePath(QString::fromUtf16(u"r\u00E9paration \u00E9cran.html"));
    saveDialog->answer = accented;
    store->exportHTML();
    const QByteArray written = fileBytes(accented);
    EXPECT_EQ(written, store->generatedHTML().toUtf8());
    EXPECT_TRUE(written.contains(subject.toUtf8()));
    EXPECT_EQ(store->lastAction(),
              QString::fromUtf16(u"HTML exporte vers r\u00E9paration \u00E9cran.html."));

    EXPECT_EQ(saveDialog->titles, QStringList(2, "Exporter le mail HTML"));
    EXPECT_EQ(saveDialog->suggestedNames,
              QStringList({"rdv-lundi-10h.html",
                           QString::fromUtf16(u"votre-devis-iphone-13-\u00E9cran.html")}));
    EXPECT_EQ(saveDialog->suggestedNames[1], suggestedFileName(store->generatedSubject()));
}

// The dialog answers later, from the event loop: the file holds what was shown when it
// opened, and an answer arriving after the store is gone does nothing.
TEST_F(OutputTest, ExportAnsweredLaterWritesWhatWasShownWhenAsked) {
    saveDialog->deferred = true;
    const QString target = dir.filePath("plus-tard.html");
    saveDialog->answer = target;
    auto store = makeOutputStore();
    store->setDataField("subject", "Objet au moment de l'export");
    store->exportHTML();
    const QString shown = store->generatedHTML();
    EXPECT_FALSE(QFileInfo::exists(target));
    store->setDataField("subject", "Objet change ensuite");
    store->copySubject(); // regenerates
    saveDialog->answerPending();
    EXPECT_EQ(fileBytes(target), shown.toUtf8());
    EXPECT_EQ(store->lastAction(), "HTML exporte vers plus-tard.html.");

    const QString orphan = dir.filePath("orphelin.html");
    saveDialog->answer = orphan;
    store->exportHTML();
    store.reset();
    saveDialog->answerPending();
    EXPECT_FALSE(QFileInfo::exists(orphan));
}

TEST_F(OutputTest, CancelledExportChangesNothingBeyondTheSave) {
    const auto store = makeOutputStore();
    store->copySubject();
    putOtherTextOnClipboard();
    const QStringList entriesBefore =
        QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);

    store->setDataField("subject", "Objet jamais exporte");
    for (const std::optional<QString> &answer :
         {std::optional<QString>(), std::optional(QString())}) {
        saveDialog->answer = answer;
        store->exportHTML();
        EXPECT_EQ(store->lastAction(), "Objet copie.");
        EXPECT_TRUE(shownAlerts->shown.isEmpty());
    }
    EXPECT_EQ(saveDialog->suggestedNames,
              QStringList({"objet-jamais-exporte.html", "objet-jamais-exporte.html"}));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), entriesBefore);
    EXPECT_EQ(clipboardContent().text(), "autre contenu");
    EXPECT_EQ(savedSubject(), "Objet jamais exporte");
    EXPECT_EQ(*log,
              QStringList({"clipboard", "lastAction: Objet copie.", "saveDialog", "saveDialog"}));
}

TEST_F(OutputTest, ExportIntoAnUnwritableLocationAlertsAndKeepsTheLastAction) {
    const auto store = makeOutputStore();
    store->copyPlainText();
    // A regular file where a folder should be: no user, root included, can write below it.
    const QString blocker = dir.filePath("bloc");
    writeFile(blocker, "pas un dossier");
    ASSERT_TRUE(QDir().mkpath(dir.filePath("dossier.html")));
    for (const QString &target : {blocker + "/mail.html", dir.filePath("dossier.html")}) {
        log->clear();
        saveDialog->answer = target;
        store->exportHTML();
        EXPECT_EQ(*log, QStringList({"saveDialog", "alert: Impossible d'exporter le mail HTML."}))
            << target.toStdString();
        EXPECT_EQ(store->lastAction(), "Version texte copiee.");
    }
    EXPECT_EQ(fileBytes(blocker), "pas un dossier");
    EXPECT_TRUE(QFileInfo(dir.filePath("dossier.html")).isDir());
    EXPECT_EQ(shownAlerts->shown.size(), 2);
}

// ---- Standalone preview ----------------------------------------------------------------

TEST_F(OutputTest, EachPreviewWritesANewPrivateUuidNamedFileAndOpensIt) {
    // A folder left open to everyone, and a umask that would let every file be read.
    ASSERT_TRUE(QDir().mkpath(tempFolder()));
    ASSERT_TRUE(QFile::setPermissions(tempFolder(), QFileDevice::Permissions(0x7777)));
    const mode_t previousUmask = ::umask(0);
    const auto store = makeOutputStore();
    store->setDataField("subject", "Premier apercu");
    store->openStandalonePreview();
    opener->accepts = false; // what the browser does is not the store's concern
    store->setDataField("subject", "Second apercu");
    store->openStandalonePreview();
    const QByteArray secondHtml = store->generatedHTML().toUtf8();
    ::umask(previousUmask);
    EXPECT_EQ(QFileInfo(tempFolder()).permissions() & QFileDevice::Permissions(0x0077), 0)
        << "group and others shut out of the folder";

    ASSERT_EQ(opener->opened.size(), 2);
    static const QRegularExpression uuidName(
        "^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\.html$");
    QStringList paths;
    for (const QUrl &url : opener->opened) {
        ASSERT_TRUE(url.isLocalFile()) << url.toString().toStdString();
        const QFileInfo file(url.toLocalFile());
        EXPECT_TRUE(uuidName.match(file.fileName()).hasMatch()) << file.fileName().toStdString();
        EXPECT_EQ(file.absolutePath(), QDir(tempFolder()).canonicalPath());
        EXPECT_EQ(file.permissions(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                          QFileDevice::ReadUser | QFileDevice::WriteUser);
        paths.append(file.filePath());
    }
    EXPECT_NE(paths[0], paths[1]);
    // Both files stay; each holds the document of its own call.
    const QByteArray first = fileBytes(paths[0]);
    EXPECT_TRUE(first.contains("Premier apercu"));
    EXPECT_FALSE(first.contains("Second apercu"));
    EXPECT_EQ(fileBytes(paths[1]), secondHtml);
    EXPECT_EQ(QDir(tempFolder()).entryList(QDir::Files).size(), 2);

    EXPECT_EQ(store->lastAction(), "Apercu autonome ouvert.");
    EXPECT_EQ(log->filter("lastAction"),
              QStringList(2, QStringLiteral("lastAction: Apercu autonome ouvert.")));
    EXPECT_TRUE(shownAlerts->shown.isEmpty());
}

TEST_F(OutputTest, PreviewThatCannotBeWrittenAlertsAndOpensNothing) {
    auto fixed = std::make_shared<FixedIds>();
    fixed->id = randomUuid();
    ids = fixed;
    const QString name = uuidText(fixed->id) + ".html";
    const auto store = makeOutputStore();
    store->copySubject();

    // A folder already holds the file's name.
    ASSERT_TRUE(QDir().mkpath(QDir(tempFolder()).filePath(name)));
    log->clear();
    store->openStandalonePreview();
    EXPECT_EQ(*log, QStringList{"alert: Impossible d'ouvrir l'apercu."});

    EXPECT_EQ(store->lastAction(), "Objet copie.");
    EXPECT_TRUE(QFileInfo(QDir(tempFolder()).filePath(name)).isDir());

    // No private folder at all: its path runs through a regular file.
    writeFile(dir.filePath("bloc"), "pas un dossier");
    files = std::make_shared<QtFileSystem>(dir.filePath("bloc/tmp"));
    const auto blocked = makeOutputStore();
    blocked->openStandalonePreview();
    EXPECT_EQ(*log, QStringList{"alert: Impossible d'ouvrir l'apercu."});
    EXPECT_FALSE(QFileInfo::exists(QDir::current().filePath(name)));
    EXPECT_EQ(blocked->lastAction(), "Application prete.");
    EXPECT_TRUE(opener->opened.isEmpty());
}
