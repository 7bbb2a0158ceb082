#include "server_fixtures.h"
#include "sync_texts.h"

#include <QFile>

using namespace velino;
using namespace velino::server;
using namespace velino::test;

namespace {

using SyncServiceTest = ServiceFixture;

// The log's lines and the database's files never hold a code.
TEST_F(SyncServiceTest, PutAnswersTheServerTimeAndKeepsThePayloadUnderTheCodesHashOnly) {
    HttpRequest forged = getRequest(kCode);
    forged.path = "/x\nPUT /api/velino-sync 200";
    service->recordExchange(putRequest(uploadBody()), 200, std::chrono::microseconds(1500));
    service->recordExchange(forged, 404, std::chrono::milliseconds(70));
    service->recordExchange(getRequest(kCode), 404, std::chrono::seconds(20));
    EXPECT_EQ(logLines,
              (std::vector<std::string>{"PUT /api/velino-sync 200 1.5ms 192.0.2.10",
                                        "GET /x?PUT?/api/velino-sync?200 404 70.0ms 192.0.2.10",
                                        "GET /api/velino-sync 404 20000.0ms 192.0.2.10"}));
    // Whole seconds, UTC, "Z": the fraction of the server's clock is dropped.
    EXPECT_EQ(service->handle(putRequest(uploadBody())).body,
              R"({"ok":true,"updatedAt":"2026-06-05T08:15:00Z"})");
    store.reset(); // everything on disk, the write-ahead log checkpointed
    service.reset();
    QByteArray everything;
    for (const QString &suffix : {QString(), QStringLiteral("-wal")}) {
        QFile file(folder.filePath("sync.db") + suffix);
        everything += file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    EXPECT_TRUE(everything.contains("Remplacement ecran OLED"));
    EXPECT_FALSE(everything.contains(kCode));
}

TEST_F(SyncServiceTest, RefusalsAreInFrenchAndStoreNothing) {
    const QString badCode = QString::fromUtf8(texts::kInvalidCode);
    const QString notAllowed = QString::fromUtf8(texts::kMethodNotAllowed);
    const auto render = [](auto body) { return request("POST", "/api/velino-render", body); };
    const auto badRender = [](const char *reason) {
        return "Requete de rendu invalide : " + QString::fromUtf8(reason);
    };
    QString undecodable; // the desktop's own decoder's sentence, word for word
    decodeSyncRecord<VelinoSyncUpload>(R"({"payload":{}})", &undecodable);
    const std::tuple<HttpRequest, int, QString> cases[] = {
        {putRequest(uploadBody("AB12CD34EF56GH7")), 400, badCode},
        {putRequest(uploadBody("ab12-cd34ef56gh78")), 400, badCode},
        {putRequest(uploadBody("ÉCOLE-CD34EF56GH78")), 400, badCode},
        {putRequest(R"({"payload":{}})"), 400, undecodable},
        {request("GET", "/api/velino-sync"), 400, badCode},
        {getRequest(kCode), 404, QString::fromUtf8(texts::kUnknownCode)},
        {request("DELETE", "/api/velino-sync"), 405, notAllowed},
        {request("GET", "/api/velino-render"), 405, notAllowed},
        {request("POST", "/velino.html"), 405, notAllowed},
        {render(""), 400, badRender("JSON invalide a l'octet 0 : fin inattendue du document.")},
        {render(R"({"data":{}})"), 400, badRender("cle manquante : activePreset.")},
        {render(R"({"activePreset":"Devis"})"), 400,
         badRender(R"(preset inconnu pour la cle activePreset : "Devis".)")},
        {render("{\"activePreset\":\"\xff\"}"), 400,
         badRender("le corps n'est pas du texte UTF-8 valide.")},
        {request("POST", "/api/velino-preview", "other=1"), 400,
         badRender(R"(champ "state" manquant.)")},
        {request("GET", "/velino.php"), 404, QString::fromUtf8(texts::kUnknownAddress)},
    };
    for (const auto &[r, status, sentence] : cases) {
        SCOPED_TRACE(r.method + ' ' + r.path + ' ' + r.body.substr(0, 60));
        const HttpResponse answer = service->handle(r);
        EXPECT_EQ(std::tuple(answer.status, answer.contentType, errorText(answer.body)),
                  std::tuple(status, std::string("application/json"), sentence));
    }
    EXPECT_EQ(store->count(), 0);

    store = std::make_unique<SqliteSlotStore>(QStringLiteral("/dev/null/sync.db"));
    EXPECT_FALSE(store->open());
    remake();
    const HttpResponse down = service->handle(putRequest(uploadBody()));
    EXPECT_EQ(std::pair(down.status, errorText(down.body)),
              std::pair(503, QString::fromUtf8(texts::kStorageUnavailable)));
    EXPECT_EQ(service->handle(request("GET", "/healthz")).status, 503);
}

// Rows: requests a minute, behind a proxy, times sent, request, status (a new service on change).
TEST_F(SyncServiceTest, CeilingsCountPerClientAddress) {
    const auto render = [](const std::string &peer) {
        return request("POST", "/api/velino-render", R"({"activePreset":"devis"})", peer);
    };
    const std::tuple<int, bool, int, HttpRequest, int> steps[] = {
        {1200, false, 10, getRequest(kCode, "192.0.2.10"), 404},
        // An untrusted claim, then what a trusted proxy saw.
        {1200, false, 1, getRequest(kCode, "192.0.2.10", "192.0.2.99"), 429},
        {1200, false, 1, putRequest(uploadBody(QStringLiteral("PUT-CODE-0000-0000"))), 200},
        {1200, true, 10, getRequest(kCode, "10.0.0.1", "198.51.100.7"), 404},
        {1200, true, 1, getRequest(kCode, "10.0.0.1", "203.0.113.9, 198.51.100.7"), 429},
        {1200, true, 1, getRequest(kCode, "10.0.0.1", "198.51.100.8"), 404},
        {3, false, 3, render("192.0.2.10"), 200},
        {3, false, 1, getRequest(kCode, "192.0.2.10"), 429},
        {3, false, 1, render("192.0.2.11"), 200},
    };
    for (const auto &step : steps) {
        SCOPED_TRACE(testing::Message() << "step " << &step - steps);
        const auto &[perMinute, proxy, times, request, status] = step;
        if (perMinute != config.requestsPerMinute || proxy != config.trustProxy) {
            config.requestsPerMinute = perMinute;
            config.trustProxy = proxy;
            remake();
        }
        for (int n = 0; n < times; ++n) {
            const HttpResponse answer = service->handle(request);
            EXPECT_EQ(answer.status, status) << n;
            const char *tooMany = perMinute > 10 ? texts::kTooManyLookups : texts::kTooManyRequests;
            EXPECT_TRUE(answer.status != 429 || errorText(answer.body) == tooMany);
        }
    }
}

} // namespace
