#include "qt_services.h"
#include "rtf_writer.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QProcess>
#include <QTextDocument>
#include <QTimer>

#include <gtest/gtest.h>

using namespace velino;

namespace {

// Reads one clipboard target through xclip, another X client. The clipboard owner is this
// process, so the event loop keeps running (serving the selection) until xclip is done.
QByteArray readWithXclip(const QString &target) {
    QProcess xclip;
    QEventLoop loop;
    QObject::connect(&xclip, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(&xclip, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    QTimer::singleShot(15000, &loop, &QEventLoop::quit);
    xclip.start("xclip", {"-selection", "clipboard", "-t", target, "-o"});
    if (xclip.state() != QProcess::NotRunning)
        loop.exec();
    EXPECT_EQ(xclip.state(), QProcess::NotRunning)
        << "xclip did not finish: " << target.toStdString();
    EXPECT_EQ(xclip.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(xclip.exitCode(), 0)
        << target.toStdString() << ": " << xclip.readAllStandardError().toStdString();
    return xclip.readAllStandardOutput();
}

} // namespace

TEST(QtClipboard, OtherX11ClientsReadEveryRepresentationByteForByte) {
    if (QGuiApplication::platformName() != "xcb")
        GTEST_SKIP() << "no X display (Qt platform "
                     << QGuiApplication::platformName().toStdString() << "); run under xvfb-run";

    const QString html = QString::fromUtf16(u"<p>R\u00E9paration <b>pr\u00EAte</b> \U0001F600</p>");
    QTextDocument document;
    document.setHtml(html);
    ClipboardItem item;
    item.html = html;
    item.rtf = toRtf(document);
    item.plainText =
        document.toPlainText() + QString::fromUtf16(u"\nligne 2 \u00AB\u00A0ok\u00A0\u00BB");
    QtClipboard().setItem(item);

    const QList<QByteArray> targets = readWithXclip("TARGETS").split('\n');
    for (const char *type :
         {"text/html", "text/rtf", "text/richtext", "application/rtf", "UTF8_STRING", "text/plain"})
        EXPECT_TRUE(targets.contains(type)) << type;

    EXPECT_EQ(readWithXclip("text/html"), item.html->toUtf8());
    for (const char *type : {"text/rtf", "text/richtext", "application/rtf"})
        EXPECT_EQ(readWithXclip(type), *item.rtf) << type;
    EXPECT_EQ(readWithXclip("UTF8_STRING"), item.plainText->toUtf8());
    EXPECT_EQ(readWithXclip("text/plain"), item.plainText->toUtf8());
}
