#include "qt_services.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

using namespace velino;

// xdg-open's exit status says whether a handler took the address; one still running when the
// wait ends is a handler starting, not a failure.
TEST(DesktopUrlOpener, ReadsXdgOpensOutcome) {
    QTemporaryDir dir;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(dir.path()) + ":" + path);
    const std::pair<const char *, bool> cases[] = {
        {"exit 0", true}, {"exit 3", false}, {"sleep 4; touch \"$0.ended\"", true}};
    const QUrl url(QStringLiteral("mailto:a b@example.com?subject=Devis pret"));
    const QString program = dir.filePath("xdg-open");
    QtFileSystem files(dir.path());
    for (const auto &[script, opened] : cases) {
        SCOPED_TRACE(script);
        ASSERT_TRUE(files.writeUtf8Atomically(
            program, QString("#!/bin/sh\nprintf %s \"$1\" > \"$0.argument\"\n%1\n").arg(script)));
        ASSERT_TRUE(QFile::setPermissions(program, QFile::Permissions(0x7000))); // rwx------
        EXPECT_EQ(DesktopUrlOpener().openUrl(url), opened);
        QFile argument(program + ".argument");
        ASSERT_TRUE(argument.open(QIODevice::ReadOnly));
        EXPECT_EQ(argument.readAll(), url.toEncoded());
        EXPECT_FALSE(QFile::exists(program + ".ended")) << "returned before the handler ended";
    }
    qputenv("PATH", path);
    // The handler left starting ends on its own; its process is released once it has.
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(program + ".ended"); }));
    QTest::qWait(200);
}
