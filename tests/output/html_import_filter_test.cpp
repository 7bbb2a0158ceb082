#include "css_background.h"
#include "html_import_filter.h"

#include <gtest/gtest.h>

using namespace velino;

TEST(HtmlImportFilter, LeavesOutHiddenElementsAndKeepsEverythingElse) {
    struct Case {
        const char *html;
        const char *prepared;
    };
    const Case cases[] = {
        // The preheader as the e-mail writes it.
        {"<body>\n  <div style=\"display:none; max-height:0; overflow:hidden; opacity:0; "
         "mso-hide:all;\">\n    Avant-texte\n  </div>\n  <table><tr><td>Korvel</td></tr></table>",
         "<body>\n  \n  <table><tr><td>Korvel</td></tr></table>"},
        {"<div style=\"DISPLAY : None !important\">a<div>b</div>c</div><div>v</div>",
         "<div>v</div>"},
        {"<span style=\"visibility:hidden\">a</span>v", "v"},
        {"<span style=\"mso-hide:all\">a</span>v", "v"},
        {"<span style=\"opacity:0.0\">a</span>v", "v"},
        {"<span style=\"max-height:0px;overflow:hidden\">a</span>v", "v"},
        {"<p hidden>a</p>v", "v"},
        {"<img src=\"x.png\" style=\"display:none\">v", "v"},
        {"<br style=\"display:none\"/>v", "v"},
        {"<a title=\"a>b\" style='display:none'>x</a>v", "v"},
        {"<p>v</p><div style=\"display:none\">le reste", "<p>v</p>"},
        // Visible, or hidden only in part: unchanged.
        {"<span style=\"max-height:0\">a</span>", "<span style=\"max-height:0\">a</span>"},
        {"<span style=\"opacity:0.5; display:block\">a</span>",
         "<span style=\"opacity:0.5; display:block\">a</span>"},
        {"<!-- <div style=\"display:none\"> -->v", "<!-- <div style=\"display:none\"> -->v"},
        {"<style>.x{display:none} a<b</style><p class=\"x\">v</p>",
         "<style>.x{display:none} a<b</style><p class=\"x\">v</p>"},
        {"a < b <3 <", "a < b <3 <"},
        // Gradients become their average colour.
        {"<td style=\"padding:1px; background:linear-gradient(135deg, #000000, #ffffff)\">v</td>",
         "<td style=\"padding:1px;background:rgba(128, 128, 128, 1.000)\">v</td>"},
        {"<td style=\"background-image:linear-gradient(transparent, transparent)\">v</td>",
         "<td style=\"background:rgba(0, 0, 0, 0.000)\">v</td>"},
        {"<td style=\"background:#fff\">v</td>", "<td style=\"background:#fff\">v</td>"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(prepareHtmlForImport(QString::fromUtf8(c.html)), QString::fromUtf8(c.prepared))
            << c.html;
}

TEST(CssBackground, GradientsAndLayersBecomeOneColour) {
    struct Case {
        const char *value;
        std::optional<QColor> color;
    };
    const Case cases[] = {
        {"#2f7cf6", QColor(47, 124, 246)},
        {"#abc8", QColor(170, 187, 204, 136)},
        {"rgba(47, 124, 246, 0.16)", QColor(47, 124, 246, 41)},
        {"rgb(100% 0% 0% / 50%)", QColor(255, 0, 0, 128)},
        {"linear-gradient(135deg, #2f7cf6, #7a5cff)", QColor(85, 108, 251)},
        {"linear-gradient(90deg, red 0%, blue 100%)", QColor(128, 0, 128)},
        // The top layer (listed first) over the bottom one.
        {"radial-gradient(260px 150px at 0% 0%, rgba(0, 0, 255, 0.5), transparent 62%), #ffffff",
         QColor(191, 191, 255)},
        {"url(logo.png) no-repeat", std::nullopt},
        {"linear-gradient(to right, nothing, #zzz)", std::nullopt},
        {"rgba(1, 2)", std::nullopt},
    };
    for (const Case &c : cases) {
        const std::optional<QColor> color = solidBackground(QString::fromUtf8(c.value));
        ASSERT_EQ(color.has_value(), c.color.has_value()) << c.value;
        if (color) {
            EXPECT_EQ(color->rgba(), c.color->rgba()) << c.value;
        }
    }
}
