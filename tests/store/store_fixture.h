#pragma once

#include "composer_store.h"
#include "identifiers.h"
#include "qt_services.h"
#include "qt_state_storage.h"
#include "test_records.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <ctime>

namespace velino::test {

class FixedClock final : public Clock {
public:
    Instant now() const override { return current; }
    void advance(double seconds) { current.sinceReference += seconds; }
    Instant current;
};

class RecordingAlerts final : public AlertPresenter {
public:
    void showWarning(const QString &informativeText) override { shown.append(informativeText); }
    QStringList shown;
};

inline const QString kSavedStatus = QString::fromUtf16(u"Sauvegarde locale active \u00B7 14:07");
inline const QString kUnsavedStatus = QStringLiteral("Sauvegarde locale indisponible.");

inline QByteArray compact(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

// A store on real state files in a temporary folder, at 14:07 in Paris by a fixed clock.
class StoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        qputenv("TZ", "Europe/Paris");
        tzset();
        clock->current =
            Instant::fromDateTime(QDateTime(QDate(2026, 3, 5), QTime(13, 7, 30), Qt::UTC));
    }

    QString configFolder() const { return dir.filePath(QStringLiteral("config/Korvel")); }
    QString dataFolder() const { return dir.filePath(QStringLiteral("data/Korvel/Velino")); }
    StateFiles stateFiles() const { return StateFiles::inFolders(configFolder(), dataFolder()); }
    QString tempFolder() const { return dir.filePath(QStringLiteral("tmp")); }
    QString documentPath() const { return stateFiles().document; }
    QString settingsPath() const { return stateFiles().settings; }

    // A plain file where the document's folder should be: unwritable even for root.
    void blockDataFolder() {
        QDir(dataFolder()).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(QFileInfo(dataFolder()).absolutePath()));
        QFile blocker(dataFolder());
        ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    }
    void unblockDataFolder() { ASSERT_TRUE(QFile::remove(dataFolder())); }

    StoreServices services() {
        StoreServices s = StoreServices::qtDefaults();
        s.storage = std::make_shared<QtStateStorage>(stateFiles());
        s.clock = clock;
        s.alerts = alerts;
        s.files = files;
        return s;
    }
    std::unique_ptr<ComposerStore> makeStore() {
        return std::make_unique<ComposerStore>(services());
    }

    // A saved preset with the default content and the given timestamps.
    static QJsonObject presetJson(const QString &name, const QJsonValue &createdAt,
                                  const QJsonValue &updatedAt) {
        return {
            {"id", uuidText(randomUuid())}, {"name", name},
            {"sourcePreset", "rdv"},        {"data", MailComposerData::defaultRecord().toJson()},
            {"createdAt", createdAt},       {"updatedAt", updatedAt}};
    }
    static QStringList presetNames(const ComposerStore &store) {
        QStringList names;
        for (const CustomMailPreset &preset : store.customPresets())
            names << preset.name;
        return names;
    }
    static void saveAs(ComposerStore &store, const QString &name) {
        store.setCustomPresetDraftName(name);
        store.saveAsNewCustomPreset();
    }
    // The preset panel: draft name, loaded preset's name ("-" for none), last action.
    static QString panel(const ComposerStore &store) {
        return store.customPresetDraftName() + " | " +
               store.activeCustomPresetName().value_or("-") + " | " + store.lastAction();
    }

    static QByteArray readFile(const QString &path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void putFile(const QString &path, const QByteArray &bytes) {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).absolutePath()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    // What another process would read from the files now.
    QByteArray savedBytes() const { return readFile(documentPath()); }
    QJsonObject savedDocument() const { return QJsonDocument::fromJson(savedBytes()).object(); }
    QString saved(QStringView key) const { return savedDocument()[key].toString(); }
    QString savedSubject() const { return savedDocument()[u"data"][u"subject"].toString(); }
    QString savedSyncCode() const {
        return QSettings(settingsPath(), QSettings::IniFormat)
            .value(ComposerStore::kSyncCodeKey)
            .toString();
    }
    // Long enough for every debounced regeneration and save to run.
    static void settle() { QTest::qWait(ComposerStore::kDebounceMilliseconds + 100); }

    QTemporaryDir dir;
    std::shared_ptr<FixedClock> clock = std::make_shared<FixedClock>();
    std::shared_ptr<RecordingAlerts> alerts = std::make_shared<RecordingAlerts>();
    std::shared_ptr<FileSystem> files = std::make_shared<QtFileSystem>(tempFolder());
};

} // namespace velino::test
