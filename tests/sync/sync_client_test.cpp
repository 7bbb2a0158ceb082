#include "service_host.h"
#include "sync_client.h"
#include "test_records.h"

#include <QUrlQuery>

#include <gtest/gtest.h>

#include <ctime>

using namespace velino;

namespace {

// Sets an environment variable for the life of the guard, then puts the old value back.
class ScopedEnv {
public:
    ScopedEnv(const char *name, const QByteArray &value)
        : name_(name), hadValue_(qEnvironmentVariableIsSet(name)), old_(qgetenv(name)) {
        qputenv(name_, value);
        tzset();
    }
    ~ScopedEnv() {
        if (hadValue_)
            qputenv(name_, old_);
        else
            qunsetenv(name_);
        tzset();
    }
    ScopedEnv(const ScopedEnv &) = delete;
    ScopedEnv &operator=(const ScopedEnv &) = delete;

private:
    const char *name_;
    bool hadValue_;
    QByteArray old_;
};

SyncTransportResult httpAnswer(int status, const QByteArray &body) {
    SyncTransportResult result;
    result.response = SyncHttpResponse{true, status, body};
    return result;
}

} // namespace

TEST(SyncCode, KeepsUpperCasedLettersDigitsAndHyphensOnly) {
    const QString typed = normalizedSyncCode("ab12-cd34 ef56/gh78");
    EXPECT_EQ(typed, "AB12-CD34EF56GH78");
    EXPECT_EQ(typed.size(), 17);
    EXPECT_TRUE(isSyncCodeLongEnough(typed));

    const QString shortCode = normalizedSyncCode("abc");
    EXPECT_EQ(shortCode, "ABC");
    EXPECT_FALSE(isSyncCodeLongEnough(shortCode));
    EXPECT_FALSE(isSyncCodeLongEnough(normalizedSyncCode("ABCD-EFGH-IJK  L")));
    EXPECT_TRUE(isSyncCodeLongEnough(normalizedSyncCode("ABCD-EFGH-IJKL-M")));

    // Accented letters, other scripts, full-width forms, emoji and controls are dropped.
    EXPECT_EQ(normalizedSyncCode(
                  QString::fromUtf16(u"\u00e9t\u00e9-\u0410\u0411\uff21\U0001F600_+x\t\n\u00a09")),
              "T-X9");
    EXPECT_EQ(normalizedSyncCode(""), "");
}

TEST(SyncCode, UpperCasesBeforeFilteringAndCutsAt64) {
    // The German sharp s becomes two letters S.
    EXPECT_EQ(normalizedSyncCode(QString::fromUtf16(u"stra\u00dfe-12")), "STRASSE-12");

    QString seventy;
    for (int i = 0; i < 70; ++i)
        seventy += QChar(u'a' + i % 26);
    const QString cut = normalizedSyncCode(seventy + " !?");
    EXPECT_EQ(cut.size(), 64);
    EXPECT_EQ(cut, seventy.left(64).toUpper());

    // Dropped characters do not count towards the 64.
    EXPECT_EQ(normalizedSyncCode(QString(100, u' ') + QString(64, u'z') + "END"),
              QString(64, u'Z'));

    // Upper-casing comes first: of the two letters S, only the first still fits.
    EXPECT_EQ(normalizedSyncCode(QString(63, u'k') + QString::fromUtf16(u"\u00df")),
              QString(63, u'K') + "S");
}

TEST(SyncTimeLabel, ShowsTheLocalTimeOfDayOfAnInternetDateTime) {
    const ScopedEnv paris("TZ", "Europe/Paris");
    EXPECT_EQ(syncTimeLabel("2026-06-05T08:15:00Z"), "10:15");
    EXPECT_EQ(syncTimeLabel("2026-01-05T08:15:00Z"), "09:15");
    EXPECT_EQ(syncTimeLabel("2026-06-05T23:05:09+02:00"), "23:05");
    EXPECT_EQ(syncTimeLabel("2026-06-05T22:30:00Z"), "00:30");
    EXPECT_EQ(synctext::pushSucceeded("2026-06-05T08:15:00Z"),
              QString::fromUtf16(u"Brouillon envoye vers l'iPhone \u00b7 10:15"));
    EXPECT_EQ(synctext::pullSucceeded("2026-06-05T08:15:00.5Z"),
              QString::fromUtf16(u"Brouillon recupere \u00b7 2026-06-05T08:15:00.5Z"));
    {
        const ScopedEnv tokyo("TZ", "Asia/Tokyo");
        EXPECT_EQ(syncTimeLabel("2026-06-05T08:15:00Z"), "17:15");
    }
}

TEST(SyncTimeLabel, GivesBackAnyOtherTextUnchanged) {
    const ScopedEnv paris("TZ", "Europe/Paris");
    for (const QString &text :
         {QString("2026-06-05T08:15:00.123Z"), QString("2026-06-05T08:15:00"),
          QString("2026-06-05"), QString("2026-02-30T08:15:00Z"), QString("hier soir"), QString(""),
          QString::fromUtf16(u"2026-06-05T08:15:00\uff3a")})
        EXPECT_EQ(syncTimeLabel(text), text) << text.toStdString();
}

TEST(SyncResponse, AcceptsEvery2xxAnswerWhateverItsBody) {
    for (const int status : {200, 201, 204, 299})
        EXPECT_FALSE(validateSyncResponse(SyncHttpResponse{true, status, "pas du JSON"})) << status;

    const auto notHttp = validateSyncResponse(SyncHttpResponse{false, 200, "{}"});
    ASSERT_TRUE(notHttp.has_value());
    EXPECT_EQ(notHttp->code, 21);
    EXPECT_EQ(notHttp->description, "Reponse de synchronisation invalide.");
}

TEST(SyncResponse, RefusalsCarryTheStatusAndTheServerText) {
    struct Case {
        int status;
        QByteArray body;
        QString description;
    };
    const Case cases[] = {
        {404, "{\"error\":\"Code inconnu\"}", "Code inconnu"},
        {409, "{\"error\":\"\",\"detail\":1}", ""},
        {400, "{\"error\":\"  Code\\nrefuse \"}", "  Code\nrefuse "},
        {500, "<html><body>Erreur</body></html>", "Synchronisation impossible."},
        {503, "", "Synchronisation impossible."},
        {403, "{\"error\":null}", "Synchronisation impossible."},
        {401, "{\"message\":\"non\"}", "Synchronisation impossible."},
        {422, "[\"Code inconnu\"]", "Synchronisation impossible."},
        {199, "{\"error\":\"Trop tot\"}", "Trop tot"},
        {300, "{\"error\":\"Ailleurs\"}", "Ailleurs"},
    };
    for (const Case &c : cases) {
        const auto error = validateSyncResponse(SyncHttpResponse{true, c.status, c.body});
        ASSERT_TRUE(error.has_value()) << c.status;
        EXPECT_EQ(error->code, c.status);
        EXPECT_EQ(error->description, c.description) << c.status;
    }
}

TEST(SyncResponse, OutcomesCheckTransportThenStatusThenBody) {
    VelinoError error;

    SyncTransportResult failed;
    failed.failure = VelinoError{1, "Connection refused"};
    EXPECT_FALSE(syncUploadOutcome(failed, &error).has_value());
    EXPECT_EQ(error.code, 1);
    EXPECT_EQ(error.description, "Connection refused");

    EXPECT_FALSE(
        syncDownloadOutcome(httpAnswer(404, "{\"error\":\"Code inconnu\"}"), &error).has_value());
    EXPECT_EQ(error.code, 404);
    EXPECT_EQ(error.description, "Code inconnu");

    EXPECT_FALSE(syncDownloadOutcome(httpAnswer(200, "Bienvenue"), &error).has_value());
    EXPECT_EQ(error.code, kSyncErrorUndecodableAnswer);
    EXPECT_TRUE(error.description.startsWith("JSON invalide")) << error.description.toStdString();

    EXPECT_FALSE(syncUploadOutcome(httpAnswer(200, "{\"ok\":true}"), &error).has_value());
    EXPECT_EQ(error.description, "cle manquante : updatedAt");

    const auto updatedAt =
        syncUploadOutcome(httpAnswer(201, "{\"ok\":true,\"updatedAt\":\"bientot\"}"), &error);
    ASSERT_TRUE(updatedAt.has_value()) << error.description.toStdString();
    EXPECT_EQ(*updatedAt, "bientot");
}

TEST(SyncPullUrl, ReplacesTheQueryWithTheEncodedCode) {
    const QUrl endpoint("https://korvel.example/api/velino-sync");
    const auto url = syncPullUrl(endpoint, "AB12-CD34EF56GH78");
    ASSERT_TRUE(url.has_value());
    EXPECT_EQ(url->toString(QUrl::FullyEncoded),
              "https://korvel.example/api/velino-sync?code=AB12-CD34EF56GH78");

    const auto replaced = syncPullUrl(QUrl("https://h.example:8443/api/velino-sync?x=1#f"), "AB");
    ASSERT_TRUE(replaced.has_value());
    EXPECT_EQ(replaced->toString(QUrl::FullyEncoded),
              "https://h.example:8443/api/velino-sync?code=AB#f");

    const QString odd = QString::fromUtf16(u"A+B C&D=%\u00e9#");
    const auto encoded = syncPullUrl(endpoint, odd);
    ASSERT_TRUE(encoded.has_value());
    EXPECT_EQ(encoded->query(QUrl::FullyEncoded), "code=A%2BB%20C%26D%3D%25%C3%A9%23");
    EXPECT_EQ(QUrlQuery(*encoded).queryItemValue("code", QUrl::FullyDecoded), odd);

    EXPECT_FALSE(syncPullUrl(QUrl(), "AB").has_value());
    EXPECT_FALSE(syncPullUrl(QUrl("api/velino-sync"), "AB").has_value());
    EXPECT_FALSE(syncPullUrl(QUrl("https://exa mple.com/x", QUrl::StrictMode), "AB").has_value());
}

TEST(ServiceHost, EnvironmentOverridesTheCompiledInHost) {
    {
        const ScopedEnv none("VELINO_SERVICE_HOST", "");
        EXPECT_EQ(serviceHost(), defaultServiceHost());
        EXPECT_EQ(syncEndpoint().toString(),
                  "https://" + defaultServiceHost() + "/api/velino-sync");
        EXPECT_TRUE(syncEndpoint().isValid());
        EXPECT_EQ(webInterfaceUrl().toString(), "https://" + defaultServiceHost() + "/velino.html");
    }
    {
        const ScopedEnv local("VELINO_SERVICE_HOST", "127.0.0.1:8443");
        EXPECT_EQ(serviceHost(), "127.0.0.1:8443");
        EXPECT_EQ(syncEndpoint().toString(), "https://127.0.0.1:8443/api/velino-sync");
        EXPECT_EQ(syncEndpoint().port(), 8443);
        EXPECT_EQ(webInterfaceUrl().toString(), "https://127.0.0.1:8443/velino.html");
    }
    {
        const ScopedEnv named("VELINO_SERVICE_HOST", "Staging.Korvel.example");
        EXPECT_EQ(syncEndpoint().toString(), "https://staging.korvel.example/api/velino-sync");
    }
    {
        const ScopedEnv bad("VELINO_SERVICE_HOST", "https://evil.example/x");
        EXPECT_EQ(serviceHost(), defaultServiceHost());
        EXPECT_EQ(syncEndpoint().host(), QUrl("https://" + defaultServiceHost()).host());
    }
}

TEST(ServiceHost, AcceptsOnlyAHostWithAnOptionalPort) {
    EXPECT_EQ(parseServiceHost("korvel.example"), "korvel.example");
    EXPECT_EQ(parseServiceHost("localhost:1"), "localhost:1");
    EXPECT_EQ(parseServiceHost("[::1]:9443"), "[::1]:9443");
    EXPECT_EQ(parseServiceHost("sync.korvel.example:65535"), "sync.korvel.example:65535");

    for (const QString &bad :
         {QString(""), QString("http://korvel.example"), QString("korvel.example/api"),
          QString("user@korvel.example"), QString("user:pass@korvel.example"),
          QString("korvel.example:abc"), QString("korvel.example:0"),
          QString("korvel.example:65536"), QString("korvel.example:"), QString(":443"),
          QString("korvel example"), QString(" korvel.example"), QString("korvel.example?x"),
          QString("korvel.example#x"), QString("korvel\\example"), QString("[::1"),
          QString("exa\tmple")})
        EXPECT_FALSE(parseServiceHost(bad).has_value()) << bad.toStdString();
}
