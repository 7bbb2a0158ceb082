#include "html_check.h"

#include <QList>
#include <QSet>

namespace velino::fuzz {
namespace {

const QSet<QString> &containerTags() {
    static const QSet<QString> tags = {
        QStringLiteral("html"),  QStringLiteral("head"), QStringLiteral("title"),
        QStringLiteral("style"), QStringLiteral("body"), QStringLiteral("table"),
        QStringLiteral("tr"),    QStringLiteral("td"),   QStringLiteral("a"),
        QStringLiteral("p"),     QStringLiteral("h1"),   QStringLiteral("div"),
        QStringLiteral("span")};
    return tags;
}

const QSet<QString> &voidTags() {
    static const QSet<QString> tags = {QStringLiteral("meta"), QStringLiteral("br"),
                                       QStringLiteral("img")};
    return tags;
}

bool isNameChar(QChar c) {
    return (c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9');
}

// At an "&": the length of the entity that starts there, or 0.
qsizetype entityLength(QStringView html, qsizetype at) {
    for (const char16_t *entity : {u"&amp;", u"&lt;", u"&gt;", u"&quot;", u"&#39;", u"&nbsp;"}) {
        const QStringView e(entity);
        if (html.sliced(at).startsWith(e))
            return e.size();
    }
    return 0;
}

} // namespace

QString htmlProblem(const QString &html) {
    const QStringView view(html);
    QList<QString> open;
    qsizetype i = 0;
    const qsizetype n = view.size();
    const auto where = [&i] { return QStringLiteral(" at %1").arg(i); };
    while (i < n) {
        const QChar c = view[i];
        if (c == u'&') {
            const qsizetype length = entityLength(view, i);
            if (length == 0)
                return QStringLiteral("bare ampersand") + where();
            i += length;
            continue;
        }
        if (c == u'>')
            return QStringLiteral("bare >") + where();
        if (c != u'<') {
            ++i;
            continue;
        }
        if (view.sliced(i).startsWith(u"<!--")) {
            const qsizetype end = view.indexOf(u"-->", i + 4);
            if (end < 0)
                return QStringLiteral("unterminated comment") + where();
            i = end + 3;
            continue;
        }
        if (view.sliced(i).startsWith(u"<!DOCTYPE html>")) {
            i += 15;
            continue;
        }
        const bool closing = i + 1 < n && view[i + 1] == u'/';
        qsizetype p = i + (closing ? 2 : 1);
        const qsizetype nameStart = p;
        while (p < n && isNameChar(view[p]))
            ++p;
        const QString name = view.sliced(nameStart, p - nameStart).toString();
        if (!containerTags().contains(name) && !voidTags().contains(name))
            return QStringLiteral("unknown tag <%1").arg(name) + where();
        // Attributes: name="value" pairs; no "<" anywhere inside the tag.
        while (p < n && view[p] != u'>') {
            if (view[p] == u'<')
                return QStringLiteral("< inside a tag") + where();
            if (view[p] == u'=') {
                if (p + 1 >= n || view[p + 1] != u'"')
                    return QStringLiteral("unquoted attribute") + where();
                const qsizetype end = view.indexOf(u'"', p + 2);
                if (end < 0)
                    return QStringLiteral("unterminated attribute") + where();
                const QStringView value = view.sliced(p + 2, end - p - 2);
                if (value.contains(u'<') || value.contains(u'>'))
                    return QStringLiteral("angle bracket in an attribute") + where();
                for (qsizetype a = value.indexOf(u'&'); a >= 0; a = value.indexOf(u'&', a + 1)) {
                    if (entityLength(value, a) == 0)
                        return QStringLiteral("bare ampersand in an attribute") + where();
                }
                p = end + 1;
                continue;
            }
            ++p;
        }
        if (p >= n)
            return QStringLiteral("unterminated tag") + where();
        i = p + 1;
        if (closing) {
            if (open.isEmpty() || open.last() != name)
                return QStringLiteral("</%1> closes nothing open").arg(name) + where();
            open.removeLast();
        } else if (containerTags().contains(name)) {
            open.append(name);
            if (name == u"style") {
                // The style sheet is the template's own text: skipped up to its end tag.
                const qsizetype end = view.indexOf(u"</style>", i);
                if (end < 0)
                    return QStringLiteral("unterminated style") + where();
                i = end;
            }
        }
    }
    if (!open.isEmpty())
        return QStringLiteral("<%1> never closed").arg(open.last());
    return QString();
}

} // namespace velino::fuzz
