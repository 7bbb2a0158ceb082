// One full regeneration as the store does it after an edit: context, HTML, text,
// subject, checklist, status and details count.

#include "mail_template_context.h"

#include <benchmark/benchmark.h>

using namespace velino;

namespace {

void regenerate(const MailComposerData &data, benchmark::State &state) {
    for (auto _ : state) {
        const MailTemplateContext context(data);
        QString html = context.htmlDocument();
        QString text = context.plainText();
        QString subject = context.subject;
        QList<ChecklistItem> checklist = context.checklist();
        QString status = context.formatStatus();
        qsizetype count = context.detailsCount();
        benchmark::DoNotOptimize(html);
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(subject);
        benchmark::DoNotOptimize(checklist);
        benchmark::DoNotOptimize(status);
        benchmark::DoNotOptimize(count);
    }
}

void BM_RegenerateDefaultRecord(benchmark::State &state) {
    regenerate(MailComposerData::defaultRecord(), state);
}

// Every text field about 10 KB of accented prose with line breaks and markup characters.
void BM_RegenerateLargeRecord(benchmark::State &state) {
    MailComposerData data = MailComposerData::defaultRecord();
    const QString chunk = QString::fromUtf16(u"R\u00E9paration <\u00E9cran> & \"batterie\" "
                                             u"l'atelier\n");
    for (const auto &field : MailComposerData::fields()) {
        QString &value = data.*field.member;
        if (field.name == u"accentPrimary" || field.name == u"accentSecondary")
            continue;
        value = chunk.repeated(10240 / chunk.size());
    }
    regenerate(data, state);
    state.SetBytesProcessed(state.iterations() * 29 * 10240);
}

} // namespace

BENCHMARK(BM_RegenerateDefaultRecord)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_RegenerateLargeRecord)->Repetitions(5)->ReportAggregatesOnly(true);

BENCHMARK_MAIN();
