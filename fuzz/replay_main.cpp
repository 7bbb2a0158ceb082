// Runs a fuzz target once on every file of the folders (or files) given: the committed
// corpus is replayed by the test suite without fuzzing.

#include "fuzz_check.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

int main(int argc, char **argv) {
    int replayed = 0;
    for (int a = 1; a < argc; ++a) {
        QStringList files;
        const QString path = QString::fromLocal8Bit(argv[a]);
        if (QFileInfo(path).isDir()) {
            QDirIterator it(path, QDir::Files);
            while (it.hasNext())
                files.append(it.next());
            files.sort();
        } else {
            files.append(path);
        }
        for (const QString &file : files) {
            QFile input(file);
            if (!input.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(file));
                return 1;
            }
            const QByteArray bytes = input.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.constData()),
                                   static_cast<size_t>(bytes.size()));
            ++replayed;
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
