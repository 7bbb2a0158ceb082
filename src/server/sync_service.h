#pragma once

#include "address_limiter.h"
#include "http_exchange.h"
#include "server_metrics.h"
#include "slot_store.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <chrono>
#include <functional>
#include <mutex>
#include <string>

namespace velino::server {

struct SyncServiceConfig {
    qint64 maxBodyBytes = 8 * 1024 * 1024; // the desktop's own cap
    bool trustProxy = false;               // client address from X-Forwarded-For
    int requestsPerMinute = 1200;          // per client address; 0: no ceiling
    int unknownLookupsPerMinute = 10;      // GETs of codes with nothing stored
    QByteArray logoPng;
    std::function<QDateTime()> now;               // UTC; the system clock when empty
    std::function<void(const std::string &)> log; // one line per request; standard error when empty
};

// The sync service's answers: /api/velino-sync (PUT and GET), the phone page with its
// rendering (/velino.html, /api/velino-render, /api/velino-preview), the logo, /healthz and
// /metrics. Every answer carries the security headers of web_headers.h. Every refusal is a JSON
// error record with a French sentence. Safe to call from several request threads at once.
class SyncService {
public:
    SyncService(SlotStore &store, SyncServiceConfig config);

    HttpResponse handle(const HttpRequest &request);

    // One log line (method, path without query, status, duration, client address; never a
    // code or a body) and the metrics of an answered request.
    void recordExchange(const HttpRequest &request, int status,
                        std::chrono::steady_clock::duration duration);

    qint64 maxBodyBytes() const { return config_.maxBodyBytes; }
    HttpResponse bodyTooLarge() const;

    static HttpResponse errorResponse(int status, const QString &message);

private:
    // The address the request is counted and logged under.
    std::string clientAddressOf(const HttpRequest &request) const;
    HttpResponse route(const HttpRequest &request);
    HttpResponse handleSync(const HttpRequest &request, const std::string &client);
    HttpResponse putSlot(const HttpRequest &request);
    HttpResponse getSlot(const HttpRequest &request, const std::string &client);
    HttpResponse logo(const HttpRequest &request) const;
    HttpResponse health(const HttpRequest &request);
    HttpResponse metrics(const HttpRequest &request);
    QDateTime now() const;

    SlotStore &store_;
    SyncServiceConfig config_;
    AddressLimiter requestLimiter_;
    AddressLimiter unknownLookupLimiter_;
    ServerMetrics metrics_;
    std::mutex logMutex_;
};

} // namespace velino::server
