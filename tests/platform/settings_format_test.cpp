#include "qt_services.h"
#include "settings_format.h"
#include "test_records.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace velino;

namespace {

QByteArray fileBytes(const QString &path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

} // namespace

TEST(SettingsFormat, EveryValueComesBackAsWrittenThroughAFreshReader) {
    QTemporaryDir dir;
    const QString path = dir.filePath("Velino.conf");
    const QByteArray binary("{\"a\":\"x\\\\y\\n\"}\n\r\\end=@ByteArray(\0)", 34);
    const QString text = QString::fromUtf16(u"ligne 1\nligne 2\r\\ \u00e9 \U0001F600 =");
    {
        QtSettingsStore store(path);
        store.writeBytes("velino-native-v1", binary);
        store.writeText("velino-sync-code-v1", text);
        store.writeText("tagged", "@ByteArray(not bytes)");
        store.writeText("odd=key\nname", "value");
        store.writeBytes("empty", QByteArray());
        ASSERT_TRUE(store.sync());
    }
    // One entry per line whatever the values hold.
    EXPECT_EQ(fileBytes(path).count('\n'), 5);

    QtSettingsStore reader(path);
    EXPECT_EQ(reader.readBytes("velino-native-v1"), binary);
    EXPECT_EQ(reader.readText("velino-sync-code-v1"), text);
    EXPECT_EQ(reader.readText("tagged"), "@ByteArray(not bytes)");
    EXPECT_FALSE(reader.readBytes("tagged").has_value());
    EXPECT_EQ(reader.readText("odd=key\nname"), "value");
    EXPECT_EQ(reader.readBytes("empty"), QByteArray());
    EXPECT_FALSE(reader.readText("velino-native-v1").has_value()); // binary, not text
    EXPECT_FALSE(reader.readBytes("missing").has_value());
}

TEST(SettingsFormat, DamagedLinesAreSkippedAndTheRestIsRead) {
    QTemporaryDir dir;
    const QString path = dir.filePath("Velino.conf");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[General]\nno separator here\n=no key\nvelino-sync-code-v1=CODE\\\n"
               "velino-native-v1=@ByteArray({}\n\xff\xfe=\x80\n");
    file.close();
    QtSettingsStore reader(path);
    EXPECT_EQ(reader.readText("velino-sync-code-v1"), "CODE");
    // Without its closing parenthesis the value is text, not the saved state.
    EXPECT_FALSE(reader.readBytes("velino-native-v1").has_value());
}

TEST(SettingsFormat, TheSaveGoesThroughATemporaryFileAndLeavesNoneBehind) {
    QTemporaryDir dir;
    const QString path = dir.filePath("Korvel/Velino.conf");
    QtSettingsStore store(path);
    store.writeBytes("velino-native-v1", QByteArray(1 << 20, 'x'));
    ASSERT_TRUE(store.sync());
    const QStringList files = QDir(dir.filePath("Korvel")).entryList(QDir::Files);
    EXPECT_TRUE(files.contains("Velino.conf"));
    for (const QString &file : files)
        EXPECT_TRUE(file == "Velino.conf" || file == "Velino.conf.lock") << file.toStdString();
    EXPECT_EQ(store.fileName(), path);
}
