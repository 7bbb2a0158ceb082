// The settings of earlier versions (line-based file) and the sync code read from them.

#include "fuzz_check.h"
#include "legacy_settings_file.h"
#include "sync_client.h"

using namespace velino;

namespace {

void checkCode(const QString &raw) {
    const QString code = normalizedSyncCode(raw);
    FUZZ_CHECK(code.size() <= kSyncCodeMaxLength, "at most 64 characters");
    for (const QChar c : code) {
        const char16_t u = c.unicode();
        FUZZ_CHECK((u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9') || u == u'-',
                   "only A-Z, 0-9 and -");
    }
    FUZZ_CHECK(normalizedSyncCode(code) == code, "normalising twice changes nothing");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray bytes = fuzzBytes(data, size);
    LegacySettings settings;
    if (parseLegacySettings(bytes, &settings) == LegacyFileState::Read && settings.syncCode)
        checkCode(*settings.syncCode);
    checkCode(QString::fromUtf8(bytes));
    return 0;
}
