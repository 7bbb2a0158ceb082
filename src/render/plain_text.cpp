#include "mail_template_context.h"
#include "sanitizers.h"
#include "text.h"
#include "text_buffer.h"

#include <cstring>

namespace velino {
namespace {

// Lines joined by single line feeds, written straight into one buffer.
class LineWriter {
public:
    explicit LineWriter(qsizetype capacity) : out_(capacity) {}

    void line(QStringView text) {
        if (started_)
            out_.append(u'\n');
        started_ = true;
        out_.append(text);
    }
    void emptyLine() { line(QStringView()); }

    // Presence is judged on the trimmed field, but the line written is the field as typed.
    void lineIfNotBlank(const QString &field) {
        if (!text::isBlank(field))
            line(field);
    }

    // Paragraphs joined by an empty line, then the empty line that closes the block.
    void paragraphBlock(const QStringList &paragraphs) {
        line(QStringView());
        for (qsizetype i = 0; i < paragraphs.size(); ++i) {
            if (i > 0)
                out_.append(u"\n\n");
            out_.append(paragraphs[i]);
        }
        emptyLine();
    }

    render::TextBuffer &buffer() { return out_; }

private:
    render::TextBuffer out_;
    bool started_ = false;
};

// Start of the first "\n\n\n" at or after from, or -1. memchr finds candidate bytes
// quickly; a candidate counts only when it is the whole code unit U+000A.
qsizetype findTripleLineFeed(QStringView s, qsizetype from) {
    const char16_t *const begin = s.utf16();
    const char *bytes = reinterpret_cast<const char *>(begin + from);
    const char *const end = reinterpret_cast<const char *>(begin + s.size());
    while (bytes < end) {
        const auto *hit =
            static_cast<const char *>(std::memchr(bytes, '\n', static_cast<size_t>(end - bytes)));
        if (!hit)
            return -1;
        const qsizetype offset = hit - reinterpret_cast<const char *>(begin);
        const qsizetype i = offset / 2;
        if (offset % 2 == 0 && i + 2 < s.size() && s[i] == u'\n' && s[i + 1] == u'\n' &&
            s[i + 2] == u'\n')
            return i;
        bytes = hit + 1;
    }
    return -1;
}

// One left-to-right pass replacing "\n\n\n" by "\n\n"; longer runs keep one extra feed.
QString collapseTripleLineFeeds(render::TextBuffer &joined) {
    const QStringView text = joined.view();
    qsizetype found = findTripleLineFeed(text, 0);
    if (found < 0)
        return joined.take();
    render::TextBuffer out(text.size());
    qsizetype from = 0;
    while (found >= 0) {
        out.append(text.mid(from, found - from));
        out.append(u"\n\n");
        from = found + 3;
        found = findTripleLineFeed(text, from);
    }
    out.append(text.mid(from));
    return out.take();
}

} // namespace

QString MailTemplateContext::plainText() const {
    qsizetype estimate = 256;
    for (const auto &field : MailComposerData::fields())
        estimate += (data.*field.member).size();
    LineWriter w(estimate + preheader.size() + mailIntro.size() + mailBody.size());

    w.line(data.businessName);
    w.lineIfNotBlank(data.businessTagline);
    w.emptyLine();
    w.line(subject);
    if (!preheader.isEmpty())
        w.line(preheader);
    w.emptyLine();
    w.line(mailTitle);
    w.emptyLine();
    if (!text::isBlank(mailIntro))
        w.paragraphBlock(introParagraphs());
    if (!text::isBlank(mailBody))
        w.paragraphBlock(bodyParagraphs());
    if (!text::isBlank(data.highlight)) {
        w.line(u"Point cle : ");
        w.buffer().append(data.highlight);
        w.emptyLine();
    }
    if (!details.isEmpty()) {
        w.line(u"Recapitulatif :");
        for (const DetailItem &detail : details) {
            w.line(u"- ");
            w.buffer().append(detail.label);
            w.buffer().append(u" : ");
            w.buffer().append(detail.value);
        }
        w.emptyLine();
    }
    if (!text::isBlank(data.ctaLabel)) {
        w.line(u"Action : ");
        w.buffer().append(data.ctaLabel);
        if (ctaHref != u"#")
            w.line(ctaHref);
        w.emptyLine();
    }
    if (!closingNote.isEmpty())
        w.paragraphBlock(closingParagraphs());
    w.line(data.senderName);
    w.lineIfNotBlank(data.senderRole);
    w.lineIfNotBlank(data.senderPhone);
    w.lineIfNotBlank(data.senderEmail);
    if (!text::isBlank(data.footerNote)) {
        w.emptyLine();
        w.line(data.footerNote);
    }
    return collapseTripleLineFeeds(w.buffer());
}

} // namespace velino
