#include "preview_loader.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace velino::ui;

namespace {

constexpr qsizetype kPrefix = 29; // "data:text/html;charset=UTF-8,"

// Stands in for the web view: records what the loader asks of it.
class FakeWebView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QUrl url READ url WRITE setUrl NOTIFY urlChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)

public:
    struct HtmlLoad {
        QString html;
        QUrl baseUrl;
    };

    QUrl url() const { return m_url; }
    void setUrl(const QUrl &url) {
        m_url = url;
        ++urlLoads;
        Q_EMIT urlChanged();
    }
    bool loading() const { return m_loading; }
    void setLoading(bool loading) {
        m_loading = loading;
        Q_EMIT loadingChanged();
    }

    Q_INVOKABLE void loadHtml(const QString &html, const QUrl &baseUrl) {
        htmlLoads.push_back({html, baseUrl});
    }

    std::vector<HtmlLoad> htmlLoads;
    int urlLoads = 0;

Q_SIGNALS:
    void urlChanged();
    void loadingChanged();

private:
    QUrl m_url;
    bool m_loading = false;
};

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

QByteArray fileBytes(const QUrl &url) {
    QFile file(url.toLocalFile());
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

} // namespace

TEST(PreviewDataUrl, CountsPercentEncodedBytes) {
    EXPECT_EQ(dataUrlLength(""), kPrefix);
    EXPECT_EQ(dataUrlLength("aZ09-._~"), kPrefix + 8);
    // Every other byte, multi-byte UTF-8 included, becomes %XX.
    EXPECT_EQ(dataUrlLength("<p a=\"b\">"), kPrefix + 3 + 1 + 3 + 1 + 3 + 3 + 1 + 3 + 3);
    EXPECT_EQ(dataUrlLength(QStringLiteral("é").toUtf8()), kPrefix + 6);
    EXPECT_EQ(dataUrlLength(QByteArray::fromPercentEncoding("%00%FF")), kPrefix + 6);
}

TEST(PreviewDataUrl, AgreesWithPercentEncoding) {
    const QByteArray sample = largeDocument().left(5000).toUtf8() + QStringLiteral("çà€😀").toUtf8();
    EXPECT_EQ(dataUrlLength(sample), kPrefix + sample.toPercentEncoding().size());
}

TEST(PreviewPlan, SmallDocumentsLoadFromTheString) {
    const PreviewPlan plan = planPreview("<p>Bonjour</p>", QStringLiteral("korvel.example"));
    EXPECT_EQ(plan.route, PreviewPlan::Route::Html);
    EXPECT_EQ(plan.baseUrl, QUrl(QStringLiteral("https://korvel.example")));
}

TEST(PreviewPlan, EmptyDocumentIsABlankPage) {
    // With a base URL and no data, the web engine would load the host's own page.
    const PreviewPlan plan = planPreview("", QStringLiteral("korvel.example"));
    EXPECT_EQ(plan.route, PreviewPlan::Route::Blank);
    EXPECT_TRUE(plan.baseUrl.isEmpty());
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

TEST(PreviewBaseUrl, HttpsOnTheServiceHost) {
    EXPECT_EQ(previewBaseUrl(QStringLiteral("korvel.example")).toString(),
              QStringLiteral("https://korvel.example"));
    EXPECT_EQ(previewBaseUrl(QStringLiteral("korvel.example:8443")).port(), 8443);
}

TEST(PreviewBaseUrl, NoBaseWhenTheAddressCannotBeFormed) {
    EXPECT_TRUE(previewBaseUrl(QString()).isEmpty());
    EXPECT_TRUE(previewBaseUrl(QStringLiteral("bad host")).isEmpty());
    EXPECT_TRUE(previewBaseUrl(QStringLiteral("a<b")).isEmpty());
    EXPECT_TRUE(planPreview("<p>x</p>", QString()).baseUrl.isEmpty());
}

TEST(PreviewFileContents, BaseElementOpensTheHead) {
    const QByteArray html =
        "<!DOCTYPE html>\n<html lang=\"fr\">\n<head>\n  <meta charset=\"utf-8\">"
        "<title>T</title></head><body><header>h</header></body></html>";
    const QByteArray out =
        previewFileContents(html, QUrl(QStringLiteral("https://korvel.example")));
    EXPECT_EQ(out, QByteArray("\xEF\xBB\xBF"
                              "<!DOCTYPE html>\n<html lang=\"fr\">\n<head>"
                              "<base href=\"https://korvel.example\">\n  <meta charset=\"utf-8\">"
                              "<title>T</title></head><body><header>h</header></body></html>"));
}

TEST(PreviewFileContents, HeadWithAttributesAndCapitals) {
    const QByteArray out =
        previewFileContents("<HTML><HEAD profile=\"x\"><TITLE>T</TITLE></HEAD></HTML>",
                            QUrl(QStringLiteral("https://korvel.example")));
    EXPECT_EQ(out, QByteArray("\xEF\xBB\xBF<HTML><HEAD profile=\"x\"><base "
                              "href=\"https://korvel.example\"><TITLE>T</TITLE></HEAD></HTML>"));
}

TEST(PreviewFileContents, WithoutHeadAfterHtmlThenAfterDoctype) {
    const QUrl base(QStringLiteral("https://korvel.example"));
    EXPECT_EQ(previewFileContents("<html><body>x</body></html>", base),
              QByteArray("\xEF\xBB\xBF<html><base href=\"https://korvel.example\"><body>x</body>"
                         "</html>"));
    EXPECT_EQ(previewFileContents("<!doctype html><header>x</header>", base),
              QByteArray("\xEF\xBB\xBF<!doctype html><base href=\"https://korvel.example\">"
                         "<header>x</header>"));
    EXPECT_EQ(previewFileContents("<p>x</p>", base),
              QByteArray("\xEF\xBB\xBF<base href=\"https://korvel.example\"><p>x</p>"));
}

TEST(PreviewFileContents, KeepsTheDocumentsOwnBaseAndNoBaseWithoutHost) {
    const QByteArray own = "<html><head><base href=\"https://ailleurs.example/\"></head></html>";
    EXPECT_EQ(previewFileContents(own, QUrl(QStringLiteral("https://korvel.example"))),
              QByteArray("\xEF\xBB\xBF") + own);
    EXPECT_EQ(previewFileContents("<head></head>", QUrl()),
              QByteArray("\xEF\xBB\xBF<head></head>"));
}

TEST(HtmlPreviewLoader, SmallHtmlGoesThroughLoadHtmlWithTheBaseUrl) {
    FakeWebView view;
    HtmlPreviewLoader loader;
    loader.setView(&view);
    const int urlLoads = view.urlLoads;
    loader.setHtml(QStringLiteral("<p>Bonjour</p>"));
    ASSERT_FALSE(view.htmlLoads.empty());
    EXPECT_EQ(view.htmlLoads.back().html, QStringLiteral("<p>Bonjour</p>"));
    EXPECT_EQ(view.htmlLoads.back().baseUrl, QUrl(QStringLiteral("https://korvel.example")));
    EXPECT_EQ(view.urlLoads, urlLoads);
    EXPECT_FALSE(loader.lastLoadUsedFile());
    EXPECT_TRUE(loader.fileUrl().isEmpty());
}

TEST(HtmlPreviewLoader, EveryAssignmentReloadsEvenWithTheSameHtml) {
    FakeWebView view;
    HtmlPreviewLoader loader;
    loader.setView(&view);
    const size_t before = view.htmlLoads.size();
    QSignalSpy changed(&loader, &HtmlPreviewLoader::htmlChanged);
    loader.setHtml(QStringLiteral("<p>A</p>"));
    loader.setHtml(QStringLiteral("<p>A</p>"));
    loader.setHtml(QStringLiteral("<p>A</p>"));
    EXPECT_EQ(view.htmlLoads.size(), before + 3);
    EXPECT_EQ(changed.count(), 1);
    loader.reload();
    EXPECT_EQ(view.htmlLoads.size(), before + 4);
}

TEST(HtmlPreviewLoader, HostChangeReloadsWithTheNewBase) {
    FakeWebView view;
    HtmlPreviewLoader loader;
    loader.setView(&view);
    loader.setHtml(QStringLiteral("<p>A</p>"));
    loader.setServiceHost(QStringLiteral("atelier.example"));
    ASSERT_FALSE(view.htmlLoads.empty());
    EXPECT_EQ(view.htmlLoads.back().baseUrl, QUrl(QStringLiteral("https://atelier.example")));
    EXPECT_EQ(loader.baseUrl(), QUrl(QStringLiteral("https://atelier.example")));
    loader.setServiceHost(QStringLiteral("not a host"));
    EXPECT_TRUE(view.htmlLoads.back().baseUrl.isEmpty());
}

TEST(HtmlPreviewLoader, LargeHtmlGoesThroughATemporaryFile) {
    FakeWebView view;
    HtmlPreviewLoader loader;
    loader.setView(&view);
    const size_t before = view.htmlLoads.size();
    const int urlLoads = view.urlLoads;
    const QString html = largeDocument();
    loader.setHtml(html);

    EXPECT_EQ(view.htmlLoads.size(), before);
    EXPECT_EQ(view.urlLoads, urlLoads + 1);
    EXPECT_TRUE(loader.lastLoadUsedFile());
    ASSERT_TRUE(view.url().isLocalFile());
    EXPECT_EQ(view.url(), loader.fileUrl());
    EXPECT_TRUE(QFileInfo(view.url().toLocalFile()).fileName().startsWith(u"velino-preview-"));
    EXPECT_TRUE(view.url().toLocalFile().endsWith(u".html"));
    EXPECT_EQ(fileBytes(view.url()),
              previewFileContents(html.toUtf8(), QUrl(QStringLiteral("https://korvel.example"))));
}

TEST(HtmlPreviewLoader, OnlyTheLastTwoFilesAreKeptAndNoneAfterASmallDocument) {
    FakeWebView view;
    HtmlPreviewLoader loader;
    loader.setView(&view);
    const int urlLoads = view.urlLoads;
    const QString html = largeDocument();

    loader.setHtml(html);
    const QString first = view.url().toLocalFile();
    loader.setHtml(html);
    const QString second = view.url().toLocalFile();
    EXPECT_NE(first, second);
    EXPECT_TRUE(QFile::exists(first));
    EXPECT_TRUE(QFile::exists(second));

    loader.setHtml(html);
    const QString third = view.url().toLocalFile();
    EXPECT_FALSE(QFile::exists(first));
    EXPECT_TRUE(QFile::exists(second));
    EXPECT_TRUE(QFile::exists(third));
    EXPECT_EQ(view.urlLoads, urlLoads + 3);

    loader.setHtml(QStringLiteral("<p>petit</p>"));
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
        path = view.url().toLocalFile();
        ASSERT_TRUE(QFile::exists(path));
    }
    EXPECT_FALSE(QFile::exists(path));
}

TEST(HtmlPreviewLoader, WaitsForTheComponentToBeComplete) {
    FakeWebView view;
    HtmlPreviewLoader loader;
    loader.classBegin();
    loader.setView(&view);
    loader.setServiceHost(QStringLiteral("korvel.example"));
    loader.setHtml(QStringLiteral("<p>A</p>"));
    EXPECT_TRUE(view.htmlLoads.empty());
    EXPECT_EQ(loader.loadCount(), 0);
    loader.componentComplete();
    ASSERT_EQ(view.htmlLoads.size(), 1u);
    EXPECT_EQ(loader.loadCount(), 1);
}

TEST(HtmlPreviewLoader, EmptyHtmlLoadsABlankPage) {
    FakeWebView view;
    HtmlPreviewLoader loader;
    loader.classBegin();
    loader.setView(&view);
    loader.componentComplete();
    EXPECT_TRUE(view.htmlLoads.empty());
    EXPECT_EQ(view.urlLoads, 1);
    EXPECT_EQ(view.url(), QUrl(QStringLiteral("about:blank")));
    EXPECT_TRUE(loader.lastLoadWasBlank());
    EXPECT_EQ(loader.loadCount(), 1);

    loader.setHtml(QStringLiteral("<p>A</p>"));
    EXPECT_FALSE(loader.lastLoadWasBlank());
    ASSERT_EQ(view.htmlLoads.size(), 1u);
}

TEST(HtmlPreviewLoader, PageIsShownOnceTheFirstLoadEnds) {
    FakeWebView view;
    HtmlPreviewLoader loader;
    QSignalSpy shown(&loader, &HtmlPreviewLoader::hasShownPageChanged);
    loader.classBegin();
    loader.setView(&view);
    loader.setHtml(QStringLiteral("<p>A</p>"));
    loader.componentComplete();
    EXPECT_FALSE(loader.hasShownPage());
    view.setLoading(true);
    EXPECT_FALSE(loader.hasShownPage());
    view.setLoading(false);
    EXPECT_TRUE(loader.hasShownPage());
    EXPECT_EQ(shown.count(), 1);
    // Later loads never hide it again.
    loader.setHtml(QStringLiteral("<p>B</p>"));
    view.setLoading(true);
    EXPECT_TRUE(loader.hasShownPage());
    view.setLoading(false);
    EXPECT_EQ(shown.count(), 1);
}

TEST(HtmlPreviewLoader, NothingHappensWithoutAView) {
    HtmlPreviewLoader loader;
    loader.setHtml(QStringLiteral("<p>A</p>"));
    EXPECT_EQ(loader.loadCount(), 0);
}

#include "preview_loader_test.moc"
