// The sanitizers and the renderer on records built from the input: the bytes are split at
// each NUL into the texts of the fields, in field order (fields left over keep their
// default text). The e-mail must stay well formed with every user text escaped.

#include "fuzz_check.h"
#include "html_check.h"
#include "mail_template_context.h"
#include "suggested_file_name.h"

using namespace velino;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    MailComposerData record = MailComposerData::defaultRecord();
    const QList<QByteArray> texts = fuzzBytes(data, size).split('\0');
    const auto &fields = MailComposerData::fields();
    for (qsizetype i = 0; i < texts.size() && i < static_cast<qsizetype>(fields.size()); ++i)
        record.*fields[static_cast<size_t>(i)].member = QString::fromUtf8(texts[i]);
    if (texts.size() > 1 && texts.last() == "repair")
        record.normalizeLegacyTextFields();

    const MailTemplateContext context(record);
    const QString html = context.htmlDocument();
    const QString problem = fuzz::htmlProblem(html);
    if (!problem.isEmpty())
        std::fprintf(stderr, "%s\n", qPrintable(problem));
    FUZZ_CHECK(problem.isEmpty(), "well-formed e-mail with every user text escaped");
    FUZZ_CHECK(!context.plainText().isEmpty(), "a text version");
    FUZZ_CHECK(context.checklist().size() == 8, "eight checks");
    FUZZ_CHECK(!context.formatStatus().isEmpty(), "a status");
    const QString fileName = suggestedFileName(context.subject);
    FUZZ_CHECK(fileName.endsWith(QStringLiteral(".html")) && !fileName.contains(u'/'),
               "a plain file name");
    return 0;
}
