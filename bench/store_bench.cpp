// The store with a library of 1,000 saved presets: one save, and a whole construction
// (load, repair, sort, first regeneration, first save), on a real settings file.

#include "composer_store.h"
#include "identifiers.h"
#include "qt_services.h"
#include "saved_payload.h"
#include "settings_format.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace velino;

namespace {

class BenchStore : public ComposerStore {
public:
    using ComposerStore::ComposerStore;
    using ComposerStore::persist;
};

struct LibraryFixture {
    QTemporaryDir dir;
    QString path = dir.filePath(QStringLiteral("Velino.conf"));

    LibraryFixture() {
        SavedPayload payload;
        payload.data = MailComposerData::defaultRecord();
        for (int i = 0; i < 1000; ++i) {
            CustomMailPreset preset;
            preset.id = randomUuid();
            preset.name = QStringLiteral("Preset client %1").arg(i);
            preset.sourcePreset = kAllPresetKinds[i % 4];
            preset.data = MailComposerData::defaultRecord();
            preset.data.applyPreset(preset.sourcePreset);
            preset.data.recipientName = QStringLiteral("Client %1").arg(i);
            preset.createdAt = Instant{788918400.0 + i};
            preset.updatedAt = Instant{788918400.0 + (i * 7919) % 1000};
            payload.customPresets.append(preset);
        }
        QSettings settings(path, velinoSettingsFormat());
        settings.setValue(ComposerStore::kDefaultsKey, payload.toJson());
    }

    StoreServices services() const {
        StoreServices s = StoreServices::qtDefaults();
        s.settings = std::make_shared<QtSettingsStore>(path);
        return s;
    }
};

void BM_PersistWith1000Presets(benchmark::State &state) {
    LibraryFixture fixture;
    BenchStore store(fixture.services());
    for (auto _ : state)
        store.persist();
}

void BM_ConstructionWith1000Presets(benchmark::State &state) {
    LibraryFixture fixture;
    for (auto _ : state) {
        BenchStore store(fixture.services());
        benchmark::DoNotOptimize(store.customPresets().size());
    }
}

} // namespace

BENCHMARK(BM_PersistWith1000Presets)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_ConstructionWith1000Presets)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
