#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <memory>

class QTemporaryFile;

namespace velino::ui {

// QtWebEngine's loadHtml() turns the document into a percent-encoded
// "data:text/html;charset=UTF-8," URL and refuses a URL longer than this.
inline constexpr qsizetype kMaxDataUrlLength = 2 * 1024 * 1024;

// Length of the data: URL that loadHtml() builds for this UTF-8 document.
qsizetype dataUrlLength(const QByteArray &utf8);

// "https://" + host, or an empty URL when that does not form a valid address.
QUrl previewBaseUrl(const QString &host);

// How one preview document is loaded: from the string with the base URL; when the
// string is too long for a data: URL, from a temporary file that carries the base URL in a
// <base> element; an empty document as about:blank (the web engine shows nothing for an
// empty string loaded first, and navigates to the base URL itself when there is one).
struct PreviewPlan {
    enum class Route { Html, File, Blank };
    Route route = Route::Html;
    QUrl baseUrl;
};
PreviewPlan planPreview(const QByteArray &utf8, const QString &host);

// The bytes written to the temporary file: a UTF-8 byte order mark (a file has no
// charset header), then the document with <base href="baseUrl"> inserted at the start of
// its head, unless baseUrl is empty or the document already has its own <base>.
QByteArray previewFileContents(const QByteArray &utf8, const QUrl &baseUrl);

// Loads the preview's HTML into a web view (a WebEngineView, or anything with the same
// loadHtml(string, url) method and `url` and `loading` properties). Every assignment of
// `html`, also with the same text, reloads the page, as does a change of the host and any
// change announced by `changeSource` (the store: status texts included). Loads are made
// once per event-loop turn, after the changes of that turn, like a view re-evaluated.
class HtmlPreviewLoader : public QObject, public QQmlParserStatus {
    Q_OBJECT
    QML_NAMED_ELEMENT(PreviewLoader)
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(QObject *view READ view WRITE setView NOTIFY viewChanged)
    Q_PROPERTY(QString html READ html WRITE setHtml NOTIFY htmlChanged)
    Q_PROPERTY(QString serviceHost READ serviceHost WRITE setServiceHost NOTIFY serviceHostChanged)
    Q_PROPERTY(
        QObject *changeSource READ changeSource WRITE setChangeSource NOTIFY changeSourceChanged)
    Q_PROPERTY(QUrl baseUrl READ baseUrl NOTIFY serviceHostChanged)
    Q_PROPERTY(int loadCount READ loadCount NOTIFY loadRequested)
    Q_PROPERTY(bool lastLoadUsedFile READ lastLoadUsedFile NOTIFY loadRequested)
    Q_PROPERTY(bool lastLoadWasBlank READ lastLoadWasBlank NOTIFY loadRequested)
    Q_PROPERTY(QUrl fileUrl READ fileUrl NOTIFY loadRequested)
    Q_PROPERTY(bool hasShownPage READ hasShownPage NOTIFY hasShownPageChanged)
    Q_PROPERTY(int maxDataUrlLength READ maxDataUrlLength CONSTANT)
    Q_PROPERTY(int mode READ mode WRITE setMode NOTIFY modeChanged)

public:
    explicit HtmlPreviewLoader(QObject *parent = nullptr);
    ~HtmlPreviewLoader() override;

    QObject *view() const { return m_view; }
    void setView(QObject *view);
    QString html() const { return m_html; }
    void setHtml(const QString &html);
    QString serviceHost() const { return m_serviceHost; }
    void setServiceHost(const QString &host);
    QUrl baseUrl() const { return previewBaseUrl(m_serviceHost); }
    // How the page is shown (a PreviewMode::Mode); a change reloads it.
    int mode() const { return m_mode; }
    void setMode(int mode);
    QObject *changeSource() const { return m_changeSource; }
    void setChangeSource(QObject *source);

    int loadCount() const { return m_loadCount; }
    bool lastLoadUsedFile() const { return m_lastLoadUsedFile; }
    bool lastLoadWasBlank() const { return m_lastLoadWasBlank; }
    // The temporary file of the last load when it went through a file, else empty.
    QUrl fileUrl() const;
    // True once the view has finished a first load: until then it stays hidden, so that
    // nothing (no white page) is drawn before the e-mail.
    bool hasShownPage() const { return m_hasShownPage; }

    static int maxDataUrlLength() { return int(kMaxDataUrlLength); }
    // Length of the data: URL loadHtml() would build for this text.
    Q_INVOKABLE int dataUrlLengthOf(const QString &html) const;

    void classBegin() override;
    void componentComplete() override;

Q_SIGNALS:
    void viewChanged();
    void htmlChanged();
    void serviceHostChanged();
    void changeSourceChanged();
    void modeChanged();
    // Just before the view is given a new page: the last moment to read the old one.
    void aboutToLoad();
    void loadRequested();
    void hasShownPageChanged();

private Q_SLOTS:
    void onViewLoadingChanged();
    void scheduleLoad();

private:
    void load();
    bool writeTemporaryFile(const QByteArray &contents);

    QPointer<QObject> m_view;
    QMetaObject::Connection m_loadingConnection;
    QPointer<QObject> m_changeSource;
    QList<QMetaObject::Connection> m_changeConnections;
    bool m_loadScheduled = false;
    QString m_html;
    QString m_serviceHost;
    int m_mode = 0;
    bool m_complete = true;
    int m_loadCount = 0;
    bool m_lastLoadUsedFile = false;
    bool m_lastLoadWasBlank = false;
    bool m_hasShownPage = false;
    // The file shown now and the one before it, which a page still loading may read.
    std::unique_ptr<QTemporaryFile> m_file;
    std::unique_ptr<QTemporaryFile> m_previousFile;
};

} // namespace velino::ui
