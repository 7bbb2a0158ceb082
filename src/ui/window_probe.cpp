#include "window_probe.h"

#include <QQuickItem>
#include <QQuickWindow>

namespace velino::ui {

namespace {

// Depth-first through the visual tree: items made by loaders and views are not always
// QObject children of the items that show them.
QQuickItem *findItem(QQuickItem *item, const QString &name) {
    if (!item)
        return nullptr;
    if (item->objectName() == name)
        return item;
    const QList<QQuickItem *> children = item->childItems();
    for (QQuickItem *child : children) {
        if (QQuickItem *found = findItem(child, name))
            return found;
    }
    return nullptr;
}

QQuickItem *findItem(QQuickWindow *window, const QString &name) {
    return window ? findItem(window->contentItem(), name) : nullptr;
}

} // namespace

QObject *findPreviewLoader(QQuickWindow *window) {
    QQuickItem *preview = findItem(window, QStringLiteral("htmlPreview"));
    return preview ? preview->property("loader").value<QObject *>() : nullptr;
}

QObject *findPreviewWebView(QQuickWindow *window) {
    QQuickItem *preview = findItem(window, QStringLiteral("htmlPreview"));
    return preview ? preview->property("webView").value<QObject *>() : nullptr;
}

QQuickItem *findFieldControl(QQuickWindow *window, const char *fieldName) {
    QQuickItem *wrapper = findItem(window, QStringLiteral("field.") + QLatin1StringView(fieldName));
    if (!wrapper)
        return nullptr;
    if (auto *field = wrapper->property("field").value<QQuickItem *>())
        return field;
    return wrapper->property("editor").value<QQuickItem *>();
}

bool previewIsSettled(QQuickWindow *window) {
    QObject *loader = findPreviewLoader(window);
    QObject *view = findPreviewWebView(window);
    return loader && view && loader->property("hasShownPage").toBool() &&
           !view->property("loading").toBool();
}

} // namespace velino::ui
