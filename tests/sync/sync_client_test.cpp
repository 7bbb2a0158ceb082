#include "service_host.h"
#include "sync_client.h"

#include <gtest/gtest.h>

#include <ctime>

using namespace velino;

namespace {

// Sets an environment variable for the life of the guard, then puts the old value back.
struct ScopedEnv {
    ScopedEnv(const char *name, const QByteArray &value)
        : name(name),
          old(qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt) {
        qputenv(name, value);
        tzset();
    }
    ~ScopedEnv() {
        old ? void(qputenv(name, *old)) : void(qunsetenv(name));
        tzset();
    }
    const char *name;
    std::optional<QByteArray> old;
};

} // namespace

TEST(SyncTimeLabel, ShowsTheLocalTimeOfAnInternetDateTimeOrTheTextUnchanged) {
    const ScopedEnv paris("TZ", "Europe/Paris");
    EXPECT_EQ(syncTimeLabel("2026-06-05T08:15:00Z"), "10:15");
    EXPECT_EQ(syncTimeLabel("2026-06-05T23:05:09+02:00"), "23:05");
    EXPECT_EQ(syncTimeLabel("2026-01-05T23:30:00Z"), "00:30"); // winter time, the next day
    {
        const ScopedEnv tokyo("TZ", "Asia/Tokyo");
        EXPECT_EQ(syncTimeLabel("2026-06-05T08:15:00Z"), "17:15");
    }
    for (const QString text : {"2026-06-05T08:15:00.123Z", "2026-06-05T08:15:00", "2026-06-05",
                               "2026-02-30T08:15:00Z", "2026-06-05T08:15:00\uff3a"})
        EXPECT_EQ(syncTimeLabel(text), text) << text.toStdString();
}

TEST(SyncResponse, Every2xxPassesOtherStatusesCarryTheServerText) {
    for (const int status : {200, 201, 204, 299})
        EXPECT_FALSE(validateSyncResponse(SyncHttpResponse{true, status, "pas du JSON"})) << status;

    const std::tuple<int, QByteArray, QString> cases[] = {
        {409, "{\"error\":\"\",\"detail\":1}", ""},
        {401, "{\"message\":\"non\"}", "Synchronisation impossible."},
        {400, "{\"error\":\"  Code\\nrefuse \"}", "  Code\nrefuse "},
        {503, "", "Synchronisation impossible."},
        {403, "{\"error\":null}", "Synchronisation impossible."},
        {422, "[\"Code inconnu\"]", "Synchronisation impossible."},
        {199, "{\"error\":\"Trop tot\"}", "Trop tot"},
        {300, "{\"error\":\"Ailleurs\"}", "Ailleurs"},
    };
    for (const auto &[status, body, description] : cases) {
        const auto error = validateSyncResponse(SyncHttpResponse{true, status, body});
        ASSERT_TRUE(error.has_value()) << status;
        EXPECT_EQ(error->code, status);
        EXPECT_EQ(error->description, description) << status;
    }
}

TEST(SyncPullUrl, ReplacesTheQueryWithTheEncodedCode) {
    const auto replaced = syncPullUrl(QUrl("https://h.example:8443/api/velino-sync?x=1#f"), "AB");
    ASSERT_TRUE(replaced.has_value());
    EXPECT_EQ(replaced->toString(QUrl::FullyEncoded),
              "https://h.example:8443/api/velino-sync?code=AB#f");

    const QString odd = QString::fromUtf16(u"A+B C&D=%\u00e9#");
    const auto encoded = syncPullUrl(QUrl("https://korvel.example/api/velino-sync"), odd);
    ASSERT_TRUE(encoded.has_value());
    EXPECT_EQ(encoded->query(QUrl::FullyEncoded), "code=A%2BB%20C%26D%3D%25%C3%A9%23");

    EXPECT_FALSE(syncPullUrl(QUrl("api/velino-sync"), "AB").has_value());
    EXPECT_FALSE(syncPullUrl(QUrl("https://exa mple.com/x", QUrl::StrictMode), "AB").has_value());
}

TEST(ServiceHost, EnvironmentOverridesTheCompiledInHost) {
    const QString compiledIn = defaultServiceHost();
    const std::pair<QByteArray, QString> cases[] = {
        {"", compiledIn},
        {"127.0.0.1:8443", "127.0.0.1:8443"},
        {"https://evil.example/x", compiledIn}, // not a host: ignored
    };
    for (const auto &[value, host] : cases) {
        const ScopedEnv env("VELINO_SERVICE_HOST", value);
        EXPECT_EQ(serviceHost(), host);
        EXPECT_EQ(syncEndpoint().toString(), "https://" + host + "/api/velino-sync");
        EXPECT_EQ(webInterfaceUrl().toString(), "https://" + host + "/velino.html");
    }
    const ScopedEnv named("VELINO_SERVICE_HOST", "Staging.Korvel.example");
    EXPECT_EQ(syncEndpoint().toString(), "https://staging.korvel.example/api/velino-sync");
}

TEST(ServiceHost, AcceptsOnlyAHostWithAnOptionalPort) {
    for (const char *host :
         {"korvel.example", "localhost:1", "[::1]:9443", "sync.korvel.example:65535"})
        EXPECT_EQ(parseServiceHost(host), host);

    for (const char *bad :
         {"", "http://korvel.example", "korvel.example/api", "user@korvel.example",
          "user:pass@korvel.example", "korvel.example:abc", "korvel.example:0",
          "korvel.example:65536", "korvel.example:", ":443", "korvel example", " korvel.example",
          "korvel.example?x", "korvel.example#x", "korvel\\example", "[::1", "exa\tmple"})
        EXPECT_FALSE(parseServiceHost(bad).has_value()) << bad;
}
