#include "server_test_records.h"
#include "sqlite_slot_store.h"
#include "sync_code.h"
#include "sync_service.h"
#include "sync_texts.h"

#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

using namespace velino;
using namespace velino::server;
using namespace velino::test;

namespace {

QString text(const char *sentence) {
    return QString::fromUtf8(sentence);
}

// A service on a real SQLite file, with its clock and log in the test's hands.
class SyncServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        store = std::make_unique<SqliteSlotStore>(databasePath());
        ASSERT_TRUE(store->open());
        config.now = [this] { return now; };
        config.log = [this](const std::string &line) { logLines.push_back(line); };
        config.logoPng = "\x89PNG\r\n\x1a\nlogo";
        service = std::make_unique<SyncService>(*store, config);
    }

    void remake() { service = std::make_unique<SyncService>(*store, config); }
    QString databasePath() const { return folder.filePath(QStringLiteral("sync.db")); }

    QTemporaryDir folder;
    std::unique_ptr<SqliteSlotStore> store;
    SyncServiceConfig config;
    std::unique_ptr<SyncService> service;
    QDateTime now = QDateTime(QDate(2026, 6, 5), QTime(8, 15, 0, 734), QTimeZone::utc());
    std::vector<std::string> logLines;
};

TEST_F(SyncServiceTest, PutThenGetAnswersThePayloadWithTheServerTime) {
    const VelinoSyncUpload upload = defaultUpload();
    const HttpResponse put = service->handle(putRequest(encodeSyncRecord(upload).toStdString()));
    ASSERT_EQ(put.status, 200) << put.body;
    EXPECT_EQ(put.contentType, "application/json");
    // Whole seconds, UTC, "Z": the fraction of the server's clock is dropped.
    EXPECT_EQ(put.body, R"({"ok":true,"updatedAt":"2026-06-05T08:15:00Z"})");

    now = now.addSecs(60);
    const HttpResponse get = service->handle(getRequest(kCode));
    ASSERT_EQ(get.status, 200) << get.body;
    QString error;
    const auto answer =
        decodeSyncRecord<VelinoSyncDownloadResponse>(QByteArray::fromStdString(get.body), &error);
    ASSERT_TRUE(answer) << error.toStdString();
    EXPECT_TRUE(answer->ok);
    EXPECT_EQ(answer->snapshot.updatedAt, "2026-06-05T08:15:00Z");
    EXPECT_EQ(encodeSyncRecord(answer->snapshot.payload), encodeSyncRecord(upload.payload));
}

TEST_F(SyncServiceTest, SlotsAreKeyedByTheHashSoTheDatabaseHoldsNoCode) {
    ASSERT_EQ(service->handle(putRequest(encodeSyncRecord(defaultUpload()).toStdString())).status,
              200);
    StoredSlot slot;
    EXPECT_EQ(store->get(slotKeyOf(QString::fromLatin1(kCode)), slot), SlotStore::Status::Ok);
    store.reset(); // everything on disk, the write-ahead log checkpointed
    service.reset();
    QByteArray everything;
    for (const QString &suffix : {QString(), QStringLiteral("-wal")}) {
        QFile file(databasePath() + suffix);
        if (file.open(QIODevice::ReadOnly))
            everything += file.readAll();
    }
    EXPECT_FALSE(everything.isEmpty());
    EXPECT_FALSE(everything.contains(kCode));
}

struct HostileCase {
    std::string what;
    std::string body;
    int status;
    QString expected; // the exact text, or empty: the core decoder's own text for the body
};

QJsonObject withPayloadChange(const std::function<void(QJsonObject &)> &change) {
    QJsonObject upload = defaultUpload().toJson();
    QJsonObject payload = upload[u"payload"].toObject();
    change(payload);
    upload[u"payload"] = payload;
    return upload;
}

// An upload whose payload carries one saved preset created at `createdAt`.
QJsonObject withPreset(const QString &createdAt) {
    return withPayloadChange([&](QJsonObject &p) {
        CustomMailPreset preset;
        preset.id = QUuid::createUuid();
        preset.name = QStringLiteral("Devis ecran");
        preset.data = MailComposerData::defaultRecord();
        QJsonObject json = preset.toJson(TimestampForm::Iso8601);
        json[u"createdAt"] = createdAt;
        p[u"customPresets"] = QJsonArray{json};
    });
}

std::vector<HostileCase> hostileCases() {
    std::vector<HostileCase> cases;
    const auto withCode = [](const QString &code) {
        return encodeSyncRecord(defaultUpload(code)).toStdString();
    };
    const QString invalidCode = text(texts::kInvalidCode);
    cases.push_back(
        {"code of 15 characters", withCode(QStringLiteral("AB12CD34EF56GH7")), 400, invalidCode});
    cases.push_back({"code of 65 characters", withCode(QString(65, u'A')), 400, invalidCode});
    cases.push_back(
        {"lower-case code", withCode(QStringLiteral("ab12-cd34ef56gh78")), 400, invalidCode});
    cases.push_back(
        {"accented code", withCode(QStringLiteral("ÉCOLE-CD34EF56GH78")), 400, invalidCode});
    cases.push_back(
        {"code with a blank", withCode(QStringLiteral("AB12 CD34EF56GH78")), 400, invalidCode});
    for (const QString &key : defaultUpload().payload.toJson().keys()) {
        cases.push_back({"payload without " + key.toStdString(),
                         compactJson(withPayloadChange([&](QJsonObject &p) { p.remove(key); })),
                         400,
                         {}});
        cases.push_back(
            {"payload with " + key.toStdString() + " null",
             compactJson(withPayloadChange([&](QJsonObject &p) { p[key] = QJsonValue(); })),
             400,
             {}});
    }
    QJsonObject noCode = defaultUpload().toJson();
    noCode.remove(u"code");
    cases.push_back({"upload without code", compactJson(noCode), 400, {}});
    QJsonObject nullPayload = defaultUpload().toJson();
    nullPayload[u"payload"] = QJsonValue();
    cases.push_back({"null payload", compactJson(nullPayload), 400, {}});
    QJsonObject numberCode = defaultUpload().toJson();
    numberCode[u"code"] = 1234567890123456.0;
    cases.push_back({"code as a number", compactJson(numberCode), 400, {}});
    cases.push_back({"version as text",
                     compactJson(withPayloadChange([](QJsonObject &p) { p[u"version"] = "1"; })),
                     400,
                     {}});
    cases.push_back(
        {"data as an array",
         compactJson(withPayloadChange([](QJsonObject &p) { p[u"data"] = QJsonArray{}; })),
         400,
         {}});
    cases.push_back(
        {"unknown preset",
         compactJson(withPayloadChange([](QJsonObject &p) { p[u"activePreset"] = "promo"; })),
         400,
         {}});
    cases.push_back({"data field as a number",
                     compactJson(withPayloadChange([](QJsonObject &p) {
                         QJsonObject data = p[u"data"].toObject();
                         data[u"subject"] = 3;
                         p[u"data"] = data;
                     })),
                     400,
                     {}});
    cases.push_back({"preset date with fractional seconds",
                     compactJson(withPreset("2026-01-01T10:00:00.250Z")),
                     400,
                     {}});
    cases.push_back({"body not JSON", "code=AB12-CD34EF56GH78", 400, {}});
    cases.push_back({"empty body", "", 400, {}});
    cases.push_back({"JSON array", "[]", 400, {}});
    cases.push_back({"8 MiB + 1 bytes", std::string(8 * 1024 * 1024 + 1, ' '), 413,
                     text(texts::kBodyTooLarge).arg(8 * 1024 * 1024)});
    return cases;
}

TEST_F(SyncServiceTest, HostileUploadsAreRefusedInFrenchAndStoreNothing) {
    for (const HostileCase &c : hostileCases()) {
        const HttpResponse answer = service->handle(putRequest(c.body));
        EXPECT_EQ(answer.status, c.status) << c.what;
        EXPECT_EQ(answer.contentType, "application/json") << c.what;
        QString expected = c.expected;
        if (expected.isEmpty()) {
            // The desktop's own decoder, word for word: one implementation for both ends.
            ASSERT_FALSE(
                decodeSyncRecord<VelinoSyncUpload>(QByteArray::fromStdString(c.body), &expected))
                << c.what;
        }
        EXPECT_FALSE(expected.isEmpty()) << c.what;
        EXPECT_EQ(errorText(answer.body), expected) << c.what;
    }
    EXPECT_EQ(store->count(), 0);
}

TEST_F(SyncServiceTest, PresetsWithWholeSecondDatesAreStored) {
    const HttpResponse answer = service->handle(
        putRequest(compactJson(withPreset(QStringLiteral("2026-01-01T10:00:00Z")))));
    EXPECT_EQ(answer.status, 200) << answer.body;
    const HttpResponse get = service->handle(getRequest(kCode));
    EXPECT_NE(get.body.find("Devis ecran"), std::string::npos);
}

TEST_F(SyncServiceTest, MissingKeysAreNamedByTheirPath) {
    const HttpResponse answer = service->handle(
        putRequest(compactJson(withPayloadChange([](QJsonObject &p) { p.remove(u"source"); }))));
    EXPECT_EQ(answer.status, 400);
    EXPECT_TRUE(errorText(answer.body).contains(QStringLiteral("payload.source"))) << answer.body;
}

TEST_F(SyncServiceTest, BadLookupsWrongMethodsAndUnknownAddresses) {
    const struct {
        std::string method, path, code;
        int status;
        const char *text;
    } cases[] = {
        {"GET", "/api/velino-sync", "AB12CD34EF56GH7", 400, texts::kInvalidCode},
        {"GET", "/api/velino-sync", "ab12-cd34ef56gh78", 400, texts::kInvalidCode},
        {"GET", "/api/velino-sync", "", 400, texts::kInvalidCode},
        {"GET", "/api/velino-sync", "AB12-CD34EF56GH78", 404, texts::kUnknownCode},
        {"DELETE", "/api/velino-sync", "", 405, texts::kMethodNotAllowed},
        {"POST", "/api/velino-sync", "", 405, texts::kMethodNotAllowed},
        {"HEAD", "/api/velino-sync", "", 405, texts::kMethodNotAllowed},
        {"PUT", "/photos/velino-logo.png", "", 405, texts::kMethodNotAllowed},
        {"GET", "/velino.php", "", 404, texts::kUnknownAddress},
    };
    for (const auto &c : cases) {
        HttpRequest request = getRequest(c.code);
        request.method = c.method;
        request.path = c.path;
        if (c.code.empty())
            request.query.clear();
        const HttpResponse answer = service->handle(request);
        EXPECT_EQ(answer.status, c.status) << c.method << ' ' << c.path << ' ' << c.code;
        EXPECT_EQ(errorText(answer.body), text(c.text)) << c.method << ' ' << c.path;
    }
}

TEST_F(SyncServiceTest, TenUnknownCodesPerMinuteThenTooManyAttempts) {
    const auto code = [](int n) { return "UNKNOWN-CODE-" + std::to_string(1000 + n); };
    for (int n = 0; n < 10; ++n)
        EXPECT_EQ(service->handle(getRequest(code(n))).status, 404) << n;
    const HttpResponse refused = service->handle(getRequest(code(10)));
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(errorText(refused.body), "Trop de tentatives : reessaie dans une minute.");
    // Another address is not held back; the PUTs of the first one are not either.
    EXPECT_EQ(service->handle(getRequest(code(11), "192.0.2.99")).status, 404);
    EXPECT_EQ(service->handle(putRequest(encodeSyncRecord(defaultUpload()).toStdString())).status,
              200);
}

TEST_F(SyncServiceTest, ClientAddressFromForwardedForOnlyWhenTrusted) {
    HttpRequest request = getRequest(kCode, "10.0.0.1");
    request.headers["x-forwarded-for"] = "203.0.113.9, 198.51.100.7";
    EXPECT_EQ(service->clientAddressOf(request), "10.0.0.1");
    config.trustProxy = true;
    remake();
    // The address the proxy appended, not what the client claimed before it.
    EXPECT_EQ(service->clientAddressOf(request), "198.51.100.7");
    request.headers.erase("x-forwarded-for");
    EXPECT_EQ(service->clientAddressOf(request), "10.0.0.1");

    // Behind the proxy, limits are counted per forwarded address.
    for (int n = 0; n < 10; ++n) {
        HttpRequest lookup = getRequest("UNKNOWN-CODE-" + std::to_string(1000 + n), "10.0.0.1");
        lookup.headers["x-forwarded-for"] = "198.51.100.7";
        service->handle(lookup);
    }
    HttpRequest blocked = getRequest("UNKNOWN-CODE-2000", "10.0.0.1");
    blocked.headers["x-forwarded-for"] = "198.51.100.7";
    EXPECT_EQ(service->handle(blocked).status, 429);
    HttpRequest other = getRequest("UNKNOWN-CODE-2000", "10.0.0.1");
    other.headers["x-forwarded-for"] = "198.51.100.8";
    EXPECT_EQ(service->handle(other).status, 404);
}

TEST_F(SyncServiceTest, RequestCeilingPerAddress) {
    config.requestsPerMinute = 5;
    remake();
    for (int n = 0; n < 5; ++n)
        EXPECT_EQ(service->handle(getRequest(kCode)).status, 404);
    const HttpResponse refused = service->handle(getRequest(kCode));
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(errorText(refused.body), text(texts::kTooManyRequests));
    EXPECT_EQ(service->handle(getRequest(kCode, "192.0.2.11")).status, 404);
}

// A storage that has gone away.
class UnavailableStore final : public SlotStore {
public:
    bool open() override { return true; }
    Status put(const QByteArray &, const StoredSlot &) override { return Status::Unavailable; }
    Status get(const QByteArray &, StoredSlot &) override { return Status::Unavailable; }
    std::optional<qint64> deleteWrittenBefore(const QDateTime &) override { return {}; }
    std::optional<qint64> count() override { return {}; }
    bool isHealthy() override { return false; }
};

TEST_F(SyncServiceTest, StorageUnavailableAnswers503) {
    UnavailableStore unavailable;
    SyncService down(unavailable, config);
    const HttpResponse put =
        down.handle(putRequest(encodeSyncRecord(defaultUpload()).toStdString()));
    EXPECT_EQ(put.status, 503);
    EXPECT_EQ(errorText(put.body), text(texts::kStorageUnavailable));
    EXPECT_EQ(down.handle(getRequest(kCode)).status, 503);
    HttpRequest health = getRequest(kCode);
    health.path = "/healthz";
    EXPECT_EQ(down.handle(health).status, 503);
    EXPECT_EQ(service->handle(health).status, 200);
    EXPECT_EQ(service->handle(health).body, "ok");
}

TEST_F(SyncServiceTest, LogoAndMetrics) {
    HttpRequest request = getRequest("");
    request.query.clear();
    request.path = "/photos/velino-logo.png";
    const HttpResponse logo = service->handle(request);
    EXPECT_EQ(logo.status, 200);
    EXPECT_EQ(logo.contentType, "image/png");
    EXPECT_EQ(logo.body, config.logoPng.toStdString());

    ASSERT_EQ(service->handle(putRequest(encodeSyncRecord(defaultUpload()).toStdString())).status,
              200);
    service->recordExchange(getRequest(kCode), 200, std::chrono::milliseconds(3));
    service->recordExchange(getRequest(kCode), 404, std::chrono::milliseconds(70));
    service->recordExchange(getRequest(kCode), 404, std::chrono::seconds(20));
    request.path = "/metrics";
    const std::string metrics = service->handle(request).body;
    EXPECT_NE(metrics.find("velino_sync_requests_total{status=\"200\"} 1\n"), std::string::npos);
    EXPECT_NE(metrics.find("velino_sync_requests_total{status=\"404\"} 2\n"), std::string::npos);
    EXPECT_NE(metrics.find("velino_sync_request_duration_seconds_bucket{le=\"0.005\"} 1\n"),
              std::string::npos);
    EXPECT_NE(metrics.find("velino_sync_request_duration_seconds_bucket{le=\"0.1\"} 2\n"),
              std::string::npos);
    EXPECT_NE(metrics.find("velino_sync_request_duration_seconds_bucket{le=\"+Inf\"} 3\n"),
              std::string::npos);
    EXPECT_NE(metrics.find("velino_sync_slots 1\n"), std::string::npos) << metrics;
}

TEST_F(SyncServiceTest, LogLinesNameTheRequestButNeverTheCodeOrPayload) {
    HttpRequest request = putRequest(encodeSyncRecord(defaultUpload()).toStdString());
    request.query = {{"code", kCode}};
    service->recordExchange(request, 200, std::chrono::microseconds(1500));
    HttpRequest forged = getRequest(kCode);
    forged.path = "/x\nPUT /api/velino-sync 200";
    service->recordExchange(forged, 404, std::chrono::milliseconds(1));
    ASSERT_EQ(logLines.size(), 2u);
    EXPECT_EQ(logLines[0], "PUT /api/velino-sync 200 1.5ms 192.0.2.10");
    EXPECT_EQ(logLines[1].find('\n'), std::string::npos);
    for (const std::string &line : logLines) {
        EXPECT_EQ(line.find(kCode), std::string::npos) << line;
        EXPECT_EQ(line.find("korvel"), std::string::npos) << line;
    }
}

} // namespace
