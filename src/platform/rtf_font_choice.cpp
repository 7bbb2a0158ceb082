#include "rtf_font_choice.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>

#include <optional>

namespace velino {
namespace {

struct Generic {
    QStringView keyword;
    QFont::StyleHint hint;
    QByteArray familyClass;
    QString lastResort; // when the font matching gives no installed family
};

const Generic kGenerics[] = {
    {u"sans-serif", QFont::SansSerif, "\\fswiss", QStringLiteral("Helvetica")},
    {u"serif", QFont::Serif, "\\froman", QStringLiteral("Times")},
    {u"monospace", QFont::Monospace, "\\fmodern", QStringLiteral("Courier")},
    {u"cursive", QFont::Cursive, "\\fscript", QStringLiteral("Comic Sans MS")},
    {u"fantasy", QFont::Fantasy, "\\fdecor", QStringLiteral("Impact")},
};

const Generic *genericFor(QStringView name) {
    for (const Generic &generic : kGenerics) {
        if (name.compare(generic.keyword, Qt::CaseInsensitive) == 0)
            return &generic;
    }
    return nullptr;
}

// Names a browser resolves itself; no font carries them.
bool isKeyword(QStringView name) {
    static const QStringView keywords[] = {u"BlinkMacSystemFont",
                                           u"system-ui",
                                           u"ui-sans-serif",
                                           u"ui-serif",
                                           u"ui-monospace",
                                           u"ui-rounded",
                                           u"emoji",
                                           u"math",
                                           u"fangsong",
                                           u"inherit",
                                           u"initial",
                                           u"unset",
                                           u"revert"};
    if (name.startsWith(u'-'))
        return true; // vendor keywords: -apple-system, -webkit-body
    for (const QStringView keyword : keywords) {
        if (name.compare(keyword, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

QString cleanName(QString family) {
    family.removeIf([](QChar c) {
        return c == u';' || c == u'{' || c == u'}' || c == u'"' || c == u'\'' || c == u'\\';
    });
    return family.trimmed();
}

RtfFont installedGeneric(const Generic &generic) {
    QFont font(generic.keyword.toString());
    font.setStyleHint(generic.hint);
    const QString matched = QFontInfo(font).family();
    const bool usable = !matched.isEmpty() && QFontDatabase::hasFamily(matched);
    return {usable ? matched : generic.lastResort, generic.familyClass};
}

} // namespace

RtfFont RtfFontChooser::choose(const QStringList &stack) {
    if (const auto known = chosen_.constFind(stack); known != chosen_.cend())
        return *known;

    const Generic *stackGeneric = nullptr;
    for (const QString &family : stack) {
        if (const Generic *generic = genericFor(family.trimmed())) {
            stackGeneric = generic;
            break;
        }
    }
    const Generic &generic = stackGeneric ? *stackGeneric : kGenerics[0];

    std::optional<RtfFont> font;
    for (const QString &entry : stack) {
        const QString family = cleanName(entry);
        if (genericFor(family))
            break;
        if (!family.isEmpty() && !isKeyword(family) && QFontDatabase::hasFamily(family)) {
            font = RtfFont{family, stackGeneric ? generic.familyClass : QByteArray("\\fnil")};
            break;
        }
    }
    if (!font)
        font = installedGeneric(generic);
    chosen_.insert(stack, *font);
    return *font;
}

} // namespace velino
