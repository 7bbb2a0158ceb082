#pragma once

#include "../store/store_fixture.h"

#include "mail_app_executor.h"
#include "mail_app_texts.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <memory>
#include <utility>

// Only what needs a person or another application is faked; each fake and the clipboard
// write what happens, in order, in one log.
namespace velino::test {

class FakeDesktop final : public Clipboard,
                          public SaveDialog,
                          public AlertPresenter,
                          public UrlOpener {
public:
    void setItem(const ClipboardItem &item) override {
        log.append(QStringLiteral("clipboard"));
        realClipboard.setItem(item);
    }
    // Answers `answer` (nothing: cancelled) at once, or at answerPending() when `deferred`.
    void askSaveLocation(const QString &, const QString &, Answer answerWith) override {
        log.append(QStringLiteral("saveDialog"));
        pending = std::move(answerWith);
        if (!deferred)
            answerPending();
    }
    void answerPending() {
        if (const Answer take = std::exchange(pending, nullptr))
            take(answer);
    }
    void showWarning(const QString &text) override { log.append(QStringLiteral("alert: ") + text); }
    bool openUrl(const QUrl &url) override {
        log.append(QStringLiteral("openUrl: ") + QString::fromUtf8(url.toEncoded()));
        opened.append(url);
        return accepts;
    }

    QStringList log;
    QtClipboard realClipboard;
    std::optional<QString> answer;
    Answer pending;
    QList<QUrl> opened;
    bool deferred = false, accepts = true;
    // The mail application: installed or not, how a draft ends (nothing: created), drafts.
    bool mailAppInstalled = true;
    std::optional<DraftFailure> draftFailure;
    QList<MailDraft> drafts;
};

class FakeMailApp final : public MailAppExecutor {
public:
    explicit FakeMailApp(std::shared_ptr<FakeDesktop> desktop) : desktop(std::move(desktop)) {}
    bool findApplication() override {
        desktop->log.append(QStringLiteral("findApplication"));
        return desktop->mailAppInstalled;
    }
    void launchApplication() override { desktop->log.append(QStringLiteral("launchApplication")); }
    std::optional<DraftFailure> runDraft(const MailDraft &draft) override {
        desktop->log.append(QStringLiteral("runDraft"));
        desktop->drafts.append(draft);
        return desktop->draftFailure;
    }
    std::shared_ptr<FakeDesktop> desktop;
};

class OutputTest : public StoreTest {
protected:
    // The store, with its lastAction changes in the log, which starts empty.
    std::unique_ptr<ComposerStore> makeOutputStore() {
        StoreServices s = services();
        s.clipboard = desktop;
        s.saveDialog = desktop;
        s.alerts = desktop;
        s.urls = desktop;
        s.makeMailExecutor = [desktop = desktop](ProgramLauncher &, FileSystem &, IdGenerator &) {
            return std::make_unique<FakeMailApp>(desktop);
        };
        auto store = std::make_unique<ComposerStore>(s);
        ComposerStore *raw = store.get();
        QObject::connect(raw, &ComposerStore::lastActionChanged, raw, [raw, desktop = desktop] {
            desktop->log.append(QStringLiteral("lastAction: ") + raw->lastAction());
        });
        desktop->log.clear();
        return store;
    }

    static const QMimeData &clipboardContent() {
        static const QMimeData empty;
        const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
        return mime ? *mime : empty;
    }

    std::shared_ptr<FakeDesktop> desktop = std::make_shared<FakeDesktop>();
};

} // namespace velino::test
