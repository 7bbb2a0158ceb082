#include "html_fragments.h"
#include "mail_template_context.h"
#include "sanitizers.h"
#include "text.h"
#include "text_buffer.h"

namespace velino {
namespace {

constexpr char16_t kIntroStyle[] =
    u"margin:0 0 16px; color:#36465d; font-size:16px; line-height:1.76;";
constexpr char16_t kBodyStyle[] =
    u"margin:0 0 16px; color:#45556d; font-size:15px; line-height:1.74;";

// Fixed markup and values, escaped or raw, appended to one buffer.
class HtmlWriter {
public:
    explicit HtmlWriter(qsizetype capacity) : out_(capacity) {}

    template <qsizetype N> HtmlWriter &operator<<(const char16_t (&fixed)[N]) {
        out_.append(fixed);
        return *this;
    }
    HtmlWriter &operator<<(QStringView fixed) {
        out_.append(fixed);
        return *this;
    }
    // Values inserted as they are (sanitised colours, gradients and font stacks).
    HtmlWriter &raw(QStringView value) {
        out_.append(value);
        return *this;
    }
    // "linear-gradient(135deg, from, to)"
    HtmlWriter &gradient(QStringView from, QStringView to) {
        *this << html::kLinearGradientOpen;
        out_.append(from);
        out_.append(u", ");
        out_.append(to);
        out_.append(u')');
        return *this;
    }
    HtmlWriter &escaped(QStringView value) {
        out_.appendEscaped(value);
        return *this;
    }

    // One paragraph element per paragraph, its lines joined by <br>, elements joined by
    // a line feed.
    template <qsizetype N>
    HtmlWriter &paragraphs(const QStringList &list, const char16_t (&style)[N]) {
        for (qsizetype i = 0; i < list.size(); ++i) {
            if (i > 0)
                out_.append(u'\n');
            *this << html::kParagraphOpen << style << html::kParagraphStyleClose;
            out_.appendEscaped(list[i], render::TextBuffer::LineFeeds::AsBreaks);
            *this << html::kParagraphClose;
        }
        return *this;
    }

    QString take() { return out_.take(); }

private:
    render::TextBuffer out_;
};

} // namespace

QString MailTemplateContext::htmlDocument() const {
    const render::RgbaText border16 = render::rgbaText(accentPrimary, 0.16);

    qsizetype estimate = 12500;
    for (const auto &field : MailComposerData::fields())
        estimate += (data.*field.member).size() * 2;
    HtmlWriter w(estimate);

    w << html::kDocumentStart;
    w.escaped(subject) << html::kTitleEndToBodyFont;
    w.raw(bodyFont) << html::kBodyFontToTitleFont;
    w.raw(titleFont) << html::kTitleFontToPreheader;
    w.escaped(preheader) << html::kPreheaderToCardBorder;
    w.raw(border16.view()) << html::kCardBorderToHeaderBackground;
    w << html::kHeaderGlowPrimaryOpen;
    w.raw(primaryGlow) << html::kHeaderGlowPrimaryClose << u", " << html::kHeaderGlowSecondaryOpen;
    w.raw(secondaryGlow) << html::kHeaderGlowSecondaryClose << u", " << html::kHeaderBase;
    w << html::kHeaderBackgroundToBrandRow;
    if (!logoURL.isEmpty()) {
        w << html::kLogoCellOpen;
        w.escaped(logoURL) << html::kLogoAlt;
        w.escaped(data.businessName) << html::kLogoCellClose;
    }
    w << html::kBrandRowToBrandPadding
      << (logoURL.isEmpty() ? QStringView(u"0") : QStringView(u"16px"));
    w << html::kBrandPaddingToOverlineColor;
    w.raw(render::rgbaText(accentSecondary, 0.9).view()) << html::kOverlineToBusinessName;
    w.escaped(data.businessName) << html::kBusinessNameToTagline;
    w.escaped(data.businessTagline) << html::kTaglineToRecipientPill;
    w.escaped(recipientLabel()) << html::kRecipientPillToOverlineColor;
    w.escaped(accentPrimary) << html::kOverlineToTitle;
    w.escaped(mailTitle) << html::kTitleToIntro;
    w.paragraphs(introParagraphs(), kIntroStyle) << html::kContentSeparator;
    w.paragraphs(bodyParagraphs(), kBodyStyle) << html::kContentSeparator;

    if (!text::isBlank(data.highlight)) {
        w << html::kHighlightOpen;
        w.gradient(primarySoft, secondarySoft) << html::kHighlightBorder;
        w.raw(primaryBorder) << html::kHighlightColor;
        w.escaped(accentPrimary) << html::kHighlightTextOpen;
        w.escaped(data.highlight) << html::kHighlightClose;
    }
    w << html::kContentSeparator;

    if (!details.isEmpty()) {
        w << html::kDetailsOpen;
        w.raw(border16.view()) << html::kDetailsHeadingColor;
        w.raw(render::rgbaText(accentPrimary, 0.72).view()) << html::kDetailsRowsOpen;
        for (qsizetype i = 0; i < details.size(); ++i) {
            const QStringView border =
                i == details.size() - 1 ? html::kDetailBorderLast : html::kDetailBorderInner;
            if (i > 0)
                w << u"\n";
            w << html::kDetailRowOpen << border << html::kDetailLabelStyle;
            w.escaped(details[i].label)
                << html::kDetailValueOpen << border << html::kDetailValueStyle;
            w.escaped(details[i].value) << html::kDetailRowClose;
        }
        w << html::kDetailsClose;
    }
    w << html::kContentSeparator;

    if (!text::isBlank(data.ctaLabel)) {
        w << html::kCtaOpen;
        w.gradient(accentPrimary, accentSecondary) << html::kCtaShadow;
        w.raw(primaryGlow) << html::kCtaHrefOpen;
        w.escaped(ctaHref) << html::kCtaLabelOpen;
        w.escaped(data.ctaLabel) << html::kCtaClose;
    }
    w << html::kContentSeparator;

    w.paragraphs(closingParagraphs(), kBodyStyle) << html::kClosingToSenderName;
    w.escaped(data.senderName) << html::kSenderNameToRole;
    w.escaped(data.senderRole) << html::kRoleToContact;

    const bool hasPhoneLine = !senderPhoneHref.isEmpty() || !data.senderPhone.isEmpty();
    const bool hasEmailLine = !text::isBlank(data.senderEmail);
    if (!senderPhoneHref.isEmpty()) {
        w << html::kPhoneLinkOpen;
        w.escaped(senderPhoneHref) << html::kPhoneLinkStyle;
        w.escaped(data.senderPhone) << html::kLinkClose;
    } else {
        w.escaped(data.senderPhone);
    }
    w << html::kContactSeparator;
    if (hasPhoneLine && hasEmailLine)
        w << html::kLineBreak;
    w << html::kContactSeparator;
    if (hasEmailLine) {
        w << html::kEmailLinkOpen;
        w.escaped(data.senderEmail) << html::kEmailLinkColor;
        w.escaped(accentPrimary) << html::kEmailLinkStyleClose;
        w.escaped(data.senderEmail) << html::kLinkClose;
    }

    w << html::kContactToFooterBorder;
    w.raw(border16.view()) << html::kFooterBorderToNote;
    w.escaped(data.footerNote) << html::kDocumentEnd;
    return w.take();
}

} // namespace velino
