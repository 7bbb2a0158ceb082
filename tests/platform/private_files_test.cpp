#include "qt_services.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace velino;

namespace {

const QFileDevice::Permissions kGroupAndOthers(0x0077);

void writeFileModifiedAt(const QString &path, const QDateTime &time) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<html></html>");
    ASSERT_TRUE(file.flush()); // the time is set after the last write
    ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
}

} // namespace

// At start, previews and drafts more than a day old go; newer ones and subfolders stay.
TEST(PrivateFiles, FilesOlderThanADayAreRemoved) {
    QTemporaryDir dir;
    const QString folder = dir.filePath("Velino-apercus");
    ASSERT_TRUE(QDir().mkpath(folder + "/sous-dossier"));
    const QDateTime now = QDateTime::currentDateTimeUtc();
    writeFileModifiedAt(folder + "/ancien.html", now.addSecs(-25 * 3600));
    writeFileModifiedAt(folder + "/.cache-ancien", now.addSecs(-48 * 3600));
    writeFileModifiedAt(folder + "/recent.html", now.addSecs(-23 * 3600));
    writeFileModifiedAt(folder + "/sous-dossier/ancien.html", now.addSecs(-48 * 3600));

    QtFileSystem(folder).removeOldPrivateFiles(now);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{"recent.html"});
    EXPECT_TRUE(QFile::exists(folder + "/sous-dossier/ancien.html"));

    QtFileSystem(dir.filePath("absent")).removeOldPrivateFiles(now); // nothing to do, no error
}

// The preview folder opened to everyone is checked by the store's preview test.
TEST(PrivateFiles, FoldersMadeForAFileAreTheOwnersOnly) {
    QTemporaryDir dir;
    QtFileSystem files(dir.filePath("Velino-apercus"));
    const QString nested = dir.filePath("autre/brouillons/b.html");
    ASSERT_TRUE(files.writePrivateUtf8(nested, QString::fromUtf16(u"\u00e9t\u00e9")));
    EXPECT_EQ(QFileInfo(nested).permissions() & kGroupAndOthers, 0);
    EXPECT_EQ(QFileInfo(dir.filePath("autre/brouillons")).permissions() & kGroupAndOthers, 0);

    QFile blocker(dir.filePath("fichier"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    EXPECT_TRUE(QtFileSystem(dir.filePath("fichier/apercus")).privateFolder().isEmpty());
}
