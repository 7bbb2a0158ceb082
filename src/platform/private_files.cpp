#include "private_files.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace velino {
namespace {

constexpr QFile::Permissions kOwnerOnlyFolder = QFile::ReadOwner | QFile::WriteOwner |
                                                QFile::ExeOwner | QFile::ReadUser |
                                                QFile::WriteUser | QFile::ExeUser;
constexpr QFile::Permissions kOwnerOnlyFile =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

// Makes the rename of a saved file survive a power cut right after it.
void flushFolderToDisk(const QString &folder) {
#ifdef Q_OS_UNIX
    const QByteArray name = QFile::encodeName(folder);
    const int fd = ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
#else
    Q_UNUSED(folder);
#endif
}

} // namespace

bool makePrivateFolder(const QString &folder) {
    if (folder.isEmpty() || !QDir().mkpath(folder))
        return false;
    if (QFileInfo(folder).permissions() == kOwnerOnlyFolder)
        return true;
    return QFile::setPermissions(folder, kOwnerOnlyFolder);
}

bool writePrivateFile(const QString &path, const QByteArray &bytes) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // Set on the open temporary file, before any content is in it.
    if (!file.setPermissions(kOwnerOnlyFile) || file.write(bytes) != bytes.size() ||
        !file.flush()) {
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) // flushes the data to disk before the rename
        return false;
    flushFolderToDisk(QFileInfo(path).absolutePath());
    return true;
}

void removeFilesModifiedBefore(const QString &folder, const QDateTime &limit) {
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System);
    while (it.hasNext()) {
        it.next();
        const QFileInfo info = it.fileInfo();
        if (!info.isSymLink() && info.lastModified() < limit)
            QFile::remove(info.filePath());
    }
}

} // namespace velino
