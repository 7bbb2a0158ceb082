#pragma once

#include <utility>

#include "../store/store_fixture.h"

#include "mail_app_executor.h"
#include "rich_text_converter.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <memory>

// Stores whose output actions run against the real clipboard, file system, rich-text
// converter and settings file; only what needs a person or another application is replaced:
// the save dialog, the alerts, the URL opener and the mail application. Every replaced
// service and the clipboard write down what happens, in order, in one shared log.
namespace velino::test {

using EventLog = std::shared_ptr<QStringList>;

// The real clipboard, with each item handed to it noted in the log.
class LoggedClipboard final : public Clipboard {
public:
    explicit LoggedClipboard(EventLog log) : log(std::move(log)) {}
    void setItem(const ClipboardItem &item) override {
        log->append(QStringLiteral("clipboard"));
        real.setItem(item);
    }
    EventLog log;
    QtClipboard real;
};

// Answers with the prepared location, or cancels when there is none; at once, or only
// when answerPending() is called if `deferred` is set.
class FakeSaveDialog final : public SaveDialog {
public:
    explicit FakeSaveDialog(EventLog log) : log(std::move(log)) {}
    void askSaveLocation(const QString &title, const QString &suggestedName,
                         Answer answerWith) override {
        log->append(QStringLiteral("saveDialog"));
        titles.append(title);
        suggestedNames.append(suggestedName);
        pending = std::move(answerWith);
        if (!deferred)
            answerPending();
    }
    void answerPending() {
        Answer take = std::exchange(pending, nullptr);
        if (take)
            take(answer);
    }
    EventLog log;
    std::optional<QString> answer;
    bool deferred = false;
    Answer pending;
    QStringList titles;
    QStringList suggestedNames;
};

class LoggedAlerts final : public AlertPresenter {
public:
    explicit LoggedAlerts(EventLog log) : log(std::move(log)) {}
    void showWarning(const QString &informativeText) override {
        log->append(QStringLiteral("alert: ") + informativeText);
        shown.append(informativeText);
    }
    EventLog log;
    QStringList shown;
};

class FakeUrlOpener final : public UrlOpener {
public:
    explicit FakeUrlOpener(EventLog log) : log(std::move(log)) {}
    bool openUrl(const QUrl &url) override {
        log->append(QStringLiteral("openUrl: ") + QString::fromUtf8(url.toEncoded()));
        opened.append(url);
        return accepts;
    }
    EventLog log;
    bool accepts = true;
    QList<QUrl> opened;
};

// What the mail application does, as the test prepares it, and what it was asked.
struct MailAppScript {
    bool installed = true;
    std::optional<DraftFailure> failure; // nothing: the draft is created
    QList<MailDraft> drafts;
};

class FakeMailApp final : public MailAppExecutor {
public:
    FakeMailApp(std::shared_ptr<MailAppScript> script, EventLog log)
        : script(std::move(script)), log(std::move(log)) {}
    bool findApplication() override {
        log->append(QStringLiteral("findApplication"));
        return script->installed;
    }
    void launchApplication() override { log->append(QStringLiteral("launchApplication")); }
    std::optional<DraftFailure> runDraft(const MailDraft &draft) override {
        log->append(QStringLiteral("runDraft"));
        script->drafts.append(draft);
        return script->failure;
    }
    std::shared_ptr<MailAppScript> script;
    EventLog log;
};

// A converter with a prepared answer (nothing: the HTML cannot be imported); it keeps the
// bytes it was given.
class ScriptedRichText final : public RichTextConverter {
public:
    std::optional<RichTextConversion> convert(const QByteArray &htmlUtf8) override {
        inputs.append(htmlUtf8);
        return answer;
    }
    std::optional<RichTextConversion> answer;
    QList<QByteArray> inputs;
};

// Always the same identifier, so that a test knows the next preview's file name.
class FixedIds final : public IdGenerator {
public:
    QUuid newId() override { return id; }
    QUuid id;
};

class OutputTest : public StoreTest {
protected:
    // Previews go to a private folder of the test's own.
    QString tempFolder() const { return dir.filePath(QStringLiteral("tmp")); }

    StoreServices outputServices() {
        StoreServices s = services();
        s.clipboard = clipboard;
        s.saveDialog = saveDialog;
        s.alerts = shownAlerts;
        s.urls = urls ? urls : opener;
        s.files = files;
        if (richText)
            s.richText = richText;
        if (ids)
            s.ids = ids;
        s.makeMailExecutor = [script = mailApp, log = log](ProgramLauncher &, FileSystem &,
                                                           IdGenerator &) {
            return std::make_unique<FakeMailApp>(script, log);
        };
        return s;
    }

    // The store, with its lastAction changes in the log, which starts empty.
    std::unique_ptr<ComposerStore> makeOutputStore() {
        auto store = std::make_unique<ComposerStore>(outputServices());
        ComposerStore *raw = store.get();
        QObject::connect(raw, &ComposerStore::lastActionChanged, raw, [raw, log = log] {
            log->append(QStringLiteral("lastAction: ") + raw->lastAction());
        });
        log->clear();
        return store;
    }

    // Something else on the clipboard, so that a test sees whether an action replaced it.
    static void putOtherTextOnClipboard() {
        QGuiApplication::clipboard()->setText(QStringLiteral("autre contenu"));
    }
    static const QMimeData &clipboardContent() {
        const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
        static const QMimeData empty;
        return mime ? *mime : empty;
    }

    EventLog log = std::make_shared<QStringList>();
    std::shared_ptr<LoggedClipboard> clipboard = std::make_shared<LoggedClipboard>(log);
    std::shared_ptr<FakeSaveDialog> saveDialog = std::make_shared<FakeSaveDialog>(log);
    std::shared_ptr<LoggedAlerts> shownAlerts = std::make_shared<LoggedAlerts>(log);
    std::shared_ptr<FakeUrlOpener> opener = std::make_shared<FakeUrlOpener>(log);
    std::shared_ptr<MailAppScript> mailApp = std::make_shared<MailAppScript>();
    std::shared_ptr<RichTextConverter> richText; // the real converter unless set
    std::shared_ptr<IdGenerator> ids;            // random identifiers unless set
    std::shared_ptr<UrlOpener> urls;             // the logged fake unless set
    std::shared_ptr<FileSystem> files = std::make_shared<QtFileSystem>(tempFolder());
};

} // namespace velino::test
