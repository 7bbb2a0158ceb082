#pragma once

#include <QObject>
#include <QString>
#include <QStringView>
#include <QtQml/qqmlregistration.h>

namespace velino::ui {

// Above this many characters a form field shows a read-only summary instead of laying the
// whole text out: Qt's text layout takes seconds for 1 MB and minutes for 4 MB on one line,
// on the window's thread, at every start since the text is saved.
inline constexpr qsizetype kLongTextCharacters = 100000;

bool isLongText(QStringView text);
// The number of bytes of the text written in UTF-8, counted without writing it.
qsizetype utf8Size(QStringView text);
// "Texte tres long (4,0 Mo) : " followed by the first characters of the text, line breaks
// and tabs shown as blanks, and "...".
QString longTextSummary(QStringView text);
// The size of the text written in UTF-8, in French: "4,0 Mo", "120 Ko".
QString longTextSize(QStringView text);

// The same for the QML views.
class LongText : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(int threshold READ threshold CONSTANT)

public:
    using QObject::QObject;

    int threshold() const { return int(kLongTextCharacters); }
    Q_INVOKABLE bool isLong(const QString &text) const { return isLongText(text); }
    Q_INVOKABLE QString summary(const QString &text) const { return longTextSummary(text); }
    Q_INVOKABLE QString size(const QString &text) const { return longTextSize(text); }
};

} // namespace velino::ui
