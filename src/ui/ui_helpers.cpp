#include "ui_helpers.h"

#include "long_text.h"
#include "preset_dates.h"
#include "preview_mode.h"
#include "sanitizers.h"
#include "service_host.h"
#include "text.h"

#include <QFile>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QKeySequence>

namespace velino::ui {

QString preferredFontFamily() {
    static const QString family = [] {
        const QString inter = QStringLiteral("Inter");
        if (QFontDatabase::families().contains(inter))
            return inter;
        return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    }();
    return family;
}

QString imageResourcePath(const QString &name) {
    if (name.isEmpty() || name.contains(u'/'))
        return QString();
    const QString path = QString::fromUtf16(kImageResourcePrefix) + name + QStringLiteral(".png");
    return QFile::exists(path) ? path : QString();
}

QUrl imageResourceUrl(const QString &name) {
    const QString path = imageResourcePath(name);
    return path.isEmpty() ? QUrl() : QUrl(QStringLiteral("qrc") + path);
}

UiHelpers::UiHelpers(QObject *parent) : QObject(parent) {}

QString UiHelpers::fontFamily() const {
    return preferredFontFamily();
}

QString UiHelpers::serviceHost() const {
    return velino::serviceHost();
}

QColor UiHelpers::colorFromHex(const QString &text) const {
    const std::optional<std::array<int, 3>> rgb = velino::render::hexColorChannels(text);
    return rgb ? QColor::fromRgb((*rgb)[0], (*rgb)[1], (*rgb)[2]) : QColor(Qt::transparent);
}

bool UiHelpers::isHexColor(const QString &text) const {
    return velino::render::hexColorChannels(text).has_value();
}

QString UiHelpers::upperCased(const QString &text) const {
    return velino::text::upperCased(text);
}

QString UiHelpers::updatedLabel(const QDateTime &instant) const {
    return presetUpdatedLabel(instant);
}

QUrl UiHelpers::imageUrl(const QString &resourceName) const {
    return imageResourceUrl(resourceName);
}

QString UiHelpers::shortcutText(const QVariant &shortcut) const {
    QKeySequence sequence;
    switch (shortcut.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        sequence = QKeySequence(QKeySequence::StandardKey(shortcut.toInt()));
        break;
    case QMetaType::QString:
        sequence = QKeySequence(shortcut.toString());
        break;
    case QMetaType::QKeySequence:
        sequence = shortcut.value<QKeySequence>();
        break;
    default:
        if (shortcut.canConvert<int>() &&
            shortcut.metaType().flags().testFlag(QMetaType::IsEnumeration))
            sequence = QKeySequence(QKeySequence::StandardKey(shortcut.toInt()));
        break;
    }
    return sequence.toString(QKeySequence::NativeText);
}

qint64 UiHelpers::utf8Size(const QString &text) const {
    return velino::ui::utf8Size(text);
}

QString UiHelpers::mailSizeText(qint64 htmlBytes) const {
    return velino::ui::mailSizeText(htmlBytes);
}

bool UiHelpers::isClippedByGmail(qint64 htmlBytes) const {
    return htmlBytes > kGmailClipBytes;
}

} // namespace velino::ui
