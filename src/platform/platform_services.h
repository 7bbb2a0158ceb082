#pragma once

#include "instant.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

// Small interfaces over the platform services the store needs, one Qt implementation
// each (qt_services.h). Tests use the real implementations where they run headless and
// replace only what cannot (dialogs, alerts, opening URLs).
namespace velino {

// Per-user key/value store.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    // The binary value under key; nothing when absent or not binary.
    virtual std::optional<QByteArray> readBytes(const QString &key) const = 0;
    // The text under key; nothing when absent or not text.
    virtual std::optional<QString> readText(const QString &key) const = 0;
    virtual void writeBytes(const QString &key, const QByteArray &value) = 0;
    virtual void writeText(const QString &key, const QString &value) = 0;
    // Flushes pending writes to disk; false when they could not be written.
    virtual bool sync() = 0;
};

class Clock {
public:
    virtual ~Clock() = default;
    virtual Instant now() const = 0;
};

class IdGenerator {
public:
    virtual ~IdGenerator() = default;
    virtual QUuid newId() = 0;
};

// A warning titled "Velino" with one button. It is shown modally and the call returns at
// once: nothing waits for the user to read it.
class AlertPresenter {
public:
    virtual ~AlertPresenter() = default;
    virtual void showWarning(const QString &informativeText) = 0;
};

// One clipboard item; each representation is set only when present.
struct ClipboardItem {
    std::optional<QString> html;
    std::optional<QByteArray> rtf;
    std::optional<QString> plainText;
};

class Clipboard {
public:
    virtual ~Clipboard() = default;
    // Replaces the clipboard content with this one item.
    virtual void setItem(const ClipboardItem &item) = 0;
};

// Modal save dialog restricted to HTML files, folder creation allowed.
class SaveDialog {
public:
    // The chosen file path, or nothing when cancelled.
    using Answer = std::function<void(const std::optional<QString> &path)>;

    virtual ~SaveDialog() = default;
    // Opens the dialog and returns at once; `answer` is called once the user has chosen,
    // or never when the dialog goes away unanswered (its window closed).
    virtual void askSaveLocation(const QString &title, const QString &suggestedName,
                                 Answer answer) = 0;
};

class FileSystem {
public:
    virtual ~FileSystem() = default;
    // Writes the whole text as UTF-8 through a temporary file and a rename.
    virtual bool writeUtf8Atomically(const QString &path, const QString &text) = 0;
    // A writable per-user folder for throw-away files.
    virtual QString temporaryDirectory() const = 0;
};

// Hands a URL (web page, mailto: link, local file) to the system's default handler.
class UrlOpener {
public:
    virtual ~UrlOpener() = default;
    virtual bool openUrl(const QUrl &url) = 0;
};

// Runs external programs.
class ProgramLauncher {
public:
    virtual ~ProgramLauncher() = default;

    struct Result {
        bool started = false;
        int exitCode = -1;
        QByteArray standardOutput;
        QByteArray standardError;
    };

    // Full path of a program found on PATH, or nothing.
    virtual std::optional<QString> findProgram(const QString &name) const = 0;
    // Runs to completion, feeding standardInput; blocks the caller.
    virtual Result run(const QString &program, const QStringList &arguments,
                       const QByteArray &standardInput = {}) = 0;
    // Starts without waiting; true when the program could be started.
    virtual bool startDetached(const QString &program, const QStringList &arguments) = 0;
};

} // namespace velino
