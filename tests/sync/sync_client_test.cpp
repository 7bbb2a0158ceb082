#include "service_host.h"
#include "sync_client.h"

#include <gtest/gtest.h>

#include <ctime>

using namespace velino;

// Each test runs in a process of its own: nothing set in the environment is put back.
TEST(SyncTimeLabel, ShowsTheLocalTimeOfAnInternetDateTimeOrTheTextUnchanged) {
    qputenv("TZ", "Europe/Paris");
    tzset();
    EXPECT_EQ(syncTimeLabel("2026-06-05T08:15:00Z"), "10:15");
    EXPECT_EQ(syncTimeLabel("2026-06-05T23:05:09+02:00"), "23:05");
    EXPECT_EQ(syncTimeLabel("2026-01-05T23:30:00Z"), "00:30"); // winter time, the next day
    qputenv("TZ", "Asia/Tokyo");
    tzset();
    EXPECT_EQ(syncTimeLabel("2026-06-05T08:15:00Z"), "17:15");
    for (const QString text : {"2026-06-05T08:15:00.123Z", "2026-06-05T08:15:00", "2026-06-05",
                               "2026-02-30T08:15:00Z", "2026-06-05T08:15:00\uff3a"})
        EXPECT_EQ(syncTimeLabel(text), text) << text.toStdString();
}

// The host is also the only one the preview may load from.
TEST(ServiceHost, EnvironmentOverridesTheCompiledInHostOnlyWithAHostAndAnOptionalPort) {
    const QString compiledIn = defaultServiceHost();
    const std::pair<QByteArray, QString> cases[] = {
        {"", compiledIn},
        {"Staging.Korvel.example:8443", "staging.korvel.example:8443"},
        {"https://evil.example/x", compiledIn}, // not a host: ignored
    };
    for (const auto &[value, host] : cases) {
        qputenv("VELINO_SERVICE_HOST", value);
        EXPECT_EQ(syncEndpoint().toString(), "https://" + host + "/api/velino-sync");
        EXPECT_EQ(webInterfaceUrl().toString(), "https://" + host + "/velino.html");
    }
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
