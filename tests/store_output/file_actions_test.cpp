#include "output_fixture.h"

#include <QRegularExpression>

#include <sys/stat.h>

using namespace velino;
using velino::test::OutputTest;

namespace {

QByteArray fileBytes(const QString &path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void writeFile(const QString &path, const QByteArray &bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

} // namespace

// Accents stay in the suggested name, the file and the report; an older, longer file is
// replaced whole. Plain names are tst_MainWindow's and suggested_file_name_test's.
TEST_F(OutputTest, ExportWritesTheDocumentToTheChosenFile) {
    const auto store = makeOutputStore();
    store->setDataField("subject",
                        QString::fromUtf16(u"Votre devis \u2013 iPhone 13 (\u00C9cran) \u2713"));
    const QString fileName = QString::fromUtf16(u"r\u00E9paration \u00E9cran.html");
    desktop->answer = dir.filePath(fileName);
    writeFile(*desktop->answer, QByteArray(200000, 'x'));
    store->exportHTML();
    EXPECT_EQ(fileBytes(*desktop->answer), store->generatedHTML().toUtf8());
    EXPECT_EQ(desktop->log,
              QStringList({"saveDialog", "lastAction: HTML exporte vers " + fileName + "."}));
    EXPECT_EQ(desktop->asked,
              QStringList{QString::fromUtf16(
                  u"Exporter le mail HTML | votre-devis-iphone-13-\u00E9cran.html")});
}

// The dialog answers later: the file holds what was shown when it opened, and an answer
// arriving after the store is gone does nothing.
TEST_F(OutputTest, ExportAnsweredLaterWritesWhatWasShownWhenAsked) {
    desktop->deferred = true;
    desktop->answer = dir.filePath("plus-tard.html");
    auto store = makeOutputStore();
    store->setDataField("subject", "Objet au moment de l'export");
    store->exportHTML();
    const QString shown = store->generatedHTML();
    store->setDataField("subject", "Objet change ensuite");
    store->copySubject(); // regenerates
    desktop->answerPending();
    EXPECT_EQ(fileBytes(*desktop->answer), shown.toUtf8());
    EXPECT_EQ(store->lastAction(), "HTML exporte vers plus-tard.html.");

    desktop->answer = dir.filePath("orphelin.html");
    store->exportHTML();
    store.reset();
    desktop->answerPending();
    EXPECT_FALSE(QFileInfo::exists(*desktop->answer));
}

// Cancelled (no answer or an empty one), or into a place that cannot be written: nothing is
// written, the clipboard and the last action stay, a failure is alerted.
TEST_F(OutputTest, CancelledOrFailedExportChangesNothingBeyondTheSave) {
    const auto store = makeOutputStore();
    store->copySubject();
    putOtherTextOnClipboard();
    store->setDataField("subject", "Objet jamais exporte");
    // A regular file where a folder should be: no user, root included, can write below it.
    const QString blocker = dir.filePath("bloc");
    writeFile(blocker, "pas un dossier");
    ASSERT_TRUE(QDir().mkpath(dir.filePath("dossier.html")));
    const auto entries = [&] {
        return QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    };
    const QStringList entriesBefore = entries();
    const QString failed = "saveDialog | alert: Impossible d'exporter le mail HTML.";
    const std::pair<std::optional<QString>, QString> cases[] = {
        {std::nullopt, "saveDialog"},
        {QString(), "saveDialog"},
        {blocker + "/mail.html", failed},
        {dir.filePath("dossier.html"), failed},
    };
    for (const auto &[answer, logged] : cases) {
        desktop->log.clear();
        desktop->answer = answer;
        store->exportHTML();
        EXPECT_EQ(desktop->log.join(" | "), logged);
    }
    EXPECT_EQ(desktop->asked.last(), "Exporter le mail HTML | objet-jamais-exporte.html");
    EXPECT_EQ(entries(), entriesBefore);
    EXPECT_EQ(fileBytes(blocker), "pas un dossier");
    EXPECT_EQ(clipboardContent().text(), "autre contenu");
    EXPECT_EQ(store->lastAction(), "Objet copie.");
    EXPECT_EQ(savedSubject(), "Objet jamais exporte");
}

// The folder's own permissions are checked with the private files themselves.
TEST_F(OutputTest, EachPreviewWritesANewPrivateUuidNamedFileAndOpensIt) {
    const mode_t previousUmask = ::umask(0); // would let every file be read
    const auto store = makeOutputStore();
    store->setDataField("subject", "Premier apercu");
    store->openStandalonePreview();
    desktop->accepts = false; // what the browser does is not the store's concern
    store->setDataField("subject", "Second apercu");
    store->openStandalonePreview();
    ::umask(previousUmask);

    ASSERT_EQ(desktop->opened.size(), 2);
    static const QRegularExpression uuidName(
        "^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\.html$");
    QStringList paths;
    for (const QUrl &url : desktop->opened) {
        const QFileInfo file(url.toLocalFile());
        EXPECT_TRUE(uuidName.match(file.fileName()).hasMatch()) << url.toString().toStdString();
        EXPECT_EQ(file.absolutePath(), QDir(tempFolder()).canonicalPath());
        EXPECT_EQ(file.permissions(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                          QFileDevice::ReadUser | QFileDevice::WriteUser);
        paths.append(file.filePath());
    }
    // Both files stay; each holds the document of its own call.
    EXPECT_TRUE(fileBytes(paths[0]).contains("Premier apercu"));
    EXPECT_EQ(fileBytes(paths[1]), store->generatedHTML().toUtf8());
    EXPECT_EQ(desktop->log.filter("lastAction"),
              QStringList(2, QStringLiteral("lastAction: Apercu autonome ouvert.")));
    EXPECT_TRUE(desktop->log.filter("alert").isEmpty());
}

TEST_F(OutputTest, PreviewThatCannotBeWrittenAlertsAndOpensNothing) {
    desktop->fixedId = randomUuid();
    const QString name = uuidText(*desktop->fixedId) + ".html";
    // A folder already holds the file's name; then no private folder at all.
    ASSERT_TRUE(QDir().mkpath(QDir(tempFolder()).filePath(name)));
    writeFile(dir.filePath("bloc"), "pas un dossier");
    for (const bool noFolder : {false, true}) {
        files = std::make_shared<QtFileSystem>(noFolder ? dir.filePath("bloc/tmp") : tempFolder());
        const auto blocked = makeOutputStore();
        blocked->openStandalonePreview();
        EXPECT_EQ(desktop->log, QStringList{"alert: Impossible d'ouvrir l'apercu."});
        EXPECT_EQ(blocked->lastAction(), "Application prete.");
    }
    EXPECT_TRUE(desktop->opened.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(name)); // nor written next to the program instead
}
