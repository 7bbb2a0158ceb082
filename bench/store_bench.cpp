// The store with a library of 1,000 saved presets: one save, and a whole construction
// (load, repair, sort, first regeneration, first save), on real state files.

#include "composer_store.h"
#include "identifiers.h"
#include "qt_state_storage.h"
#include "saved_payload.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
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
    StateFiles files = StateFiles::inFolders(dir.filePath(QStringLiteral("config")),
                                             dir.filePath(QStringLiteral("data")));

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
        QDir().mkpath(dir.filePath(QStringLiteral("data")));
        QFile file(files.document);
        if (file.open(QIODevice::WriteOnly))
            file.write(payload.toJson());
    }

    StoreServices services() const {
        StoreServices s = StoreServices::qtDefaults();
        s.storage = std::make_shared<QtStateStorage>(files);
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
