#include "mail_template_context.h"
#include "rendered_mail_json.h"
#include "server_fixtures.h"
#include "test_records.h"

using namespace velino;
using namespace velino::server;
using namespace velino::test;

namespace {

using WebServiceTest = ServiceFixture;

QJsonObject jsonOf(const HttpResponse &response) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(response.body)).object();
}

std::string header(const HttpResponse &response, const std::string &name) {
    const auto found = response.headers.find(name);
    return found == response.headers.end() ? std::string("(none)") : found->second;
}

// What velino-render --format json gives for a record, with the page's two additions.
QJsonObject expectedAnswer(const MailComposerData &record, PresetKind preset) {
    QJsonObject answer = renderedMailJson(MailTemplateContext(record));
    answer.insert(QStringLiteral("activePreset"), presetId(preset));
    answer.insert(QStringLiteral("record"), record.toJson());
    return answer;
}

TEST_F(WebServiceTest, RenderAndPreviewAnswerTheDesktopsFilesByteForByte) {
    const QJsonObject data = QJsonDocument::fromJson(readTestData("hostile_record.json")).object();
    QString error;
    const auto record = MailComposerData::fromJson(data, QString(), &error);
    ASSERT_TRUE(record) << error.toStdString();
    const std::string body = compactJson({{"activePreset", "rdv"}, {"data", data}});
    const QJsonObject answer = jsonOf(service->handle(request("POST", "/api/velino-render", body)));
    EXPECT_EQ(answer[u"html"].toString().toUtf8() + answer[u"text"].toString().toUtf8(),
              readTestData("hostile_email.html") + readTestData("hostile_email.txt"));
    EXPECT_EQ(answer, expectedAnswer(*record, PresetKind::Rdv));

    MailComposerData applied = *record;
    applied.applyPreset(PresetKind::Pret);
    const std::string applying =
        compactJson({{"activePreset", "relance"}, {"applyPreset", "pret"}, {"data", data}});
    EXPECT_EQ(jsonOf(service->handle(request("POST", "/api/velino-render", applying))),
              expectedAnswer(applied, PresetKind::Pret));

    // As a browser writes the form: blanks as "+", the rest percent-encoded.
    QByteArray form = "state=" + QByteArray::fromStdString(body).toPercentEncoding(" ");
    const HttpResponse preview = service->handle(
        request("POST", "/api/velino-preview", form.replace(' ', '+').toStdString()));
    EXPECT_EQ(QByteArray::fromStdString(preview.contentType + '\n' + preview.body),
              "text/html; charset=utf-8\n" + readTestData("hostile_email.html"));
}

// The page loads its modules and style sheet from files, never inline; no path leaves the folder.
TEST_F(WebServiceTest, EveryAnswerKeepsCodesAndDraftsOutOfCachesAndReferrers) {
    const std::string json = "application/json", script = "text/javascript; charset=utf-8";
    const std::pair<HttpRequest, std::string> cases[] = {
        {request("GET", "/velino.html"), "200 text/html; charset=utf-8"},
        {request("GET", "/js/app.js"), "200 " + script},
        {request("POST", "/api/velino-render", R"({"activePreset":"pret"})"), "200 " + json},
        {getRequest(kCode), "404 " + json},
        {putRequest(uploadBody()), "200 " + json},
        {request("GET", "/js/../velino.html"), "404 " + json},
        {request("GET", "/js/.hidden.js"), "404 " + json},
    };
    for (const auto &[request, expected] : cases) {
        SCOPED_TRACE(request.method + " " + request.path);
        const HttpResponse response = service->handle(request);
        EXPECT_EQ(std::to_string(response.status) + ' ' + response.contentType, expected);
        EXPECT_EQ(header(response, "Cache-Control") + ' ' +
                      header(response, "X-Content-Type-Options") + ' ' +
                      header(response, "Referrer-Policy"),
                  "no-store nosniff no-referrer");
        const std::string policy = header(response, "Content-Security-Policy");
        for (const char *part : {"default-src 'none'", "script-src 'self';", "style-src 'self';"})
            EXPECT_NE(policy.find(part), std::string::npos) << part;
        EXPECT_EQ(policy.find("unsafe"), std::string::npos);
    }
    // The e-mails' logo is no secret: mail readers may keep it.
    const HttpResponse logo = service->handle(request("GET", "/photos/velino-logo.png"));
    EXPECT_EQ(std::tuple(logo.status, logo.contentType, logo.body),
              std::tuple(200, std::string("image/png"), config.logoPng.toStdString()));
    const std::string page = service->handle(request("GET", "/velino.html")).body;
    EXPECT_NE(page.find(R"(<script type="module" src="/js/app.js"></script>)"), std::string::npos);
    EXPECT_EQ(page.find("<style"), std::string::npos);
    EXPECT_EQ(page.find(" style="), std::string::npos);
}

} // namespace
