#include "qt_services.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace velino;

// At start, previews and drafts more than a day old go; newer ones and subfolders stay.
TEST(PrivateFiles, FilesOlderThanADayAreRemoved) {
    QTemporaryDir dir;
    const QString folder = dir.filePath("Velino-apercus");
    ASSERT_TRUE(QDir().mkpath(folder + "/sous-dossier"));
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (const auto &[name, age] : {std::pair{"ancien.html", 25 * 3600},
                                    {".cache-ancien", 48 * 3600},
                                    {"recent.html", 23 * 3600},
                                    {"sous-dossier/ancien.html", 48 * 3600}}) {
        QFile file(folder + "/" + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("<html></html>") > 0);
        ASSERT_TRUE(file.flush()); // the time is set after the last write
        ASSERT_TRUE(file.setFileTime(now.addSecs(-age), QFileDevice::FileModificationTime));
    }

    QtFileSystem(folder).removeOldPrivateFiles(now);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{"recent.html"});
    EXPECT_TRUE(QFile::exists(folder + "/sous-dossier/ancien.html"));

    QtFileSystem(dir.filePath("absent")).removeOldPrivateFiles(now); // nothing to do, no error
}

// The preview folder opened to everyone is checked by the store's preview test.
TEST(PrivateFiles, FoldersMadeForAFileAreTheOwnersOnly) {
    QTemporaryDir dir;
    const QFileDevice::Permissions groupAndOthers(0x0077);
    QtFileSystem files(dir.filePath("Velino-apercus"));
    const QString nested = dir.filePath("autre/brouillons/b.html");
    ASSERT_TRUE(files.writePrivateUtf8(nested, QString::fromUtf16(u"\u00e9t\u00e9")));
    EXPECT_EQ(QFileInfo(nested).permissions() & groupAndOthers, 0);
    EXPECT_EQ(QFileInfo(dir.filePath("autre/brouillons")).permissions() & groupAndOthers, 0);

    ASSERT_TRUE(files.writeUtf8Atomically(dir.filePath("fichier"), "x"));
    EXPECT_TRUE(QtFileSystem(dir.filePath("fichier/apercus")).privateFolder().isEmpty());
}
