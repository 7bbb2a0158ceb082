#include "preview_loader.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

using namespace velino::ui;

namespace {

constexpr qsizetype kPrefix = 29; // "data:text/html;charset=UTF-8,"

// Stands in for the web view: records what the loader asks of it.
class FakeWebView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QUrl url READ url WRITE setUrl)

public:
    QUrl url() const { return m_url; }
    void setUrl(const QUrl &url) {
        m_url = url;
        ++urlLoads;
    }

    Q_INVOKABLE void loadHtml(const QString &, const QUrl &) { ++htmlLoads; }

    int htmlLoads = 0;
    int urlLoads = 0;

private:
    QUrl m_url;
};

// Stands in for the store: two published texts, each with its own change signal.
class FakeSource : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString status MEMBER status NOTIFY statusChanged)
    Q_PROPERTY(QString html MEMBER html NOTIFY htmlChanged)

public:
    QString status;
    QString html;

Q_SIGNALS:
    void statusChanged();
    void htmlChanged();
};

// Runs the loads the loader has scheduled for the end of this event-loop turn.
void endTurn() {
    QCoreApplication::sendPostedEvents();
}

// A document of `length` unreserved characters whose data: URL is prefix + length.
QString plainDocument(qsizetype length) {
    return QString(length, u'a');
}

// An e-mail whose logo is inlined as data: (base64, whose '+' and '/' weigh three
// characters each once percent-encoded): 1.8 million characters, 3 million encoded.
QString largeDocument() {
    return QStringLiteral("<!DOCTYPE html>\n<html lang=\"fr\">\n<head>\n<title>Gros</title>"
                          "</head><body><img src=\"data:image/png;base64,") +
           QStringLiteral("QUFB+/").repeated(300'000) +
           QStringLiteral("\"><p>Fin</p></body></html>");
}

} // namespace

TEST(PreviewDataUrl, CountsPercentEncodedBytes) {
    EXPECT_EQ(dataUrlLength(""), kPrefix);
    EXPECT_EQ(dataUrlLength("aZ09-._~"), kPrefix + 8);
    // Every other byte, multi-byte UTF-8 included, becomes %XX.
    EXPECT_EQ(dataUrlLength("<p a=\"b\">"), kPrefix + 3 + 1 + 3 + 1 + 3 + 3 + 1 + 3 + 3);
    EXPECT_EQ(dataUrlLength(QStringLiteral("é").toUtf8()), kPrefix + 6);
    EXPECT_EQ(dataUrlLength(QByteArray::fromPercentEncoding("%00%FF")), kPrefix + 6);
    const QByteArray sample = largeDocument().left(5000).toUtf8() + QStringLiteral("çà€😀").toUtf8();
    EXPECT_EQ(dataUrlLength(sample), kPrefix + sample.toPercentEncoding().size());
}

TEST(PreviewPlan, SmallDocumentsFromTheStringAndNothingAsABlankPage) {
    const PreviewPlan plan = planPreview("<p>Bonjour</p>", QStringLiteral("korvel.example"));
    EXPECT_EQ(plan.route, PreviewPlan::Route::Html);
    EXPECT_EQ(plan.baseUrl, QUrl(QStringLiteral("https://korvel.example")));
    // With a base URL and no data, the web engine would load the host's own page.
    const PreviewPlan empty = planPreview("", QStringLiteral("korvel.example"));
    EXPECT_EQ(empty.route, PreviewPlan::Route::Blank);
    EXPECT_TRUE(empty.baseUrl.isEmpty());
    const PreviewPlan space = planPreview(" ", QStringLiteral("korvel.example"));
    EXPECT_EQ(space.route, PreviewPlan::Route::Html);
    EXPECT_FALSE(space.baseUrl.isEmpty());
}

TEST(PreviewPlan, FileOnlyBeyondTheDataUrlLimit) {
    const QString host = QStringLiteral("korvel.example");
    EXPECT_EQ(planPreview(plainDocument(kMaxDataUrlLength - kPrefix).toUtf8(), host).route,
              PreviewPlan::Route::Html);
    EXPECT_EQ(planPreview(plainDocument(kMaxDataUrlLength - kPrefix + 1).toUtf8(), host).route,
              PreviewPlan::Route::File);
    // The limit is on the encoded form: 700 000 '<' weigh 2.1 million characters.
    EXPECT_EQ(planPreview(QByteArray(700'000, '<'), host).route, PreviewPlan::Route::File);
    EXPECT_EQ(planPreview(largeDocument().toUtf8(), host).route, PreviewPlan::Route::File);
}

TEST(PreviewBaseUrl, HttpsOnTheServiceHostOrNothing) {
    EXPECT_EQ(previewBaseUrl(QStringLiteral("korvel.example")).toString(),
              QStringLiteral("https://korvel.example"));
    EXPECT_EQ(previewBaseUrl(QStringLiteral("korvel.example:8443")).port(), 8443);
    EXPECT_TRUE(previewBaseUrl(QString()).isEmpty());
    EXPECT_TRUE(previewBaseUrl(QStringLiteral("bad host")).isEmpty());
    EXPECT_TRUE(previewBaseUrl(QStringLiteral("a<b")).isEmpty());
    EXPECT_TRUE(planPreview("<p>x</p>", QString()).baseUrl.isEmpty());
}

TEST(PreviewFileContents, BomThenBaseElementAtTheStartOfTheHead) {
    const QUrl base(QStringLiteral("https://korvel.example"));
    const QByteArray bom = "\xEF\xBB\xBF";
    const QByteArray tag = "<base href=\"https://korvel.example\">";
    // Each document, split where the base element goes.
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"<!DOCTYPE html>\n<html lang=\"fr\">\n<head>",
         "\n  <meta charset=\"utf-8\"><title>T</title></head><body><header>h</header></body>"
         "</html>"},
        {"<HTML><HEAD profile=\"x\">", "<TITLE>T</TITLE></HEAD></HTML>"},
        // Without a head: after <html>, else after the doctype, else first.
        {"<html>", "<body>x</body></html>"},
        {"<!doctype html>", "<header>x</header>"},
        {"", "<p>x</p>"},
    };
    for (const auto &[before, after] : cases)
        EXPECT_EQ(previewFileContents(before + after, base), bom + before + tag + after);

    // The document's own base is kept; without a host there is none to add.
    const QByteArray own = "<html><head><base href=\"https://ailleurs.example/\"></head></html>";
    EXPECT_EQ(previewFileContents(own, base), bom + own);
    EXPECT_EQ(previewFileContents("<head></head>", QUrl()), bom + "<head></head>");
}

TEST(HtmlPreviewLoader, OnlyTheLastTwoFilesAreKeptAndNoneAfterASmallDocument) {
    FakeWebView view;
    HtmlPreviewLoader loader;
    loader.setView(&view);
    const int urlLoads = view.urlLoads;
    const QString html = largeDocument();

    loader.setHtml(html);
    endTurn();
    const QString first = view.url().toLocalFile();
    loader.setHtml(html);
    endTurn();
    const QString second = view.url().toLocalFile();
    EXPECT_NE(first, second);
    EXPECT_TRUE(QFile::exists(first));
    EXPECT_TRUE(QFile::exists(second));

    loader.setHtml(html);
    endTurn();
    const QString third = view.url().toLocalFile();
    EXPECT_FALSE(QFile::exists(first));
    EXPECT_TRUE(QFile::exists(second));
    EXPECT_TRUE(QFile::exists(third));
    EXPECT_EQ(view.urlLoads, urlLoads + 3);

    loader.setHtml(QStringLiteral("<p>petit</p>"));
    endTurn();
    EXPECT_FALSE(loader.lastLoadUsedFile());
    EXPECT_FALSE(QFile::exists(second));
    EXPECT_FALSE(QFile::exists(third));
}

TEST(HtmlPreviewLoader, FilesAreRemovedWithTheLoader) {
    FakeWebView view;
    QString path;
    {
        HtmlPreviewLoader loader;
        loader.setView(&view);
        loader.setHtml(largeDocument());
        endTurn();
        path = view.url().toLocalFile();
        ASSERT_TRUE(QFile::exists(path));
    }
    EXPECT_FALSE(QFile::exists(path));
}

TEST(HtmlPreviewLoader, LoadsOnlyOnceCompleteAndWithAView) {
    HtmlPreviewLoader alone;
    alone.setHtml(QStringLiteral("<p>A</p>"));
    endTurn();
    EXPECT_EQ(alone.loadCount(), 0);

    FakeWebView view;
    HtmlPreviewLoader loader;
    loader.classBegin();
    loader.setView(&view);
    loader.setServiceHost(QStringLiteral("korvel.example"));
    loader.setHtml(QStringLiteral("<p>A</p>"));
    endTurn();
    EXPECT_EQ(view.htmlLoads, 0);
    EXPECT_EQ(loader.loadCount(), 0);
    loader.componentComplete();
    endTurn();
    EXPECT_EQ(view.htmlLoads, 1);
    EXPECT_EQ(loader.loadCount(), 1);
}

TEST(HtmlPreviewLoader, EveryChangeOfTheSourceReloadsOncePerTurn) {
    FakeWebView view;
    FakeSource source;
    HtmlPreviewLoader loader;
    loader.setView(&view);
    loader.setHtml(QStringLiteral("<p>A</p>"));
    loader.setChangeSource(&source);
    endTurn();
    EXPECT_EQ(view.htmlLoads, 1);

    // A status text alone reloads the same page.
    Q_EMIT source.statusChanged();
    endTurn();
    EXPECT_EQ(view.htmlLoads, 2);

    // A regeneration: new HTML and several announcements in one turn, one load.
    Q_EMIT source.htmlChanged();
    loader.setHtml(QStringLiteral("<p>B</p>"));
    Q_EMIT source.statusChanged();
    Q_EMIT source.statusChanged();
    EXPECT_EQ(view.htmlLoads, 2);
    endTurn();
    EXPECT_EQ(view.htmlLoads, 3);
    EXPECT_EQ(loader.loadCount(), 3);

    // Another source, or none: the old one no longer reloads anything.
    loader.setChangeSource(nullptr);
    endTurn();
    const int loads = view.htmlLoads;
    Q_EMIT source.statusChanged();
    endTurn();
    EXPECT_EQ(view.htmlLoads, loads);

    // A source destroyed while watched leaves the loader working.
    {
        FakeSource shortLived;
        loader.setChangeSource(&shortLived);
        endTurn();
    }
    EXPECT_EQ(loader.changeSource(), nullptr);
    loader.setHtml(QStringLiteral("<p>C</p>"));
    endTurn();
    EXPECT_EQ(view.htmlLoads, loads + 2);
}

#include "preview_loader_test.moc"
