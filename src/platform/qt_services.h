#pragma once

#include "platform_services.h"

#include <QSettings>

#include <memory>

// The Qt implementation of each platform service.
namespace velino {

// QSettings in Velino's own format (settings_format.h); on Linux ~/.config/Korvel/Velino.conf.
// Every write goes through a temporary file and a rename, and is then flushed to disk, so
// the file is always whole and a save survives a crash right after it.
class QtSettingsStore final : public SettingsStore {
public:
    // The per-user store of organisation "Korvel", application "Velino".
    QtSettingsStore();
    // A store kept in the given file (tests point it at a temporary folder).
    explicit QtSettingsStore(const QString &filePath);

    std::optional<QByteArray> readBytes(const QString &key) const override;
    std::optional<QString> readText(const QString &key) const override;
    void writeBytes(const QString &key, const QByteArray &value) override;
    void writeText(const QString &key, const QString &value) override;
    bool sync() override;

    QString fileName() const { return settings_->fileName(); }

private:
    std::unique_ptr<QSettings> makeSettings() const;

    QString filePath_; // empty for the per-user store
    std::unique_ptr<QSettings> settings_;
};

class SystemClock final : public Clock {
public:
    Instant now() const override;
};

class RandomIdGenerator final : public IdGenerator {
public:
    QUuid newId() override;
};

// The application clipboard; needs a QGuiApplication.
class QtClipboard final : public Clipboard {
public:
    void setItem(const ClipboardItem &item) override;
};

class QtFileSystem final : public FileSystem {
public:
    bool writeUtf8Atomically(const QString &path, const QString &text) override;
    QString temporaryDirectory() const override;
};

class DesktopUrlOpener final : public UrlOpener {
public:
    bool openUrl(const QUrl &url) override;
};

class QtProgramLauncher final : public ProgramLauncher {
public:
    std::optional<QString> findProgram(const QString &name) const override;
    Result run(const QString &program, const QStringList &arguments,
               const QByteArray &standardInput = {}) override;
    bool startDetached(const QString &program, const QStringList &arguments) override;
};

} // namespace velino
