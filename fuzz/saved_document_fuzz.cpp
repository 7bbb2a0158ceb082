// The saved document: strict reading, the repair of texts of earlier versions, and the
// document written again, which must read back and write the same bytes.

#include "fuzz_check.h"
#include "saved_payload.h"

using namespace velino;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    QString error;
    std::optional<SavedPayload> payload = SavedPayload::fromJson(fuzzBytes(data, size), &error);
    if (!payload) {
        FUZZ_CHECK(!error.isEmpty(), "a refusal says why");
        return 0;
    }
    payload->data.normalizeLegacyTextFields();
    for (CustomMailPreset &preset : payload->customPresets)
        preset.data.normalizeLegacyTextFields();
    const QByteArray written = payload->toJson();
    const std::optional<SavedPayload> reread = SavedPayload::fromJson(written, &error);
    FUZZ_CHECK(reread.has_value(), "a written document reads back");
    FUZZ_CHECK(reread->toJson() == written, "reading and writing again changes nothing");
    FUZZ_CHECK(reread->data == payload->data, "the content survives");
    return 0;
}
