#include "qt_services.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <gtest/gtest.h>

using namespace velino;

// HTML, text and text/rtf are read back by the store's copy tests; these two types are for
// other X11 and Wayland applications.
TEST(QtClipboard, OffersTheRtfUnderItsOtherTypes) {
    ClipboardItem item;
    item.rtf = QByteArray("{\\rtf1\\ansi R\\u233?paration}\n");
    QtClipboard().setItem(item);
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(mime, nullptr);
    for (const char *type : {"text/richtext", "application/rtf"})
        EXPECT_EQ(mime->data(type), *item.rtf) << type;
}
