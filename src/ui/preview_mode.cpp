#include "preview_mode.h"

#include <QSettings>

#include <memory>

namespace velino::ui {

namespace {

const QString kSettingsKey = QStringLiteral("velino-preview-mode-v1");

// The INI file that also holds the sync code.
std::unique_ptr<QSettings> windowSettings() {
    return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                       QStringLiteral("Korvel"), QStringLiteral("Velino"));
}

} // namespace

QString mailSizeText(qint64 htmlBytes) {
    const qint64 kilobytes = (htmlBytes + 512) / 1024;
    return QStringLiteral("Taille du mail : %1 Ko").arg(kilobytes);
}

namespace {

// `snippet` at the start of the document's head, or of the document when it has no head.
QString withHeadStart(const QString &html, const QString &snippet) {
    if (html.isEmpty())
        return html;
    const qsizetype head = html.indexOf(QStringLiteral("<head"), 0, Qt::CaseInsensitive);
    const qsizetype end = head < 0 ? -1 : html.indexOf(QLatin1Char('>'), head);
    if (end < 0)
        return snippet + html;
    return html.left(end + 1) + snippet + html.mid(end + 1);
}

} // namespace

QString forcedDarkDocument(const QString &html) {
    return withHeadStart(html,
                         QStringLiteral("<style>html{filter:invert(1) hue-rotate(180deg)}"
                                        "img,picture,video{filter:invert(1) hue-rotate(180deg)}"
                                        "</style>"));
}

QString imagesBlockedDocument(const QString &html) {
    return withHeadStart(
        html,
        QStringLiteral("<meta http-equiv=\"Content-Security-Policy\" content=\"img-src data:\">"));
}

QString previewDocumentFor(const QString &html, PreviewMode::Mode mode) {
    switch (mode) {
    case PreviewMode::Dark:
        return forcedDarkDocument(html);
    case PreviewMode::NoImages:
        return imagesBlockedDocument(html);
    case PreviewMode::Desktop:
    case PreviewMode::Phone:
        break;
    }
    return html;
}

PreviewMode::PreviewMode(QObject *parent) : QObject(parent) {
    bool ok = false;
    const int stored = windowSettings()->value(kSettingsKey).toInt(&ok);
    if (ok && stored >= Desktop && stored <= NoImages)
        m_mode = Mode(stored);
}

void PreviewMode::setMode(Mode mode) {
    if (mode == m_mode || mode < Desktop || mode > NoImages)
        return;
    m_mode = mode;
    windowSettings()->setValue(kSettingsKey, int(mode));
    Q_EMIT modeChanged();
}

} // namespace velino::ui
