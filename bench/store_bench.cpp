// The store with a library of 1,000 saved presets: one save, and a whole construction
// (load, repair, sort, first regeneration, first save), on real state files.

#include "composer_store.h"
#include "identifiers.h"
#include "qt_state_storage.h"
#include "saved_payload.h"
#include "saved_states.h"

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
        const SavedPayload payload = bench::libraryOf1000Presets();
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

// Reading the saved document alone: strict syntax check and decoding.
void BM_LoadDocumentWith1000Presets(benchmark::State &state) {
    const QByteArray bytes = bench::libraryOf1000Presets().toJson();
    for (auto _ : state) {
        QString error;
        std::optional<SavedPayload> payload = SavedPayload::fromJson(bytes, &error);
        benchmark::DoNotOptimize(payload);
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
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
BENCHMARK(BM_LoadDocumentWith1000Presets)
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
