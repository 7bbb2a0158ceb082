#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace velino::ui {

// Gmail shows a message whose HTML is larger than this behind a "Message clipped" link.
inline constexpr qint64 kGmailClipBytes = 102 * 1024;

// "Taille du mail : 12 Ko" (kilobytes of 1,024 bytes, rounded).
QString mailSizeText(qint64 htmlBytes);

// The document as a mail client that forces dark mode shows it: the whole page inverted
// and turned back to its hues (hue-rotate 180 degrees), pictures inverted again so that
// they keep their colours. A style element is put at the start of the head (or of the
// document when it has no head), so that the first paint is already dark.
QString forcedDarkDocument(const QString &html);
// The document as a client that blocks remote images shows it: a Content-Security-Policy
// at the start of the head lets only inline (data:) images load, so remote ones are never
// requested and their alternative text shows.
QString imagesBlockedDocument(const QString &html);

// How the preview shows the e-mail, remembered with the window's settings (the INI file
// of QSettings "Korvel"/"Velino", key "velino-preview-mode-v1"). Only the view changes:
// the generated HTML and everything that leaves the application stay as they are.
class PreviewMode : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Mode mode READ mode WRITE setMode NOTIFY modeChanged)

public:
    enum Mode {
        Desktop,  // "Bureau": the e-mail as it is, the default
        Phone,    // "Telephone": laid out 375 CSS pixels wide
        Dark,     // "Sombre": as a client that forces dark mode shows it
        NoImages, // "Sans images": remote images blocked
    };
    Q_ENUM(Mode)

    explicit PreviewMode(QObject *parent = nullptr);

    Mode mode() const { return m_mode; }
    void setMode(Mode mode);

Q_SIGNALS:
    void modeChanged();

private:
    Mode m_mode = Desktop;
};

// The document the preview loads in `mode`: the HTML itself in Desktop and Phone.
QString previewDocumentFor(const QString &html, PreviewMode::Mode mode);

} // namespace velino::ui
