// Prints the upload the desktop sends for its default record, under the code given as the
// first argument: the body of the sync service's load run.
#include "sync_records.h"

#include <cstdio>

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("usage: velino_sync_upload_sample CODE\n", stderr);
        return 2;
    }
    const velino::VelinoSyncUpload upload{
        QString::fromLatin1(argv[1]),
        velino::VelinoSyncPayload::forSending(velino::PresetKind::Devis,
                                              velino::MailComposerData::defaultRecord(),
                                              velino::Instant{788918400})};
    const QByteArray body = velino::encodeSyncRecord(upload);
    std::fwrite(body.constData(), 1, size_t(body.size()), stdout);
    return 0;
}
