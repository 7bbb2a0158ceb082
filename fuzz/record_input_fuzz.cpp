// velino-render's whole input path: strict reading of the record, repair, rendering, and
// the record written back, which must read again as the same record.

#include "fuzz_check.h"
#include "render_request.h"

#include <QJsonDocument>

using namespace velino;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray bytes = fuzzBytes(data, size);
    cli::RenderOptions options;
    options.repair = true;
    try {
        MailComposerData record = cli::decodeRenderInput(bytes);
        options.format = QStringLiteral("record");
        const QByteArray written = cli::renderOutput(options, record);
        MailComposerData repaired = cli::decodeRenderInput(written);
        options.repair = false;
        FUZZ_CHECK(cli::renderOutput(options, repaired) == written, "record round trip");
        options.format = QStringLiteral("json");
        const QByteArray json = cli::renderOutput(options, std::move(record));
        FUZZ_CHECK(QJsonDocument::fromJson(json).isObject(), "rendered JSON reads back");
    } catch (const cli::BadInput &bad) {
        FUZZ_CHECK(!bad.message.isEmpty() && !bad.message.contains(u'\n'), "one-line message");
    }
    return 0;
}
