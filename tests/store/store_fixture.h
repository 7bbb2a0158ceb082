#pragma once

#include "composer_store.h"
#include "qt_services.h"
#include "settings_format.h"
#include "test_records.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <ctime>

namespace velino::test {

// "Now" as the test sets it.
class FixedClock final : public Clock {
public:
    Instant now() const override { return current; }
    void set(const QDateTime &dateTime) { current = Instant::fromDateTime(dateTime); }
    void advance(double seconds) { current.sinceReference += seconds; }
    Instant current = Instant{788918400}; // 2026-01-01 00:00:00 UTC
};

// Alerts cannot be shown without a window: the texts are recorded instead.
class RecordingAlerts final : public AlertPresenter {
public:
    void showWarning(const QString &informativeText) override { shown.append(informativeText); }
    QStringList shown;
};

// A store on a real settings file in a temporary folder, with a fixed clock.
class StoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        qputenv("TZ", "Europe/Paris");
        tzset();
        clock->set(QDateTime(QDate(2026, 3, 5), QTime(13, 7, 30), Qt::UTC)); // 14:07 in Paris
    }

    QString settingsFolder() const { return dir.filePath(QStringLiteral("Korvel")); }
    QString settingsPath() const { return settingsFolder() + QStringLiteral("/Velino.conf"); }

    // Puts a plain file where the settings folder should be: nothing can be written there,
    // whatever the permissions of the user running the tests (CI runs as root).
    void blockSettingsFolder() {
        QDir(settingsFolder()).removeRecursively();
        QFile blocker(settingsFolder());
        ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    }
    void unblockSettingsFolder() {
        QFile::remove(settingsFolder());
        ASSERT_TRUE(QDir().mkpath(settingsFolder()));
    }

    StoreServices services() {
        StoreServices s = StoreServices::qtDefaults();
        s.settings = std::make_shared<QtSettingsStore>(settingsPath());
        s.clock = clock;
        s.alerts = alerts;
        return s;
    }

    std::unique_ptr<ComposerStore> makeStore() {
        return std::make_unique<ComposerStore>(services());
    }

    // What another process would read from the file now.
    QByteArray savedBytes() const {
        QSettings settings(settingsPath(), velinoSettingsFormat());
        return settings.value(ComposerStore::kDefaultsKey).toByteArray();
    }
    QJsonObject savedDocument() const { return QJsonDocument::fromJson(savedBytes()).object(); }
    QString savedSyncCode() const {
        QSettings settings(settingsPath(), velinoSettingsFormat());
        return settings.value(ComposerStore::kSyncCodeKey).toString();
    }

    void writeSaved(const QVariant &value) {
        QSettings settings(settingsPath(), velinoSettingsFormat());
        settings.setValue(ComposerStore::kDefaultsKey, value);
        settings.sync();
    }
    void writeSavedDocument(const QJsonObject &document) {
        writeSaved(QJsonDocument(document).toJson(QJsonDocument::Compact));
    }

    // Lets timers fire for the given time.
    static void wait(int milliseconds) { QTest::qWait(milliseconds); }

    QTemporaryDir dir;
    std::shared_ptr<FixedClock> clock = std::make_shared<FixedClock>();
    std::shared_ptr<RecordingAlerts> alerts = std::make_shared<RecordingAlerts>();
};

} // namespace velino::test
