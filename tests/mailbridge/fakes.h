#pragma once

#include "mail_bridge.h"
#include "platform_services.h"

#include <QMap>

#include <functional>

// Recording stand-ins for the platform services the mail bridge uses.
namespace velino::test {

struct Call {
    QString program;
    QStringList arguments;
    QByteArray input;
    bool detached = false;
};

class FakeLauncher final : public ProgramLauncher {
public:
    QMap<QString, QString> onPath; // program name -> full path
    std::function<Result(const Call &)> onRun = [](const Call &) { return Result{}; };
    bool starts = true;
    QList<Call> calls;

    std::optional<QString> findProgram(const QString &name) const override {
        return onPath.contains(name) ? std::optional(onPath[name]) : std::nullopt;
    }
    Result run(const QString &program, const QStringList &args, const QByteArray &in) override {
        calls.append({program, args, in, false});
        return onRun(calls.last());
    }
    bool startDetached(const QString &program, const QStringList &args) override {
        calls.append({program, args, {}, true});
        return starts;
    }
};

inline ProgramLauncher::Result exited(int code, QByteArray out = {}, QByteArray err = {}) {
    return {true, code, out, err};
}

class FakeFiles final : public FileSystem {
public:
    QMap<QString, QString> written; // by writePrivateUtf8 only
    bool writes = true;
    QString folder = "/home/atelier/Downloads/Velino-apercus";
    bool writeUtf8Atomically(const QString &, const QString &) override { return false; }
    QString privateFolder() override { return folder; }
    bool writePrivateUtf8(const QString &path, const QString &text) override {
        if (writes)
            written.insert(path, text);
        return writes;
    }
};

// A bridge for one platform over the fakes above; it gives the ids and records opened URLs.
struct FakePlatform : IdGenerator, UrlOpener {
    explicit FakePlatform(MailPlatform platform)
        : bridge(makeMailAppExecutor(platform, launcher, files, *this), *this) {}
    QUuid newId() override { return QUuid::fromString(u"6f1c2b3a-1d2e-4f50-8192-a3b4c5d6e7f8"); }
    bool openUrl(const QUrl &url) override {
        opened.append(url);
        return true;
    }
    FakeLauncher launcher;
    FakeFiles files;
    QList<QUrl> opened;
    MailBridge bridge;
};

} // namespace velino::test
