// The sync records read from the network: every decoder on the same bytes; what decodes
// encodes, and its encoding decodes and encodes to the same bytes.

#include "fuzz_check.h"
#include "sync_client.h"
#include "sync_records.h"

using namespace velino;

namespace {

template <typename Record> void roundTrip(const QByteArray &bytes) {
    QString error;
    const std::optional<Record> record = decodeSyncRecord<Record>(bytes, &error);
    FUZZ_CHECK(record.has_value() || !error.isEmpty(), "a refusal says why");
    if (!record)
        return;
    const QByteArray encoded = encodeSyncRecord(*record);
    const std::optional<Record> again = decodeSyncRecord<Record>(encoded, &error);
    FUZZ_CHECK(again.has_value(), "an encoded record decodes");
    FUZZ_CHECK(encodeSyncRecord(*again) == encoded, "decoding and encoding again is stable");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray bytes = fuzzBytes(data, size);
    roundTrip<VelinoSyncPayload>(bytes);
    roundTrip<VelinoSyncUpload>(bytes);
    roundTrip<VelinoSyncUploadResponse>(bytes);
    roundTrip<VelinoSyncSnapshot>(bytes);
    roundTrip<VelinoSyncDownloadResponse>(bytes);
    roundTrip<VelinoSyncErrorResponse>(bytes);
    // A refusal of the service, as the client reads it.
    SyncHttpResponse response;
    response.isHttp = true;
    response.statusCode = 400 + static_cast<int>(size % 200);
    response.body = bytes;
    const std::optional<VelinoError> refusal = validateSyncResponse(response);
    // The service's own text as it is, even empty; the fixed sentence when there is none.
    QString error;
    const std::optional<VelinoSyncErrorResponse> record =
        decodeSyncRecord<VelinoSyncErrorResponse>(bytes, &error);
    FUZZ_CHECK(refusal.has_value() &&
                   refusal->description ==
                       (record ? record->error : QStringLiteral("Synchronisation impossible.")),
               "a refusal shows the service's text or the fixed sentence");
    return 0;
}
