#include "sync_service.h"

#include "render_service.h"
#include "sync_code.h"
#include "sync_records.h"
#include "sync_texts.h"
#include "web_files.h"
#include "web_headers.h"

#include <cstdio>

namespace velino::server {
namespace {

constexpr size_t kMaxLoggedPathBytes = 200;

HttpResponse jsonResponse(int status, const QByteArray &body) {
    HttpResponse response;
    response.status = status;
    response.contentType = "application/json";
    response.body = body.toStdString();
    return response;
}

HttpResponse methodNotAllowed(const char *allowed) {
    HttpResponse response =
        SyncService::errorResponse(405, QString::fromUtf8(texts::kMethodNotAllowed));
    response.headers.emplace("Allow", allowed);
    return response;
}

bool isReading(const HttpRequest &request) {
    return request.method == "GET" || request.method == "HEAD";
}

QString serverTimeText(const QDateTime &time) {
    return time.toUTC().toString(Qt::ISODate);
}

// Printable ASCII only, so a request cannot forge log lines.
std::string loggablePath(const std::string &path) {
    std::string out;
    for (const char c : path.substr(0, kMaxLoggedPathBytes))
        out += (c > 0x20 && c < 0x7f) ? c : '?';
    if (path.size() > kMaxLoggedPathBytes)
        out += "...";
    return out.empty() ? std::string("-") : out;
}

std::string trimmed(const std::string &text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

} // namespace

SyncService::SyncService(SlotStore &store, SyncServiceConfig config)
    : store_(store), config_(std::move(config)), requestLimiter_(config_.requestsPerMinute),
      unknownLookupLimiter_(config_.unknownLookupsPerMinute) {}

HttpResponse SyncService::errorResponse(int status, const QString &message) {
    return jsonResponse(status, encodeSyncRecord(VelinoSyncErrorResponse{message}));
}

HttpResponse SyncService::bodyTooLarge() const {
    return errorResponse(413, QString::fromUtf8(texts::kBodyTooLarge).arg(config_.maxBodyBytes));
}

QDateTime SyncService::now() const {
    QDateTime time = config_.now ? config_.now() : QDateTime::currentDateTimeUtc();
    time = time.toUTC();
    return time.addMSecs(-time.time().msec());
}

std::string SyncService::clientAddressOf(const HttpRequest &request) const {
    if (config_.trustProxy) {
        // The proxy appends the address it saw; what comes before it is the client's word.
        const std::string forwarded = request.header("x-forwarded-for");
        const auto comma = forwarded.rfind(',');
        const std::string last =
            trimmed(comma == std::string::npos ? forwarded : forwarded.substr(comma + 1));
        if (!last.empty())
            return last;
    }
    return request.peerAddress;
}

void SyncService::recordExchange(const HttpRequest &request, int status,
                                 std::chrono::steady_clock::duration duration) {
    metrics_.record(status, duration);
    const double ms = std::chrono::duration<double, std::milli>(duration).count();
    char line[512];
    std::snprintf(line, sizeof line, "%s %s %d %.1fms %s",
                  loggablePath(request.method.substr(0, 16)).c_str(),
                  loggablePath(request.path).c_str(), status, ms,
                  loggablePath(clientAddressOf(request)).c_str());
    if (config_.log) {
        config_.log(line);
        return;
    }
    std::lock_guard lock(logMutex_);
    std::fprintf(stderr, "%s\n", line);
}

HttpResponse SyncService::handle(const HttpRequest &request) {
    HttpResponse response = route(request);
    addSecurityHeaders(response);
    return response;
}

HttpResponse SyncService::route(const HttpRequest &request) {
    const std::string client = clientAddressOf(request);
    if (!requestLimiter_.take(client))
        return errorResponse(429, QString::fromUtf8(texts::kTooManyRequests));
    if (request.path == "/api/velino-sync")
        return handleSync(request, client);
    if (request.path == "/api/velino-render")
        return request.method == "POST" ? renderAnswer(request) : methodNotAllowed("POST");
    if (request.path == "/api/velino-preview")
        return request.method == "POST" ? previewAnswer(request) : methodNotAllowed("POST");
    if (std::optional<HttpResponse> file = webFile(request.path))
        return isReading(request) ? *file : methodNotAllowed("GET, HEAD");
    if (request.path == "/photos/velino-logo.png")
        return logo(request);
    if (request.path == "/healthz")
        return health(request);
    if (request.path == "/metrics")
        return metrics(request);
    return errorResponse(404, QString::fromUtf8(texts::kUnknownAddress));
}

HttpResponse SyncService::handleSync(const HttpRequest &request, const std::string &client) {
    if (request.method == "PUT")
        return putSlot(request);
    if (request.method == "GET")
        return getSlot(request, client);
    return methodNotAllowed("GET, PUT");
}

HttpResponse SyncService::putSlot(const HttpRequest &request) {
    if (qint64(request.body.size()) > config_.maxBodyBytes)
        return bodyTooLarge();
    QString error;
    const std::optional<VelinoSyncUpload> upload =
        decodeSyncRecord<VelinoSyncUpload>(QByteArray::fromStdString(request.body), &error);
    if (!upload)
        return errorResponse(400, error);
    if (!isWellFormedSyncCode(upload->code))
        return errorResponse(400, QString::fromUtf8(texts::kInvalidCode));
    const StoredSlot slot{now(), encodeSyncRecord(upload->payload)};
    if (store_.put(slotKeyOf(upload->code), slot) != SlotStore::Status::Ok)
        return errorResponse(503, QString::fromUtf8(texts::kStorageUnavailable));
    return jsonResponse(
        200, encodeSyncRecord(VelinoSyncUploadResponse{true, serverTimeText(slot.updatedAt)}));
}

HttpResponse SyncService::getSlot(const HttpRequest &request, const std::string &client) {
    const std::optional<std::string> item = request.queryItem("code");
    const QString code = item ? QString::fromStdString(*item) : QString();
    if (!isWellFormedSyncCode(code))
        return errorResponse(400, QString::fromUtf8(texts::kInvalidCode));
    if (unknownLookupLimiter_.exhausted(client))
        return errorResponse(429, QString::fromUtf8(texts::kTooManyLookups));
    StoredSlot slot;
    switch (store_.get(slotKeyOf(code), slot)) {
    case SlotStore::Status::Ok:
        break;
    case SlotStore::Status::NotFound:
        unknownLookupLimiter_.take(client);
        return errorResponse(404, QString::fromUtf8(texts::kUnknownCode));
    case SlotStore::Status::Unavailable:
        return errorResponse(503, QString::fromUtf8(texts::kStorageUnavailable));
    }
    // The payload is stored as compact JSON already: it goes out as it is.
    QByteArray body = R"({"ok":true,"snapshot":{"updatedAt":")" +
                      serverTimeText(slot.updatedAt).toUtf8() + R"(","payload":)";
    body += slot.payloadJson;
    body += "}}";
    return jsonResponse(200, body);
}

HttpResponse SyncService::logo(const HttpRequest &request) const {
    if (!isReading(request))
        return methodNotAllowed("GET, HEAD");
    HttpResponse response;
    response.contentType = "image/png";
    response.body = config_.logoPng.toStdString();
    response.headers.emplace("Cache-Control", "public, max-age=86400");
    return response;
}

HttpResponse SyncService::health(const HttpRequest &request) {
    if (!isReading(request))
        return methodNotAllowed("GET, HEAD");
    HttpResponse response;
    response.contentType = "text/plain; charset=utf-8";
    response.status = store_.isHealthy() ? 200 : 503;
    response.body = response.status == 200 ? "ok" : "indisponible";
    return response;
}

HttpResponse SyncService::metrics(const HttpRequest &request) {
    if (!isReading(request))
        return methodNotAllowed("GET, HEAD");
    HttpResponse response;
    response.contentType = "text/plain; version=0.0.4; charset=utf-8";
    const std::optional<qint64> slots = store_.count();
    response.body =
        metrics_.prometheusText(slots ? std::optional<long long>(*slots) : std::nullopt);
    return response;
}

} // namespace velino::server
