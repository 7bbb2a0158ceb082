#include "preview_loader.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

#include <memory>

using namespace velino::ui;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kPrefix = 29; // "data:text/html;charset=UTF-8,"

class FakeWebView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QUrl url MEMBER url)

public:
    Q_INVOKABLE void loadHtml(const QString &, const QUrl &) { ++htmlLoads; }

    QUrl url;
    int htmlLoads = 0;
};

class FakeSource : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString status MEMBER status NOTIFY statusChanged)
    Q_PROPERTY(QString html MEMBER html NOTIFY htmlChanged)

public:
    QString status, html;

Q_SIGNALS:
    void statusChanged();
    void htmlChanged();
};

// 700 000 '<' weigh 2.1 million characters once percent-encoded: over the data: URL limit.
const QString kLarge(700'000, u'<');

} // namespace

TEST(PreviewDataUrl, CountsPercentEncodedBytes) {
    // Every byte but the unreserved ones, multi-byte UTF-8 included, becomes %XX.
    const std::pair<QByteArray, qsizetype> cases[] = {
        {"", 0},
        {"aZ09-._~", 8},
        {"<p a=\"b\">", 3 + 1 + 3 + 1 + 3 + 3 + 1 + 3 + 3},
        {u"é"_s.toUtf8(), 6},
        {QByteArray::fromPercentEncoding("%00%FF"), 6}};
    for (const auto &[bytes, encoded] : cases)
        EXPECT_EQ(dataUrlLength(bytes), kPrefix + encoded) << bytes.toStdString();
}

TEST(PreviewPlan, RouteByEncodedLengthAndHttpsBaseOnTheServiceHost) {
    using Route = PreviewPlan::Route;
    const char *https = "https://korvel.example";
    // With a base URL and no data, the web engine would load the host's own page: blank.
    const std::tuple<QByteArray, const char *, Route, const char *> cases[] = {
        {"", "korvel.example", Route::Blank, ""},
        {" ", "korvel.example", Route::Html, https},
        {QByteArray(kMaxDataUrlLength - kPrefix, 'a'), "korvel.example", Route::Html, https},
        {QByteArray(kMaxDataUrlLength - kPrefix + 1, 'a'), "korvel.example", Route::File, https},
        {"<p>x</p>", "", Route::Html, ""},
        {"<p>x</p>", "korvel.example:8443", Route::Html, "https://korvel.example:8443"},
        {"<p>x</p>", "bad host", Route::Html, ""},
        {"<p>x</p>", "a<b", Route::Html, ""},
    };
    for (const auto &[html, host, route, baseUrl] : cases) {
        SCOPED_TRACE(html.left(20).toStdString() + " " + host);
        const PreviewPlan plan = planPreview(html, QString::fromUtf8(host));
        EXPECT_EQ(std::pair(plan.route, plan.baseUrl.toString()),
                  std::pair(route, QString::fromUtf8(baseUrl)));
    }
}

TEST(PreviewFileContents, BomThenBaseElementAtTheStartOfTheHead) {
    const QUrl base(u"https://korvel.example"_s);
    const QByteArray bom = "\xEF\xBB\xBF";
    const QByteArray tag = "<base href=\"https://korvel.example\">";
    // Split where <base> goes: in the head; else after <html>, else the doctype, else first.
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"<!DOCTYPE html>\n<html lang=\"fr\">\n<head>", "\n<title>T</title></head><body></body>"},
        {"<HTML><HEAD profile=\"x\">", "<TITLE>T</TITLE></HEAD></HTML>"},
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

TEST(HtmlPreviewLoader, OnlyTheLastTwoFilesAreKeptNoneAfterASmallDocumentOrTheLoader) {
    FakeWebView view;
    auto loader = std::make_unique<HtmlPreviewLoader>();
    loader->setView(&view);
    // Runs the load the loader has scheduled for the end of this event-loop turn.
    const auto show = [&](const QString &html) {
        loader->setHtml(html);
        QCoreApplication::sendPostedEvents();
        return view.url.toLocalFile();
    };
    QStringList files = {show(kLarge), show(kLarge), show(kLarge)};
    EXPECT_EQ(files.removeDuplicates(), 0);
    const auto exist = [&] {
        return QList<bool>{QFile::exists(files[0]), QFile::exists(files[1]),
                           QFile::exists(files[2])};
    };
    EXPECT_EQ(exist(), (QList<bool>{false, true, true}));
    show(u"<p>petit</p>"_s);
    EXPECT_EQ(exist(), (QList<bool>{false, false, false}));
    const QString last = show(kLarge);
    ASSERT_TRUE(QFile::exists(last));
    loader.reset();
    EXPECT_FALSE(QFile::exists(last));
}

TEST(HtmlPreviewLoader, LoadsOnceCompleteThenOncePerTurnOfChanges) {
    FakeWebView view;
    FakeSource source;
    HtmlPreviewLoader loader;
    loader.classBegin();
    loader.setView(&view);
    loader.setServiceHost(u"korvel.example"_s);
    QList<int> loads;
    const auto turn = [&] {
        QCoreApplication::sendPostedEvents();
        loads.append(view.htmlLoads);
    };
    loader.setHtml(u"<p>A</p>"_s);
    loader.setChangeSource(&source);
    turn();
    loader.componentComplete();
    turn();
    // A status text alone reloads; a regeneration announced several times in a turn, once.
    Q_EMIT source.statusChanged();
    turn();
    Q_EMIT source.htmlChanged();
    loader.setHtml(u"<p>B</p>"_s);
    Q_EMIT source.statusChanged();
    Q_EMIT source.statusChanged();
    turn();
    // A new source (none too) reloads; the old one, nothing; one destroyed is dropped.
    loader.setChangeSource(nullptr);
    turn();
    Q_EMIT source.statusChanged();
    turn();
    {
        FakeSource shortLived;
        loader.setChangeSource(&shortLived);
        turn();
    }
    EXPECT_EQ(loader.changeSource(), nullptr);
    loader.setHtml(u"<p>C</p>"_s);
    turn();
    EXPECT_EQ(loads, (QList<int>{0, 1, 2, 3, 4, 4, 5, 6}));
    EXPECT_EQ(loader.loadCount(), 6);
}

#include "preview_loader_test.moc"
