#include "save_panel.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

using velino::ui::SavePanel;

namespace {

void touch(const QString &path) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

QStringList rows(const SavePanel &panel) {
    QStringList names;
    for (int row = 0; row < panel.rowCount(); ++row) {
        const QModelIndex index = panel.index(row);
        names.append(panel.data(index, SavePanel::NameRole).toString() +
                     (panel.data(index, SavePanel::IsFolderRole).toBool() ? QStringLiteral("/")
                                                                          : QString()));
    }
    return names;
}

class SavePanelTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }
    QString path(const QString &name) const { return dir.filePath(name); }

    QTemporaryDir dir;
    SavePanel panel;
};

} // namespace

TEST_F(SavePanelTest, ListsFoldersFirstThenHtmlFilesOnly) {
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("b-clients")));
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("Archives")));
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral(".cache")));
    touch(path(QStringLiteral("devis.html")));
    touch(path(QStringLiteral("Ancien.HTM")));
    touch(path(QStringLiteral("notes.txt")));
    touch(path(QStringLiteral(".cache.html")));

    panel.openFolder(dir.path());
    EXPECT_EQ(panel.folder(), QDir::cleanPath(dir.path()));
    EXPECT_EQ(rows(panel),
              (QStringList{QStringLiteral("Archives/"), QStringLiteral("b-clients/"),
                           QStringLiteral("Ancien.HTM"), QStringLiteral("devis.html")}));
}

TEST_F(SavePanelTest, ChosenPathEndsInHtmlAndNeedsAFileName) {
    panel.openFolder(dir.path());
    panel.setFileName(QStringLiteral("votre-devis"));
    EXPECT_TRUE(panel.canSave());
    EXPECT_EQ(panel.chosenPath(), path(QStringLiteral("votre-devis.html")));
    panel.setFileName(QStringLiteral("  rdv.HTML "));
    EXPECT_EQ(panel.chosenPath(), path(QStringLiteral("rdv.HTML")));
    panel.setFileName(QStringLiteral("ancien.htm"));
    EXPECT_EQ(panel.chosenPath(), path(QStringLiteral("ancien.htm")));
    // "mail.html.txt" is not an HTML name: the suffix is added.
    panel.setFileName(QStringLiteral("mail.html.txt"));
    EXPECT_EQ(panel.chosenPath(), path(QStringLiteral("mail.html.txt.html")));

    for (const QString &name : {QString(), QStringLiteral("   "), QStringLiteral("a/b.html"),
                                QStringLiteral("."), QStringLiteral("..")}) {
        panel.setFileName(name);
        EXPECT_FALSE(panel.canSave()) << name.toStdString();
        EXPECT_TRUE(panel.chosenPath().isEmpty()) << name.toStdString();
    }
}

TEST_F(SavePanelTest, TellsWhenAFileWouldBeReplaced) {
    touch(path(QStringLiteral("devis.html")));
    panel.openFolder(dir.path());
    panel.setFileName(QStringLiteral("devis"));
    EXPECT_TRUE(panel.replacesFile());
    panel.setFileName(QStringLiteral("autre"));
    EXPECT_FALSE(panel.replacesFile());
}

TEST_F(SavePanelTest, CreatesAndOpensAFolder) {
    panel.openFolder(dir.path());
    EXPECT_TRUE(panel.createFolder(QStringLiteral(" Clients 2026 ")));
    EXPECT_EQ(panel.folder(), path(QStringLiteral("Clients 2026")));
    EXPECT_TRUE(QFileInfo(path(QStringLiteral("Clients 2026"))).isDir());
    EXPECT_TRUE(panel.errorText().isEmpty());
    EXPECT_EQ(panel.rowCount(), 0);

    panel.goUp();
    EXPECT_EQ(panel.folder(), QDir::cleanPath(dir.path()));
    EXPECT_FALSE(panel.createFolder(QStringLiteral("Clients 2026")));
    EXPECT_EQ(panel.errorText(), QStringLiteral("Ce dossier existe deja."));
    EXPECT_FALSE(panel.createFolder(QStringLiteral("a/b")));
    EXPECT_EQ(panel.errorText(), QStringLiteral("Nom de dossier invalide."));
    EXPECT_FALSE(panel.createFolder(QStringLiteral("  ")));
    EXPECT_EQ(panel.errorText(), QStringLiteral("Nom de dossier invalide."));
    // Opening a folder clears the error; opening anything else is ignored.
    panel.openFolder(dir.path());
    EXPECT_TRUE(panel.errorText().isEmpty());
    touch(path(QStringLiteral("devis.html")));
    panel.openFolder(path(QStringLiteral("devis.html")));
    panel.openFolder(path(QStringLiteral("absent")));
    EXPECT_EQ(panel.folder(), QDir::cleanPath(dir.path()));
}

TEST_F(SavePanelTest, ActivatingARowOpensAFolderOrTakesAFileName) {
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("Archives")));
    touch(path(QStringLiteral("ancien-devis.html")));
    panel.openFolder(dir.path());
    panel.setFileName(QStringLiteral("nouveau.html"));
    panel.activate(1);
    EXPECT_EQ(panel.fileName(), QStringLiteral("ancien-devis.html"));
    panel.activate(0);
    EXPECT_EQ(panel.folder(), path(QStringLiteral("Archives")));
    EXPECT_TRUE(panel.canGoUp());
    panel.activate(5); // out of range: nothing
    EXPECT_EQ(panel.folder(), path(QStringLiteral("Archives")));
}

TEST_F(SavePanelTest, RunWaitsForSave) {
    QString titleSeen;
    QString nameSeen;
    bool openSeen = false;
    QTimer::singleShot(0, &panel, [&] {
        openSeen = panel.isOpen();
        titleSeen = panel.title();
        nameSeen = panel.fileName();
        panel.openFolder(dir.path());
        panel.save();
        // Answered: closed at once, and a second answer changes nothing.
        EXPECT_FALSE(panel.isOpen());
        panel.cancel();
    });
    const std::optional<QString> chosen =
        panel.run(QStringLiteral("Exporter le mail HTML"), QStringLiteral("votre-devis.html"));
    EXPECT_TRUE(openSeen);
    EXPECT_EQ(titleSeen, QStringLiteral("Exporter le mail HTML"));
    EXPECT_EQ(nameSeen, QStringLiteral("votre-devis.html"));
    ASSERT_TRUE(chosen.has_value());
    EXPECT_EQ(*chosen, path(QStringLiteral("votre-devis.html")));
    EXPECT_FALSE(panel.isOpen());

    // The next time, the panel opens where the last file was saved.
    QString startSeen;
    QTimer::singleShot(0, &panel, [&] {
        startSeen = panel.folder();
        panel.cancel();
    });
    EXPECT_FALSE(panel.run(QStringLiteral("Exporter le mail HTML"), QStringLiteral("x.html")));
    EXPECT_EQ(startSeen, QDir::cleanPath(dir.path()));
}

TEST_F(SavePanelTest, SaveWithoutAUsableNameKeepsThePanelOpen) {
    int attempts = 0;
    QTimer::singleShot(0, &panel, [&] {
        panel.openFolder(dir.path());
        panel.setFileName(QStringLiteral("   "));
        panel.save();
        attempts += panel.isOpen() ? 1 : 0;
        panel.cancel();
    });
    EXPECT_FALSE(panel.run(QStringLiteral("Exporter le mail HTML"), QStringLiteral("a.html")));
    EXPECT_EQ(attempts, 1);
}

TEST_F(SavePanelTest, ASecondRequestWhileOpenIsRefused) {
    std::optional<QString> nested = QStringLiteral("unset");
    QTimer::singleShot(0, &panel, [&] {
        nested = panel.run(QStringLiteral("Autre"), QStringLiteral("b.html"));
        EXPECT_TRUE(panel.isOpen());
        EXPECT_EQ(panel.title(), QStringLiteral("Exporter le mail HTML"));
        panel.cancel();
    });
    EXPECT_FALSE(panel.run(QStringLiteral("Exporter le mail HTML"), QStringLiteral("a.html")));
    EXPECT_FALSE(nested.has_value());
}
