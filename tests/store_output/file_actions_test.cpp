#include "output_fixture.h"

#include <QRegularExpression>

#include <sys/stat.h>

using namespace velino;
using velino::test::OutputTest;

// An answer arriving after the store is gone does nothing.
TEST_F(OutputTest, ExportAnsweredLaterWritesWhatWasShownWhenAsked) {
    desktop->deferred = true;
    const QString fileName = QString::fromUtf16(u"r\u00E9paration \u00E9cran.html");
    desktop->answer = dir.filePath(fileName);
    putFile(*desktop->answer, QByteArray(200000, 'x'));
    auto store = makeOutputStore();
    store->setDataField("subject",
                        QString::fromUtf16(u"Votre devis \u2013 iPhone 13 (\u00C9cran) \u2713"));
    store->exportHTML();
    const QString shown = store->generatedHTML();
    store->setDataField("subject", "Objet change ensuite");
    store->copySubject(); // regenerates
    desktop->answerPending();
    EXPECT_EQ(readFile(*desktop->answer), shown.toUtf8());
    EXPECT_EQ(desktop->log, QStringList({"saveDialog", "clipboard", "lastAction: Objet copie.",
                                         "lastAction: HTML exporte vers " + fileName + "."}));

    desktop->answer = dir.filePath("orphelin.html");
    store->exportHTML();
    store.reset();
    desktop->answerPending();
    EXPECT_FALSE(QFileInfo::exists(*desktop->answer));
}

// A regular file where a folder should be: no user, root included, can write below it.
TEST_F(OutputTest, CancelledOrFailedExportAndUnwritablePreviewChangeNothing) {
    const QString blocker = dir.filePath("bloc");
    putFile(blocker, "pas un dossier");
    files = std::make_shared<QtFileSystem>(blocker + "/tmp"); // no private folder for previews
    const auto store = makeOutputStore();
    store->copySubject();
    ASSERT_TRUE(QDir().mkpath(dir.filePath("dossier.html")));
    const auto entries = [&] {
        return QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot) +
               QDir::current().entryList();
    };
    const QStringList entriesBefore = entries();
    const QString failed = "saveDialog | alert: Impossible d'exporter le mail HTML.";
    const std::pair<std::optional<QString>, QString> cases[] = {
        {QString(), "saveDialog"}, // cancelled in the window is tst_MainWindow's
        {blocker + "/mail.html", failed},
        {dir.filePath("dossier.html"), failed},
    };
    for (const auto &[answer, logged] : cases) {
        desktop->log.clear();
        desktop->answer = answer;
        store->exportHTML();
        EXPECT_EQ(desktop->log.join(" | "), logged);
    }
    desktop->log.clear();
    store->openStandalonePreview();
    EXPECT_EQ(desktop->log, QStringList{"alert: Impossible d'ouvrir l'apercu."});
    EXPECT_EQ(entries(), entriesBefore);
    EXPECT_EQ(store->lastAction(), "Objet copie.");
}

// Private even with a umask that would let every file be read.
TEST_F(OutputTest, EachPreviewWritesANewPrivateUuidNamedFileAndOpensIt) {
    const mode_t previousUmask = ::umask(0);
    const auto store = makeOutputStore();
    for (const char *subject : {"Premier apercu", "Second apercu"}) {
        store->setDataField("subject", subject);
        store->openStandalonePreview();
    }
    ::umask(previousUmask);
    ASSERT_EQ(desktop->opened.size(), 2);
    static const QRegularExpression uuidName("^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.html$");
    for (const QUrl &url : desktop->opened) {
        const QFileInfo file(url.toLocalFile());
        EXPECT_TRUE(uuidName.match(file.fileName()).hasMatch()) << url.toString().toStdString();
        EXPECT_EQ(file.absolutePath(), QDir(tempFolder()).canonicalPath());
        EXPECT_EQ(file.permissions() & QFileDevice::Permissions(0x0077), 0);
    }
    EXPECT_TRUE(readFile(desktop->opened[0].toLocalFile()).contains("Premier apercu"));
    EXPECT_EQ(readFile(desktop->opened[1].toLocalFile()), store->generatedHTML().toUtf8());
}
