#include "qt_state_storage.h"

#include "legacy_settings_file.h"
#include "private_files.h"
#include "state_keys.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <cstdio>

namespace velino {
namespace {

const QString kSyncCodeName = QString::fromLatin1(kSyncCodeKey);

constexpr QFile::Permissions kOwnerReadWrite =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

QString documentFileName() {
    return QString::fromLatin1(kSavedStateKey) + QStringLiteral(".json");
}

// QSettings waits up to 30 seconds for "<file>.lock" unless the lock holds the process
// that took it. An empty lock was left by a process that died between creating and filling
// it (or lost its content in a power cut), so it is removed before a write instead.
void removeEmptyLock(const QString &settingsFile) {
    const QString lock = settingsFile + QStringLiteral(".lock");
    const QFileInfo info(lock);
    if (info.exists() && info.size() == 0)
        QFile::remove(lock);
}

// Writes the sync code into the INI file at path through QSettings; false on any error.
bool writeSettingsFile(const QString &path, const QString &code) {
    removeEmptyLock(path);
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.setValue(kSyncCodeName, code);
        settings.sync();
        if (settings.status() != QSettings::NoError)
            return false;
    }
    return QFile::setPermissions(path, kOwnerReadWrite);
}

} // namespace

StateFiles StateFiles::perUser() {
    StateFiles files;
    files.settings = QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Korvel"),
                               QStringLiteral("Velino"))
                         .fileName();
    files.legacy = QFileInfo(files.settings).absolutePath() + QStringLiteral("/Velino.conf");
    // AppDataLocation for "Korvel"/"Velino", whatever names the running program has set.
    files.document = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                     QStringLiteral("/Korvel/Velino/") + documentFileName();
    return files;
}

StateFiles StateFiles::inFolders(const QString &configFolder, const QString &dataFolder) {
    StateFiles files;
    files.settings = QDir(configFolder).filePath(QStringLiteral("Velino.conf"));
    files.legacy = files.settings;
    files.document = QDir(dataFolder).filePath(documentFileName());
    return files;
}

QtStateStorage::QtStateStorage(StateFiles files) : files_(std::move(files)) {
    heldByEarlierFile_ = !moveEarlierFileOver();
}

bool QtStateStorage::moveEarlierFileOver() {
    LegacySettings earlier;
    switch (readLegacySettingsFile(files_.legacy, &earlier)) {
    case LegacyFileState::Absent:
        return true;
    case LegacyFileState::Unreadable:
        return false;
    case LegacyFileState::Read:
        break;
    }
    earlierDocument_ = earlier.document;
    earlierSyncCode_ = earlier.syncCode;
    if (earlier.document && (!makePrivateFolder(QFileInfo(files_.document).absolutePath()) ||
                             !writePrivateFile(files_.document, *earlier.document)))
        return false;
    if (!replaceEarlierFile(earlier.syncCode))
        return false;
    earlierDocument_.reset();
    earlierSyncCode_.reset();
    return true;
}

// The INI file is made next to its final place and renamed over the earlier file in one
// step, so that the sync code is in one of the two files at every moment.
bool QtStateStorage::replaceEarlierFile(const std::optional<QString> &syncCode) {
    if (syncCode) {
        const QString fresh = files_.settings + QStringLiteral(".new");
        QFile::remove(fresh);
        if (!writeSettingsFile(fresh, *syncCode) ||
            std::rename(QFile::encodeName(fresh).constData(),
                        QFile::encodeName(files_.settings).constData()) != 0) {
            QFile::remove(fresh);
            return false;
        }
        if (files_.legacy == files_.settings)
            return true;
    }
    return QFile::remove(files_.legacy);
}

std::optional<QByteArray> QtStateStorage::readDocument() const {
    if (heldByEarlierFile_)
        return earlierDocument_;
    QFile file(files_.document);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

bool QtStateStorage::writeDocument(const QByteArray &bytes) {
    return !heldByEarlierFile_ && makePrivateFolder(QFileInfo(files_.document).absolutePath()) &&
           writePrivateFile(files_.document, bytes);
}

std::optional<QString> QtStateStorage::readSyncCode() const {
    if (heldByEarlierFile_)
        return earlierSyncCode_;
    if (!QFileInfo::exists(files_.settings))
        return std::nullopt;
    const QVariant value = QSettings(files_.settings, QSettings::IniFormat).value(kSyncCodeName);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

bool QtStateStorage::writeSyncCode(const QString &code) {
    return !heldByEarlierFile_ && QDir().mkpath(QFileInfo(files_.settings).absolutePath()) &&
           writeSettingsFile(files_.settings, code);
}

} // namespace velino
