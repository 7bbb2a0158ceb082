#pragma once

#include <QColor>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace velino::ui {

// Resource folder of the application's images ("VelinoLogo" is VelinoLogo.png there).
inline constexpr char16_t kImageResourcePrefix[] = u":/velino/";

// Font family of the whole window: Inter when installed, otherwise the default sans-serif.
QString preferredFontFamily();

// The resource path of the application image `name` (":/velino/NAME.png"), or an empty
// text when there is no such image.
QString imageResourcePath(const QString &name);
// Address of the PNG image resource named `name`, or an empty URL when there is none.
QUrl imageResourceUrl(const QString &name);

// Formatting and parsing helpers the QML views call; no state.
class UiHelpers : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT)
    // The service host of the phone sync and web interface (velino::serviceHost()).
    Q_PROPERTY(QString serviceHost READ serviceHost CONSTANT)

public:
    explicit UiHelpers(QObject *parent = nullptr);

    QString fontFamily() const;
    QString serviceHost() const;

    // The colour of a hex text ("#2F7DF6", "#abc"), or transparent when it does not parse.
    Q_INVOKABLE QColor colorFromHex(const QString &text) const;
    Q_INVOKABLE bool isHexColor(const QString &text) const;

    // Unicode upper-casing of the whole text.
    Q_INVOKABLE QString upperCased(const QString &text) const;

    // "05 mars · 14:07" in the user's time zone; empty for an invalid date.
    Q_INVOKABLE QString updatedLabel(const QDateTime &instant) const;

    Q_INVOKABLE QUrl imageUrl(const QString &resourceName) const;

    // A shortcut as this platform writes it ("Ctrl+X"): from a StandardKey value or a
    // key sequence text; empty for anything else.
    Q_INVOKABLE QString shortcutText(const QVariant &shortcut) const;

    // The preview's size line (preview_mode.h).
    Q_INVOKABLE qint64 utf8Size(const QString &text) const;
    Q_INVOKABLE QString mailSizeText(qint64 htmlBytes) const;
    Q_INVOKABLE bool isClippedByGmail(qint64 htmlBytes) const;
};

} // namespace velino::ui
