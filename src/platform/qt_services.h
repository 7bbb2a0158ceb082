#pragma once

#include "platform_services.h"

#include <QDateTime>

// The Qt implementation of each platform service.
namespace velino {

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

// Previews and drafts go to a folder that only the user can enter (0700, files 0600),
// outside /tmp and every hidden folder, so that browsers and mail clients packaged as
// snaps, which see neither, can still open them.
class QtFileSystem final : public FileSystem {
public:
    // Previews and drafts in perUserPrivateFolder().
    QtFileSystem();
    explicit QtFileSystem(QString privateFolder);

    bool writeUtf8Atomically(const QString &path, const QString &text) override;
    QString privateFolder() override;
    bool writePrivateUtf8(const QString &path, const QString &text) override;

    // Removes the files of the private folder last changed more than a day before now.
    void removeOldPrivateFiles(const QDateTime &now = QDateTime::currentDateTimeUtc()) const;

    // "Velino-apercus" in the user's download folder (on Linux the XDG download folder,
    // ~/Downloads or its translation), or in the home folder when there is none.
    static QString perUserPrivateFolder();

private:
    QString folder_;
};

// On Linux the URL goes to xdg-open, whose exit status says whether a handler took it
// (QDesktopServices only reports that xdg-open started). xdg-open returns once the handler
// has the URL, or at once with status 3 when there is no handler; a handler run in the
// foreground keeps it waiting, so after a few seconds the URL counts as opened and
// xdg-open is left to finish on its own. Elsewhere, and without xdg-open, QDesktopServices.
class DesktopUrlOpener final : public UrlOpener {
public:
    static constexpr int kXdgOpenWaitMilliseconds = 3000;
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
