// Saves the store in a loop until it is killed: the counterpart of the kill test.
// Usage: velino_store_writer CONFIG_FOLDER DATA_FOLDER

#include "composer_store.h"
#include "qt_state_storage.h"

#include <QCoreApplication>

#include <cstdio>

using namespace velino;

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    if (argc != 3)
        return 2;
    StoreServices services = StoreServices::qtDefaults();
    services.storage = std::make_shared<QtStateStorage>(
        StateFiles::inFolders(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2])));
    ComposerStore store(services);
    std::puts("ready");
    std::fflush(stdout);
    // Alternate between two contents of different sizes so that every save changes the file.
    for (quint64 round = 0;; ++round) {
        store.setCustomPresetDraftName(QStringLiteral("Preset %1").arg(round));
        store.saveAsNewCustomPreset();
        if (store.customPresets().size() > 5) // keep each save small and quick
            store.deleteCustomPreset(store.customPresets().last());
        store.applyPreset(round % 2 ? PresetKind::Rdv : PresetKind::Relance);
    }
}
