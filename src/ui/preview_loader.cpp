#include "preview_loader.h"

#include "preview_mode.h"

#include "service_host.h"

#include <QDir>
#include <QMetaProperty>
#include <QTemporaryFile>

namespace velino::ui {

namespace {

// The prefix loadHtml() puts before the percent-encoded document.
constexpr qsizetype kDataUrlPrefixLength = sizeof("data:text/html;charset=UTF-8,") - 1;

bool isUnreservedUrlByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

// Index just after the opening tag `<name ...>` (case-insensitive), or -1. A longer tag
// name that starts the same way (<header>, <html-x>) does not count.
qsizetype endOfOpeningTag(const QByteArray &lowerCased, QByteArrayView name) {
    const QByteArray open = QByteArray("<") + name.toByteArray();
    qsizetype from = 0;
    while (true) {
        const qsizetype at = lowerCased.indexOf(open, from);
        if (at < 0)
            return -1;
        const qsizetype after = at + open.size();
        if (after >= lowerCased.size())
            return -1;
        const char next = lowerCased.at(after);
        if (next == '>' || next == '/' || next == ' ' || next == '\t' || next == '\n' ||
            next == '\r' || next == '\f') {
            const qsizetype close = lowerCased.indexOf('>', after);
            return close < 0 ? -1 : close + 1;
        }
        from = after;
    }
}

QByteArray escapedAttribute(const QByteArray &value) {
    QByteArray out;
    out.reserve(value.size());
    for (const char c : value) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

} // namespace

qsizetype dataUrlLength(const QByteArray &utf8) {
    qsizetype length = kDataUrlPrefixLength;
    for (const char c : utf8)
        length += isUnreservedUrlByte(c) ? 1 : 3;
    return length;
}

QUrl previewBaseUrl(const QString &host) {
    if (host.isEmpty())
        return QUrl();
    QUrl url(QStringLiteral("https://") + host, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty())
        return QUrl();
    return url;
}

PreviewPlan planPreview(const QByteArray &utf8, const QString &host) {
    PreviewPlan plan;
    if (utf8.isEmpty()) {
        plan.route = PreviewPlan::Route::Blank;
        return plan;
    }
    plan.baseUrl = previewBaseUrl(host);
    plan.route = dataUrlLength(utf8) > kMaxDataUrlLength ? PreviewPlan::Route::File
                                                         : PreviewPlan::Route::Html;
    return plan;
}

QByteArray previewFileContents(const QByteArray &utf8, const QUrl &baseUrl) {
    static const QByteArray bom("\xEF\xBB\xBF");
    if (baseUrl.isEmpty())
        return bom + utf8;

    const QByteArray lower = utf8.toLower();
    if (endOfOpeningTag(lower, "base") >= 0)
        return bom + utf8;

    const QByteArray base =
        "<base href=\"" + escapedAttribute(baseUrl.toString(QUrl::FullyEncoded).toUtf8()) + "\">";
    qsizetype at = endOfOpeningTag(lower, "head");
    if (at < 0)
        at = endOfOpeningTag(lower, "html");
    if (at < 0) {
        // No <html> nor <head>: the parser opens the head itself; a <base> first is in it,
        // after a doctype when there is one.
        at = lower.startsWith("<!doctype") ? lower.indexOf('>') + 1 : 0;
    }
    QByteArray out;
    out.reserve(bom.size() + utf8.size() + base.size());
    out += bom;
    out += QByteArrayView(utf8).first(at);
    out += base;
    out += QByteArrayView(utf8).sliced(at);
    return out;
}

HtmlPreviewLoader::HtmlPreviewLoader(QObject *parent)
    : QObject(parent), m_serviceHost(velino::serviceHost()) {}

HtmlPreviewLoader::~HtmlPreviewLoader() = default;

void HtmlPreviewLoader::setView(QObject *view) {
    if (m_view == view)
        return;
    if (m_loadingConnection)
        disconnect(m_loadingConnection);
    m_view = view;
    if (view) {
        const QMetaObject *meta = view->metaObject();
        const int index = meta->indexOfProperty("loading");
        if (index >= 0 && meta->property(index).hasNotifySignal()) {
            const QMetaMethod slot =
                staticMetaObject.method(staticMetaObject.indexOfSlot("onViewLoadingChanged()"));
            m_loadingConnection = connect(view, meta->property(index).notifySignal(), this, slot);
        }
    }
    Q_EMIT viewChanged();
    scheduleLoad();
}

void HtmlPreviewLoader::setHtml(const QString &html) {
    const bool changed = m_html != html;
    m_html = html;
    if (changed)
        Q_EMIT htmlChanged();
    scheduleLoad();
}

void HtmlPreviewLoader::setServiceHost(const QString &host) {
    if (m_serviceHost == host)
        return;
    m_serviceHost = host;
    Q_EMIT serviceHostChanged();
    scheduleLoad();
}

void HtmlPreviewLoader::setChangeSource(QObject *source) {
    if (m_changeSource == source)
        return;
    for (const QMetaObject::Connection &connection : std::as_const(m_changeConnections))
        disconnect(connection);
    m_changeConnections.clear();
    m_changeSource = source;
    if (source) {
        const QMetaObject *meta = source->metaObject();
        const QMetaMethod slot =
            staticMetaObject.method(staticMetaObject.indexOfSlot("scheduleLoad()"));
        QList<int> signalIndexes;
        for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
            const QMetaProperty property = meta->property(i);
            if (property.hasNotifySignal() &&
                !signalIndexes.contains(property.notifySignalIndex())) {
                signalIndexes.append(property.notifySignalIndex());
                m_changeConnections.append(connect(source, property.notifySignal(), this, slot));
            }
        }
    }
    Q_EMIT changeSourceChanged();
    scheduleLoad();
}

void HtmlPreviewLoader::setMode(int mode) {
    if (mode == m_mode || mode < PreviewMode::Desktop || mode > PreviewMode::NoImages)
        return;
    m_mode = mode;
    Q_EMIT modeChanged();
    scheduleLoad();
}

void HtmlPreviewLoader::scheduleLoad() {
    if (m_loadScheduled)
        return;
    m_loadScheduled = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_loadScheduled = false;
            load();
        },
        Qt::QueuedConnection);
}

QUrl HtmlPreviewLoader::fileUrl() const {
    if (!m_lastLoadUsedFile || !m_file)
        return QUrl();
    return QUrl::fromLocalFile(m_file->fileName());
}

int HtmlPreviewLoader::dataUrlLengthOf(const QString &html) const {
    return int(dataUrlLength(html.toUtf8()));
}

void HtmlPreviewLoader::classBegin() {
    m_complete = false;
}

void HtmlPreviewLoader::componentComplete() {
    m_complete = true;
    scheduleLoad();
}

void HtmlPreviewLoader::load() {
    if (!m_complete || !m_view)
        return;

    Q_EMIT aboutToLoad();
    const QString document = previewDocumentFor(m_html, PreviewMode::Mode(m_mode));
    const QByteArray utf8 = document.toUtf8();
    const PreviewPlan plan = planPreview(utf8, m_serviceHost);
    bool usedFile = false;
    switch (plan.route) {
    case PreviewPlan::Route::Blank:
        m_view->setProperty("url", QUrl(QStringLiteral("about:blank")));
        break;
    case PreviewPlan::Route::File:
        if (writeTemporaryFile(previewFileContents(utf8, plan.baseUrl))) {
            usedFile = true;
            m_view->setProperty("url", QUrl::fromLocalFile(m_file->fileName()));
            break;
        }
        // Without a file, the string is all there is to try.
        [[fallthrough]];
    case PreviewPlan::Route::Html:
        QMetaObject::invokeMethod(m_view, "loadHtml", Q_ARG(QString, document),
                                  Q_ARG(QUrl, plan.baseUrl));
        break;
    }
    if (!usedFile) {
        m_previousFile.reset();
        m_file.reset();
    }
    m_lastLoadUsedFile = usedFile;
    m_lastLoadWasBlank = plan.route == PreviewPlan::Route::Blank;
    ++m_loadCount;
    Q_EMIT loadRequested();
}

bool HtmlPreviewLoader::writeTemporaryFile(const QByteArray &contents) {
    auto file = std::make_unique<QTemporaryFile>(QDir::tempPath() +
                                                 QStringLiteral("/velino-preview-XXXXXX.html"));
    if (!file->open() || file->write(contents) != contents.size() || !file->flush()) {
        return false;
    }
    file->close();
    m_previousFile = std::move(m_file);
    m_file = std::move(file);
    return true;
}

void HtmlPreviewLoader::onViewLoadingChanged() {
    // Only the end of the first load requested matters.
    if (m_hasShownPage || m_loadCount == 0 || !m_view || m_view->property("loading").toBool())
        return;
    m_hasShownPage = true;
    Q_EMIT hasShownPageChanged();
}

} // namespace velino::ui
