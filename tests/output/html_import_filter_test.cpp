#include "css_background.h"
#include "html_import_filter.h"

#include <gtest/gtest.h>

using namespace velino;

// The e-mail's own hidden preheader is checked by the readability test.
TEST(HtmlImportFilter, LeavesOutHiddenElementsAndKeepsEverythingElse) {
    for (const char *hidden :
         {"<span style=\"visibility:hidden\">a</span>", "<span style=\"mso-hide:all\">a</span>",
          "<span style=\"opacity:0.0\">a</span>",
          "<span style=\"max-height:0px;overflow:hidden\">a</span>", "<p hidden>a</p>",
          "<img src=\"x.png\" style=\"display:none\">", "<br style=\"display:none\"/>",
          "<a title=\"a>b\" style='display:none'>x</a>",
          "<div style=\"DISPLAY : None !important\">a<div>b</div>c</div>"})
        EXPECT_EQ(prepareHtmlForImport(QString(hidden) + "<p>v</p>"), "<p>v</p>") << hidden;
    // Visible, or hidden only in part: unchanged.
    for (const char *visible : {"<span style=\"max-height:0\">a</span>",
                                "<span style=\"opacity:0.5; display:block\">a</span>",
                                "<!-- <div style=\"display:none\"> -->v",
                                "<style>.x{display:none} a<b</style><p class=\"x\">v</p>",
                                "<td style=\"background:#fff\">v</td>"})
        EXPECT_EQ(prepareHtmlForImport(QString(visible)), visible);
    const std::pair<const char *, const char *> cases[] = {
        {"<p>v</p><div style=\"display:none\">le reste", "<p>v</p>"},
        // Gradients become their average colour.
        {"<td style=\"padding:1px; background:linear-gradient(135deg, #000000, #ffffff)\">v</td>",
         "<td style=\"padding:1px;background:rgba(128, 128, 128, 1.000)\">v</td>"},
        {"<td style=\"background-image:linear-gradient(transparent, transparent)\">v</td>",
         "<td style=\"background:rgba(0, 0, 0, 0.000)\">v</td>"}};
    for (const auto &[html, expected] : cases)
        EXPECT_EQ(prepareHtmlForImport(QString(html)), expected) << html;
}

TEST(CssBackground, GradientsAndLayersBecomeOneColour) {
    const std::pair<const char *, std::optional<QColor>> cases[] = {
        {"#2f7cf6", QColor(47, 124, 246)},
        {"rgba(47, 124, 246, 0.16)", QColor(47, 124, 246, 41)},
        {"linear-gradient(135deg, #2f7cf6, #7a5cff)", QColor(85, 108, 251)},
        // The top layer (listed first) over the bottom one.
        {"radial-gradient(260px 150px at 0% 0%, rgba(0, 0, 255, 0.5), transparent 62%), #ffffff",
         QColor(191, 191, 255)},
        {"url(logo.png) no-repeat", std::nullopt}};
    const auto rgba = [](std::optional<QColor> c) {
        return c ? std::optional(c->rgba()) : std::nullopt;
    };
    for (const auto &[value, color] : cases)
        EXPECT_EQ(rgba(solidBackground(QString::fromUtf8(value))), rgba(color)) << value;
}
