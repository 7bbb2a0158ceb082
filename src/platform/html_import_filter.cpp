#include "html_import_filter.h"

#include "css_background.h"

#include <QList>
#include <QStringList>

#include <algorithm>
#include <iterator>
#include <optional>

namespace velino {
namespace {

struct Tag {
    qsizetype end = 0; // just after '>'
    QString name;      // lower case
    bool closing = false;
    bool selfClosing = false;
    bool hiddenAttribute = false;
    qsizetype styleStart = -1; // the style attribute's value, without quotes
    qsizetype styleLength = 0;
};

bool isNameChar(QChar c) {
    return c.isLetterOrNumber() || c == u'-' || c == u':' || c == u'_';
}

bool isVoidElement(QStringView name) {
    static const QStringView voids[] = {u"area",   u"base",  u"br",    u"col",  u"embed",
                                        u"hr",     u"img",   u"input", u"link", u"meta",
                                        u"source", u"track", u"wbr"};
    return std::find(std::begin(voids), std::end(voids), name) != std::end(voids);
}

bool isRawTextElement(QStringView name) {
    return name == u"style" || name == u"script" || name == u"title" || name == u"textarea";
}

// The tag starting at html[at] == '<', or nothing when no element tag starts there.
std::optional<Tag> readTag(QStringView html, qsizetype at) {
    Tag tag;
    qsizetype i = at + 1;
    if (i < html.size() && html[i] == u'/') {
        tag.closing = true;
        ++i;
    }
    const qsizetype nameStart = i;
    if (i >= html.size() || !html[i].isLetter())
        return std::nullopt;
    while (i < html.size() && isNameChar(html[i]))
        ++i;
    tag.name = html.mid(nameStart, i - nameStart).toString().toLower();

    while (i < html.size()) {
        const QChar c = html[i];
        if (c == u'>') {
            tag.end = i + 1;
            tag.selfClosing = html[i - 1] == u'/';
            return tag;
        }
        if (c.isSpace() || c == u'/') {
            ++i;
            continue;
        }
        const qsizetype attributeStart = i;
        while (i < html.size() && !html[i].isSpace() && html[i] != u'=' && html[i] != u'>' &&
               html[i] != u'/')
            ++i;
        const QStringView attribute = html.mid(attributeStart, i - attributeStart);
        while (i < html.size() && html[i].isSpace())
            ++i;
        qsizetype valueStart = i;
        qsizetype valueLength = 0;
        if (i < html.size() && html[i] == u'=') {
            ++i;
            while (i < html.size() && html[i].isSpace())
                ++i;
            if (i < html.size() && (html[i] == u'"' || html[i] == u'\'')) {
                const qsizetype close = html.indexOf(html[i], i + 1);
                if (close < 0)
                    return std::nullopt;
                valueStart = i + 1;
                valueLength = close - valueStart;
                i = close + 1;
            } else {
                valueStart = i;
                while (i < html.size() && !html[i].isSpace() && html[i] != u'>')
                    ++i;
                valueLength = i - valueStart;
            }
        }
        if (attribute.compare(u"style", Qt::CaseInsensitive) == 0) {
            tag.styleStart = valueStart;
            tag.styleLength = valueLength;
        } else if (attribute.compare(u"hidden", Qt::CaseInsensitive) == 0) {
            tag.hiddenAttribute = true;
        }
    }
    return std::nullopt;
}

struct Declaration {
    QStringView text;     // as written, for copying
    QString property;     // lower case, trimmed
    QString value;        // lower case, without white space and !important
    QStringView rawValue; // as written
};

QList<Declaration> declarations(QStringView style) {
    QList<Declaration> result;
    for (const QStringView text : style.split(u';')) {
        const qsizetype colon = text.indexOf(u':');
        Declaration declaration{text, {}, {}, {}};
        if (colon > 0) {
            declaration.property = text.first(colon).trimmed().toString().toLower();
            declaration.rawValue = text.sliced(colon + 1).trimmed();
            QString value = declaration.rawValue.toString().toLower();
            value.remove(QStringLiteral("!important"));
            value.removeIf([](QChar c) { return c.isSpace(); });
            declaration.value = value;
        }
        result.append(declaration);
    }
    return result;
}

// "0", "0.0", "0px", "0%" and the like.
bool isZero(QStringView value) {
    qsizetype digits = 0;
    while (digits < value.size() && (value[digits].isDigit() || value[digits] == u'.'))
        ++digits;
    bool ok = false;
    const double number = value.first(digits).toDouble(&ok);
    const QStringView unit = value.sliced(digits);
    return ok && number == 0 && (unit.isEmpty() || unit == u"%" || unit == u"px" || unit == u"em");
}

bool hidesElement(const Tag &tag, QStringView html) {
    if (tag.hiddenAttribute)
        return true;
    if (tag.styleStart < 0)
        return false;
    bool zeroHeight = false;
    bool clipped = false;
    for (const Declaration &d : declarations(html.mid(tag.styleStart, tag.styleLength))) {
        if ((d.property == u"display" && d.value == u"none") ||
            (d.property == u"visibility" && d.value == u"hidden") ||
            (d.property == u"opacity" && isZero(d.value)) ||
            (d.property == u"mso-hide" && d.value == u"all"))
            return true;
        zeroHeight = zeroHeight ||
                     ((d.property == u"max-height" || d.property == u"height") && isZero(d.value));
        clipped = clipped || (d.property == u"overflow" && d.value == u"hidden");
    }
    return zeroHeight && clipped;
}

// The style with each gradient background replaced by its solid colour.
QString withSolidBackgrounds(QStringView style) {
    QStringList parts;
    bool changed = false;
    for (const Declaration &d : declarations(style)) {
        if ((d.property == u"background" || d.property == u"background-image") &&
            d.value.contains(u"gradient(")) {
            changed = true;
            if (const std::optional<QColor> color = solidBackground(d.rawValue)) {
                parts.append(QStringLiteral("background:rgba(%1, %2, %3, %4)")
                                 .arg(color->red())
                                 .arg(color->green())
                                 .arg(color->blue())
                                 .arg(color->alphaF(), 0, 'f', 3));
            }
            continue;
        }
        parts.append(d.text.toString());
    }
    return changed ? parts.join(u';') : style.toString();
}

void appendTag(QString &out, QStringView html, qsizetype start, const Tag &tag) {
    if (tag.styleStart < 0) {
        out += html.mid(start, tag.end - start);
        return;
    }
    out += html.mid(start, tag.styleStart - start);
    out += withSolidBackgrounds(html.mid(tag.styleStart, tag.styleLength));
    out += html.mid(tag.styleStart + tag.styleLength, tag.end - tag.styleStart - tag.styleLength);
}

// Position after the end of a comment or declaration starting at `at`, or nothing.
std::optional<qsizetype> endOfMarkup(QStringView html, qsizetype at) {
    if (html.mid(at).startsWith(u"<!--")) {
        const qsizetype close = html.indexOf(u"-->", at + 4);
        return close < 0 ? html.size() : close + 3;
    }
    if (html.mid(at).startsWith(u"<!") || html.mid(at).startsWith(u"<?")) {
        const qsizetype close = html.indexOf(u'>', at);
        return close < 0 ? html.size() : close + 1;
    }
    return std::nullopt;
}

// Position after the end tag matching an element named `name` whose content starts at `from`.
qsizetype endOfElement(QStringView html, qsizetype from, const QString &name) {
    int depth = 1;
    qsizetype i = from;
    while (true) {
        const qsizetype open = html.indexOf(u'<', i);
        if (open < 0)
            return html.size();
        if (const std::optional<qsizetype> end = endOfMarkup(html, open)) {
            i = *end;
            continue;
        }
        const std::optional<Tag> tag = readTag(html, open);
        if (!tag) {
            i = open + 1;
            continue;
        }
        i = tag->end;
        if (tag->name != name)
            continue;
        if (tag->closing && --depth == 0)
            return i;
        if (!tag->closing && !tag->selfClosing)
            ++depth;
    }
}

} // namespace

QString prepareHtmlForImport(QStringView html) {
    QString out;
    out.reserve(html.size());
    qsizetype i = 0;
    while (i < html.size()) {
        const qsizetype open = html.indexOf(u'<', i);
        if (open < 0) {
            out += html.sliced(i);
            break;
        }
        out += html.mid(i, open - i);
        if (const std::optional<qsizetype> end = endOfMarkup(html, open)) {
            out += html.mid(open, *end - open);
            i = *end;
            continue;
        }
        const std::optional<Tag> tag = readTag(html, open);
        if (!tag) {
            out += u'<';
            i = open + 1;
            continue;
        }
        if (!tag->closing && hidesElement(*tag, html)) {
            i = tag->selfClosing || isVoidElement(tag->name)
                    ? tag->end
                    : endOfElement(html, tag->end, tag->name);
            continue;
        }
        appendTag(out, html, open, *tag);
        i = tag->end;
        if (!tag->closing && isRawTextElement(tag->name)) {
            const qsizetype close =
                html.indexOf(QStringLiteral("</") + tag->name, i, Qt::CaseInsensitive);
            const qsizetype contentEnd = close < 0 ? html.size() : close;
            out += html.mid(i, contentEnd - i);
            i = contentEnd;
        }
    }
    return out;
}

} // namespace velino
