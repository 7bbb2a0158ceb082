#include "qt_services.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <gtest/gtest.h>

using namespace velino;

// The RTF goes under the type macOS applications read and the two X11 and Wayland ones offer;
// how the platform carries each type to other programs is Qt's.
TEST(QtClipboard, OffersEveryRepresentationUnderEachOfItsTypes) {
    ClipboardItem item;
    item.html = QString::fromUtf16(u"<p>R\u00E9paration <b>pr\u00EAte</b> \U0001F600</p>");
    item.rtf = QByteArray("{\\rtf1\\ansi R\\u233?paration}\n");
    item.plainText = QString::fromUtf16(u"R\u00E9paration\nligne 2 \u00AB\u00A0ok\u00A0\u00BB");
    QtClipboard().setItem(item);
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(mime, nullptr);
    EXPECT_EQ(mime->html(), *item.html);
    EXPECT_EQ(mime->text(), *item.plainText);
    for (const char *type : {"text/rtf", "text/richtext", "application/rtf"})
        EXPECT_EQ(mime->data(type), *item.rtf) << type;
}
