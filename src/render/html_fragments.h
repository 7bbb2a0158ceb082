// Fixed markup of the e-mail document, in the order it is assembled.
// Every byte here reaches the client; edit with care and rerun the golden tests.
#pragma once

namespace velino::html {

// clang-format off
inline constexpr char16_t kParagraphOpen[] =
    u"<p style=\"";
inline constexpr char16_t kParagraphStyleClose[] =
    u"\">";
inline constexpr char16_t kParagraphClose[] =
    u"</p>";
inline constexpr char16_t kHeaderGlowPrimaryOpen[] =
    u"radial-gradient(260px 150px at 0% 0%, ";
inline constexpr char16_t kHeaderGlowPrimaryClose[] =
    u", transparent 62%)";
inline constexpr char16_t kHeaderGlowSecondaryOpen[] =
    u"radial-gradient(260px 180px at 100% 100%, ";
inline constexpr char16_t kHeaderGlowSecondaryClose[] =
    u", transparent 58%)";
inline constexpr char16_t kHeaderBase[] =
    u"linear-gradient(135deg, #060913, #0c1222 42%, #17123a 100%)";
inline constexpr char16_t kLinearGradientOpen[] =
    u"linear-gradient(135deg, ";
inline constexpr char16_t kDetailBorderLast[] =
    u"border-bottom:none;";
inline constexpr char16_t kDetailBorderInner[] =
    u"border-bottom:1px solid #e8edf5;";
inline constexpr char16_t kDetailRowOpen[] =
    u"<tr>\n  <td class=\"detail-label\" style=\"padding:14px 0; width:36%; ";
inline constexpr char16_t kDetailLabelStyle[] =
    u" color:#6b7280; font-size:13px; font-weight:700; letter-spacing:0.04em; text-transform:uppercase;\">\n    ";
inline constexpr char16_t kDetailValueOpen[] =
    u"\n  </td>\n  <td class=\"detail-value\" style=\"padding:14px 0; ";
inline constexpr char16_t kDetailValueStyle[] =
    u" color:#0f172a; font-size:15px; line-height:1.5; font-weight:700;\">\n    ";
inline constexpr char16_t kDetailRowClose[] =
    u"\n  </td>\n</tr>";
inline constexpr char16_t kPhoneLinkOpen[] =
    u"<a href=\"";
inline constexpr char16_t kPhoneLinkStyle[] =
    u"\" style=\"color:#46556b; text-decoration:none;\">";
inline constexpr char16_t kLinkClose[] =
    u"</a>";
inline constexpr char16_t kEmailLinkOpen[] =
    u"<a href=\"mailto:";
inline constexpr char16_t kEmailLinkColor[] =
    u"\" style=\"color:";
inline constexpr char16_t kEmailLinkStyleClose[] =
    u"; text-decoration:none;\">";
inline constexpr char16_t kHighlightOpen[] =
    u"  <table role=\"presentation\" width=\"100%\" cellpadding=\"0\" cellspacing=\"0\" style=\"margin:0 0 26px; border-collapse:collapse;\">\n    <tr>\n      <td style=\"padding:15px 18px; border-radius:18px; background:";
inline constexpr char16_t kHighlightBorder[] =
    u"; border:1px solid ";
inline constexpr char16_t kHighlightColor[] =
    u"; color:";
inline constexpr char16_t kHighlightTextOpen[] =
    u"; font-size:14px; line-height:1.55; font-weight:700;\">\n        ";
inline constexpr char16_t kHighlightClose[] =
    u"\n      </td>\n    </tr>\n  </table>";
inline constexpr char16_t kDetailsOpen[] =
    u"  <table role=\"presentation\" width=\"100%\" cellpadding=\"0\" cellspacing=\"0\" style=\"margin:0 0 26px; border-collapse:collapse; border:1px solid ";
inline constexpr char16_t kDetailsHeadingColor[] =
    u"; border-radius:20px; overflow:hidden; background:linear-gradient(180deg, #ffffff, #f3f8ff);\">\n    <tr>\n      <td style=\"padding:18px 22px 6px; color:";
inline constexpr char16_t kDetailsRowsOpen[] =
    u"; font-size:11px; font-weight:800; letter-spacing:0.16em; text-transform:uppercase;\">\n        Recapitulatif\n      </td>\n    </tr>\n    <tr>\n      <td style=\"padding:0 22px 8px;\">\n        <table role=\"presentation\" width=\"100%\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse:collapse;\">\n";
inline constexpr char16_t kDetailsClose[] =
    u"\n        </table>\n      </td>\n    </tr>\n  </table>";
inline constexpr char16_t kCtaOpen[] =
    u"  <table role=\"presentation\" cellpadding=\"0\" cellspacing=\"0\" style=\"margin:0 0 28px; border-collapse:collapse;\">\n    <tr>\n      <td align=\"center\" style=\"border-radius:999px; background:";
inline constexpr char16_t kCtaShadow[] =
    u"; box-shadow:0 12px 30px ";
inline constexpr char16_t kCtaHrefOpen[] =
    u";\">\n        <a href=\"";
inline constexpr char16_t kCtaLabelOpen[] =
    u"\" style=\"display:inline-block; padding:15px 24px; color:#ffffff; font-size:14px; font-weight:800; text-decoration:none; letter-spacing:0.01em;\">\n          ";
inline constexpr char16_t kCtaClose[] =
    u"\n        </a>\n      </td>\n    </tr>\n  </table>";
inline constexpr char16_t kLogoCellOpen[] =
    u"                  <td width=\"84\" style=\"width:84px; vertical-align:top;\">\n                    <table role=\"presentation\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse:collapse;\">\n                      <tr>\n                        <td width=\"76\" height=\"76\" align=\"center\" valign=\"middle\" style=\"width:76px; height:76px; border-radius:999px; overflow:hidden; background:rgba(255,255,255,0.08); box-shadow:0 18px 34px rgba(0,0,0,0.16); border:1px solid rgba(255,255,255,0.16);\">\n                          <img src=\"";
inline constexpr char16_t kLogoAlt[] =
    u"\" width=\"76\" height=\"76\" alt=\"";
inline constexpr char16_t kLogoCellClose[] =
    u"\" style=\"display:block; width:76px; height:76px; border-radius:999px;\">\n                        </td>\n                      </tr>\n                    </table>\n                  </td>";
inline constexpr char16_t kDocumentStart[] =
    u"<!DOCTYPE html>\n<html lang=\"fr\">\n<head>\n  <meta charset=\"utf-8\">\n  <meta name=\"viewport\" content=\"width=device-width, initial-scale=1.0\">\n  <meta name=\"x-apple-disable-message-reformatting\">\n  <title>";
inline constexpr char16_t kTitleEndToBodyFont[] =
    u"</title>\n  <style>\n    body, table, td, a {\n      -webkit-text-size-adjust: 100%;\n      -ms-text-size-adjust: 100%;\n    }\n\n    table, td {\n      mso-table-lspace: 0pt;\n      mso-table-rspace: 0pt;\n    }\n\n    img {\n      border: 0;\n      outline: none;\n      text-decoration: none;\n      -ms-interpolation-mode: bicubic;\n    }\n\n    table {\n      border-collapse: collapse !important;\n    }\n\n    body {\n      margin: 0 !important;\n      padding: 0 !important;\n      width: 100% !important;\n      background: #e7effb;\n      font-family: ";
inline constexpr char16_t kBodyFontToTitleFont[] =
    u";\n    }\n\n    .headline,\n    .brand-title {\n      font-family: ";
inline constexpr char16_t kTitleFontToPreheader[] =
    u" !important;\n    }\n\n    @media only screen and (max-width: 620px) {\n      .shell {\n        width: 100% !important;\n      }\n\n      .content-pad {\n        padding: 28px 22px 22px !important;\n      }\n\n      .footer-pad {\n        padding: 22px 22px 28px !important;\n      }\n\n      .top-pad {\n        padding: 22px !important;\n      }\n\n      .stack-col,\n      .stack-col td {\n        display: block !important;\n        width: 100% !important;\n      }\n\n      .brand-copy-cell {\n        padding-left: 0 !important;\n        padding-top: 16px !important;\n      }\n\n      .mobile-right {\n        padding-top: 16px !important;\n        text-align: left !important;\n      }\n\n      .headline {\n        font-size: 30px !important;\n        line-height: 1.05 !important;\n      }\n\n      .detail-label,\n      .detail-value {\n        display: block !important;\n        width: 100% !important;\n      }\n    }\n  </style>\n</head>\n<body style=\"margin:0; padding:0; background:#e7effb;\">\n  <div style=\"display:none; max-height:0; overflow:hidden; opacity:0; mso-hide:all;\">\n    ";
inline constexpr char16_t kPreheaderToCardBorder[] =
    u"\n  </div>\n  <table role=\"presentation\" width=\"100%\" cellpadding=\"0\" cellspacing=\"0\" style=\"background:#e7effb; border-collapse:collapse;\">\n    <tr>\n      <td align=\"center\" style=\"padding:26px 14px;\">\n        <table role=\"presentation\" width=\"100%\" cellpadding=\"0\" cellspacing=\"0\" class=\"shell\" style=\"max-width:680px; border-collapse:collapse;\">\n          <tr>\n            <td style=\"padding:0;\">\n              <table role=\"presentation\" width=\"100%\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse:collapse; background:#ffffff; border:1px solid ";
inline constexpr char16_t kCardBorderToHeaderBackground[] =
    u"; border-radius:32px; overflow:hidden;\">\n                <tr>\n                  <td class=\"top-pad\" style=\"padding:24px 28px; background:";
inline constexpr char16_t kHeaderBackgroundToBrandRow[] =
    u"; color:#ffffff;\">\n                    <table role=\"presentation\" width=\"100%\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse:collapse;\">\n                      <tr class=\"stack-col\">\n                        <td style=\"color:#ffffff;\">\n                          <table role=\"presentation\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse:collapse;\">\n                            <tr class=\"stack-col\">\n                ";
inline constexpr char16_t kBrandRowToBrandPadding[] =
    u"\n                              <td class=\"brand-copy-cell\" style=\"color:#ffffff; padding-left:";
inline constexpr char16_t kBrandPaddingToOverlineColor[] =
    u";\">\n                                <p style=\"margin:0 0 6px; font-size:12px; font-weight:800; letter-spacing:0.18em; text-transform:uppercase; color:";
inline constexpr char16_t kOverlineToBusinessName[] =
    u";\">\n                                  Suivi client\n                                </p>\n                                <p class=\"brand-title\" style=\"margin:0; font-size:24px; font-weight:800; letter-spacing:-0.04em;\">\n                                  ";
inline constexpr char16_t kBusinessNameToTagline[] =
    u"\n                                </p>\n                                <p style=\"margin:8px 0 0; font-size:14px; line-height:1.5; color:rgba(255,255,255,0.78);\">\n                                  ";
inline constexpr char16_t kTaglineToRecipientPill[] =
    u"\n                                </p>\n                              </td>\n                            </tr>\n                          </table>\n                        </td>\n                        <td align=\"right\" class=\"mobile-right\" style=\"vertical-align:top;\">\n                          <span style=\"display:inline-block; padding:10px 14px; border-radius:999px; background:rgba(255,255,255,0.1); border:1px solid rgba(255,255,255,0.12); color:#ffffff; font-size:13px; font-weight:700;\">\n                            ";
inline constexpr char16_t kRecipientPillToOverlineColor[] =
    u"\n                          </span>\n                        </td>\n                      </tr>\n                    </table>\n                  </td>\n                </tr>\n                <tr>\n                  <td class=\"content-pad\" style=\"padding:38px 42px 24px; background:linear-gradient(180deg, #ffffff 0%, #f6f9ff 100%);\">\n                    <p style=\"margin:0 0 14px; color:";
inline constexpr char16_t kOverlineToTitle[] =
    u"; font-size:12px; font-weight:800; letter-spacing:0.16em; text-transform:uppercase;\">\n                      Suivi de votre demande\n                    </p>\n                    <h1 class=\"headline\" style=\"margin:0 0 18px; color:#0f172a; font-size:38px; line-height:0.98; letter-spacing:-0.06em; font-weight:800;\">\n                      ";
inline constexpr char16_t kTitleToIntro[] =
    u"\n                    </h1>\n                    ";
inline constexpr char16_t kContentSeparator[] =
    u"\n                    ";
inline constexpr char16_t kClosingToSenderName[] =
    u"\n                    <table role=\"presentation\" width=\"100%\" cellpadding=\"0\" cellspacing=\"0\" style=\"margin:6px 0 0; border-collapse:collapse;\">\n                      <tr>\n                        <td style=\"padding-top:16px; border-top:1px solid #edf1f6;\">\n                          <p style=\"margin:0; color:#0f172a; font-size:15px; font-weight:800;\">\n                            ";
inline constexpr char16_t kSenderNameToRole[] =
    u"\n                          </p>\n                          <p style=\"margin:6px 0 0; color:#6b7280; font-size:14px; line-height:1.6;\">\n                            ";
inline constexpr char16_t kRoleToContact[] =
    u"\n                          </p>\n                          <p style=\"margin:8px 0 0; color:#46556b; font-size:14px; line-height:1.7;\">\n                            ";
inline constexpr char16_t kContactSeparator[] =
    u"\n                            ";
inline constexpr char16_t kLineBreak[] =
    u"<br>";
inline constexpr char16_t kContactToFooterBorder[] =
    u"\n                          </p>\n                        </td>\n                      </tr>\n                    </table>\n                  </td>\n                </tr>\n                <tr>\n                  <td class=\"footer-pad\" style=\"padding:24px 42px 32px; background:linear-gradient(180deg, #edf4ff 0%, #e7eeff 100%); border-top:1px solid ";
inline constexpr char16_t kFooterBorderToNote[] =
    u";\">\n                    <p style=\"margin:0; color:#7b8798; font-size:13px; line-height:1.7;\">\n                      ";
inline constexpr char16_t kDocumentEnd[] =
    u"\n                    </p>\n                  </td>\n                </tr>\n              </table>\n            </td>\n          </tr>\n        </table>\n      </td>\n    </tr>\n  </table>\n</body>\n</html>";
// clang-format on

} // namespace velino::html
