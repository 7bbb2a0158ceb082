#include "mail_template_context.h"
#include "render_service.h"
#include "rendered_mail_json.h"
#include "server_test_records.h"
#include "sqlite_slot_store.h"
#include "sync_service.h"
#include "sync_texts.h"
#include "test_records.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace velino;
using namespace velino::server;
using namespace velino::test;

namespace {

HttpRequest request(const std::string &method, const std::string &path,
                    const std::string &body = {}, const std::string &peer = "192.0.2.20") {
    HttpRequest r;
    r.method = method;
    r.path = path;
    r.body = body;
    r.peerAddress = peer;
    return r;
}

HttpRequest renderRequest(const std::string &body, const std::string &peer = "192.0.2.20") {
    return request("POST", "/api/velino-render", body, peer);
}

QJsonObject jsonOf(const HttpResponse &response) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(response.body)).object();
}

std::string header(const HttpResponse &response, const std::string &name) {
    const auto found = response.headers.find(name);
    return found == response.headers.end() ? std::string("(none)") : found->second;
}

std::string renderBody(const QJsonObject &data, const QString &preset = QStringLiteral("devis")) {
    return compactJson(QJsonObject{{"activePreset", preset}, {"data", data}});
}

// What velino-render --format json gives for a record, with the page's two additions.
QJsonObject expectedAnswer(const MailComposerData &record, PresetKind preset) {
    QJsonObject answer = renderedMailJson(MailTemplateContext(record));
    answer.insert(QStringLiteral("activePreset"), presetId(preset));
    answer.insert(QStringLiteral("record"), record.toJson());
    return answer;
}

class WebServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        store = std::make_unique<SqliteSlotStore>(folder.filePath(QStringLiteral("sync.db")));
        ASSERT_TRUE(store->open());
        config.log = [](const std::string &) {};
        service = std::make_unique<SyncService>(*store, config);
    }

    QTemporaryDir folder;
    std::unique_ptr<SqliteSlotStore> store;
    SyncServiceConfig config;
    std::unique_ptr<SyncService> service;
};

TEST_F(WebServiceTest, RenderAnswersTheDesktopsFilesByteForByte) {
    const struct {
        const char *record, *html, *text;
    } cases[] = {
        {"default_record.json", "default_email.html", "default_email.txt"},
        {"blank_record.json", "blank_email.html", "blank_email.txt"},
        {"hostile_record.json", "hostile_email.html", "hostile_email.txt"},
    };
    for (const auto &c : cases) {
        const QJsonObject data = QJsonDocument::fromJson(readTestData(c.record)).object();
        const HttpResponse response = service->handle(renderRequest(renderBody(data, "rdv")));
        ASSERT_EQ(response.status, 200) << c.record << response.body;
        EXPECT_EQ(response.contentType, "application/json") << c.record;
        const QJsonObject answer = jsonOf(response);
        EXPECT_EQ(answer[u"html"].toString().toUtf8(), readTestData(c.html)) << c.record;
        EXPECT_EQ(answer[u"text"].toString().toUtf8(), readTestData(c.text)) << c.record;
        EXPECT_EQ(answer[u"record"].toObject(), data) << c.record;
        EXPECT_EQ(answer[u"activePreset"].toString(), "rdv") << c.record;
        QString error;
        const auto record = MailComposerData::fromJson(data, QString(), &error);
        ASSERT_TRUE(record) << c.record << error.toStdString();
        EXPECT_EQ(answer, expectedAnswer(*record, PresetKind::Rdv)) << c.record;
    }
}

TEST_F(WebServiceTest, ApplyingAPresetWritesItsTextsAsTheDesktopDoes) {
    const MailComposerData edited = defaultWith(u"recipientName", QStringLiteral("Lea Martin"));
    for (const PresetKind kind :
         {PresetKind::Devis, PresetKind::Pret, PresetKind::Rdv, PresetKind::Relance}) {
        QJsonObject body{{"activePreset", "relance"}, {"data", edited.toJson()}};
        body.insert(QStringLiteral("applyPreset"), presetId(kind));
        const HttpResponse response = service->handle(renderRequest(compactJson(body)));
        ASSERT_EQ(response.status, 200) << response.body;
        MailComposerData expected = edited;
        expected.applyPreset(kind);
        EXPECT_EQ(jsonOf(response), expectedAnswer(expected, kind)) << presetId(kind).toStdString();
    }
    // Without data: the default record, as on a first visit.
    const HttpResponse first = service->handle(renderRequest(R"({"activePreset":"devis"})"));
    ASSERT_EQ(first.status, 200) << first.body;
    EXPECT_EQ(jsonOf(first), expectedAnswer(MailComposerData::defaultRecord(), PresetKind::Devis));
}

TEST_F(WebServiceTest, BadRequestsAreRefusedWithTheReasonInFrench) {
    QJsonObject withoutFooter = MailComposerData::defaultRecord().toJson();
    withoutFooter.remove(QStringLiteral("footerNote"));
    QJsonObject nullFooter = MailComposerData::defaultRecord().toJson();
    nullFooter.insert(QStringLiteral("footerNote"), QJsonValue::Null);
    const std::string data = compactJson(MailComposerData::defaultRecord().toJson());
    const struct {
        std::string body;
        const char *reason;
    } cases[] = {
        {"", "JSON"},
        {"[1,2]", "objet"},
        {"{\"activePreset\":\"devis\"", "JSON"},
        {"{\"data\":" + data + "}", "cle manquante : activePreset"},
        {R"({"activePreset":"Devis"})", "preset inconnu pour la cle activePreset : \"Devis\""},
        {R"({"activePreset":7})", "type incorrect pour la cle activePreset"},
        {R"({"activePreset":"devis","applyPreset":"pretty"})", "applyPreset : \"pretty\""},
        {R"({"activePreset":"devis","data":"x"})", "type incorrect pour la cle data"},
        {renderBody(withoutFooter), "cle manquante : data.footerNote"},
        {renderBody(nullFooter), "valeur null pour la cle data.footerNote"},
        {"{\"activePreset\":\"\xff\"}", "UTF-8"},
    };
    for (const auto &c : cases) {
        const HttpResponse response = service->handle(renderRequest(c.body));
        EXPECT_EQ(response.status, 400) << c.body;
        const QString message = errorText(response.body);
        EXPECT_TRUE(message.startsWith(QStringLiteral("Requete de rendu invalide : ")))
            << c.body << " -> " << message.toStdString();
        EXPECT_TRUE(message.contains(QString::fromUtf8(c.reason)))
            << c.body << " -> " << message.toStdString();
    }
    EXPECT_EQ(service->handle(request("GET", "/api/velino-render")).status, 405);
    EXPECT_EQ(service->handle(request("PUT", "/api/velino-preview")).status, 405);
    EXPECT_EQ(service->handle(request("POST", "/velino.html")).status, 405);
}

TEST_F(WebServiceTest, PreviewIsTheEmailAsADocumentOfItsOwnFromTheForm) {
    const QJsonObject data = QJsonDocument::fromJson(readTestData("hostile_record.json")).object();
    const QByteArray state = QByteArray::fromStdString(renderBody(data));
    // As a browser writes the form: blanks as "+", the rest percent-encoded.
    QByteArray form = "state=" + state.toPercentEncoding(" ");
    form.replace(' ', '+');
    const HttpResponse response =
        service->handle(request("POST", "/api/velino-preview", form.toStdString()));
    ASSERT_EQ(response.status, 200) << response.body;
    EXPECT_EQ(response.contentType, "text/html; charset=utf-8");
    EXPECT_EQ(QByteArray::fromStdString(response.body), readTestData("hostile_email.html"));
    const std::string policy = header(response, "Content-Security-Policy");
    EXPECT_EQ(policy.rfind("sandbox;", 0), 0u) << policy;
    EXPECT_EQ(policy.find("script-src"), std::string::npos) << policy;

    for (const std::string &bad : {std::string("other=1"), std::string("state=%7B")}) {
        const HttpResponse refused = service->handle(request("POST", "/api/velino-preview", bad));
        EXPECT_EQ(refused.status, 400) << bad;
        EXPECT_TRUE(errorText(refused.body).startsWith(QStringLiteral("Requete de rendu invalide")))
            << bad;
    }
}

TEST_F(WebServiceTest, EveryAnswerKeepsCodesAndDraftsOutOfCachesAndReferrers) {
    const struct {
        HttpRequest request;
        int status;
        const char *contentType;
    } cases[] = {
        {request("GET", "/velino.html"), 200, "text/html; charset=utf-8"},
        {request("GET", "/velino.css"), 200, "text/css; charset=utf-8"},
        {request("GET", "/js/app.js"), 200, "text/javascript; charset=utf-8"},
        {request("GET", "/js/code.js"), 200, "text/javascript; charset=utf-8"},
        {request("GET", "/velino-logo.svg"), 200, "image/svg+xml"},
        {renderRequest(R"({"activePreset":"pret"})"), 200, "application/json"},
        {getRequest(kCode), 404, "application/json"},
        {putRequest(encodeSyncRecord(defaultUpload()).toStdString()), 200, "application/json"},
        {request("GET", "/js/../velino.html"), 404, "application/json"},
        {request("GET", "/js/missing.js"), 404, "application/json"},
        {request("GET", "/js/.hidden.js"), 404, "application/json"},
        {request("GET", "/velino.HTML"), 404, "application/json"},
    };
    for (const auto &c : cases) {
        const HttpResponse response = service->handle(c.request);
        const std::string what = c.request.method + " " + c.request.path;
        EXPECT_EQ(response.status, c.status) << what;
        EXPECT_EQ(response.contentType, c.contentType) << what;
        EXPECT_EQ(header(response, "Cache-Control"), "no-store") << what;
        EXPECT_EQ(header(response, "X-Content-Type-Options"), "nosniff") << what;
        EXPECT_EQ(header(response, "Referrer-Policy"), "no-referrer") << what;
        const std::string policy = header(response, "Content-Security-Policy");
        EXPECT_NE(policy.find("default-src 'none'"), std::string::npos) << what;
        EXPECT_NE(policy.find("script-src 'self';"), std::string::npos) << what;
        EXPECT_NE(policy.find("style-src 'self';"), std::string::npos) << what;
        EXPECT_EQ(policy.find("unsafe"), std::string::npos) << what;
    }
    // The page loads its modules and style sheet from files, never inline.
    const std::string page = service->handle(request("GET", "/velino.html")).body;
    EXPECT_NE(page.find(R"(<script type="module" src="/js/app.js"></script>)"), std::string::npos);
    EXPECT_EQ(page.find("<style"), std::string::npos);
    EXPECT_EQ(page.find(" style="), std::string::npos);
}

TEST_F(WebServiceTest, RenderingCountsAgainstTheSameCeilingAsSync) {
    config.requestsPerMinute = 3;
    service = std::make_unique<SyncService>(*store, config);
    const std::string body = R"({"activePreset":"devis"})";
    EXPECT_EQ(service->handle(renderRequest(body)).status, 200);
    EXPECT_EQ(service->handle(getRequest(kCode, "192.0.2.20")).status, 404);
    EXPECT_EQ(service->handle(renderRequest(body)).status, 200);
    const HttpResponse refused = service->handle(renderRequest(body));
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(errorText(refused.body), QString::fromUtf8(texts::kTooManyRequests));
    EXPECT_EQ(service->handle(renderRequest(body, "192.0.2.21")).status, 200);
}

} // namespace
