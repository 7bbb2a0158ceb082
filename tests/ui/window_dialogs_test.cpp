#include "window_dialogs.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

using velino::ui::WindowDialogs;

TEST(WindowDialogs, WarningsReturnAtOnceAndAreShownNewestFirst) {
    WindowDialogs dialogs;
    QSignalSpy modal(&dialogs, &WindowDialogs::isModalChanged);
    dialogs.dismissAlert(); // no alert: nothing happens
    dialogs.showWarning(QStringLiteral("Impossible d'ouvrir l'apercu."));
    dialogs.showWarning(QStringLiteral("Synchronisation impossible."));
    EXPECT_TRUE(dialogs.isModal());
    EXPECT_EQ(dialogs.pendingAlertCount(), 2);
    EXPECT_EQ(dialogs.alertText(), QStringLiteral("Synchronisation impossible."));
    dialogs.dismissAlert();
    EXPECT_EQ(dialogs.alertText(), QStringLiteral("Impossible d'ouvrir l'apercu."));
    dialogs.dismissAlert();
    EXPECT_FALSE(dialogs.isModal());
    EXPECT_EQ(modal.count(), 2);
    EXPECT_EQ(dialogs.alertTitle(), QStringLiteral("Velino"));
    EXPECT_EQ(dialogs.alertButtonText(), QStringLiteral("OK"));
}

// The save dialog's answers as the store receives them.
TEST(WindowDialogs, SaveAnswersAndTheReplacementQuestion) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QFile existing(dir.filePath(QStringLiteral("devis.html")));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.close();

    struct Case {
        const char *name;
        QString chosen;
        bool replaceAsked;
        // After the question (when asked): true = confirm, false = decline then cancel.
        bool confirm;
        std::optional<QString> expected;
    };
    const QString fresh = dir.filePath(QStringLiteral("nouveau"));
    const QString old = dir.filePath(QStringLiteral("devis.html"));
    const Case cases[] = {
        {"new name gets .html", fresh, false, false, fresh + QStringLiteral(".html")},
        {"existing file, replaced", old, true, true, old},
        {"existing file, declined", old, true, false, std::nullopt},
        {"cancelled", QString(), false, false, std::nullopt},
    };
    for (const Case &c : cases) {
        WindowDialogs dialogs;
        int answers = 0;
        std::optional<QString> answer;
        dialogs.requestSaveLocation(QStringLiteral("Exporter le mail HTML"),
                                    QStringLiteral("devis.html"),
                                    [&](const std::optional<QString> &path) {
                                        ++answers;
                                        answer = path;
                                    });
        EXPECT_TRUE(dialogs.saveRequested()) << c.name;
        EXPECT_TRUE(dialogs.isModal()) << c.name;
        EXPECT_EQ(dialogs.suggestedFile().fileName(), QStringLiteral("devis.html")) << c.name;
        // A second request while one is open is refused at once.
        std::optional<QString> second = QStringLiteral("unchanged");
        dialogs.requestSaveLocation(QStringLiteral("x"), QStringLiteral("y"),
                                    [&](const std::optional<QString> &path) { second = path; });
        EXPECT_FALSE(second) << c.name;

        if (c.chosen.isEmpty())
            dialogs.cancelSave();
        else
            dialogs.chooseSaveFile(QUrl::fromLocalFile(c.chosen));
        EXPECT_EQ(dialogs.replaceQuestionVisible(), c.replaceAsked) << c.name;
        if (c.replaceAsked) {
            EXPECT_FALSE(dialogs.saveRequested()) << c.name;
            EXPECT_TRUE(dialogs.replaceQuestionText().contains(QStringLiteral("devis.html")));
            EXPECT_EQ(answers, 0) << c.name;
            if (c.confirm) {
                dialogs.confirmReplace();
            } else {
                dialogs.declineReplace();
                EXPECT_TRUE(dialogs.saveRequested()) << "back to the file dialog";
                dialogs.cancelSave();
            }
        }
        EXPECT_EQ(answers, 1) << c.name;
        EXPECT_EQ(answer, c.expected) << c.name;
        EXPECT_FALSE(dialogs.isModal()) << c.name;
    }
}

TEST(WindowDialogs, StoreInterfacesOutliveTheWindow) {
    auto dialogs = std::make_unique<WindowDialogs>();
    const std::shared_ptr<velino::AlertPresenter> alerts = dialogs->alertPresenter();
    const std::shared_ptr<velino::SaveDialog> save = dialogs->saveDialog();
    dialogs.reset();
    alerts->showWarning(QStringLiteral("Impossible d'ouvrir l'apercu."));
    std::optional<QString> answer = QStringLiteral("unchanged");
    save->askSaveLocation(QStringLiteral("Exporter le mail HTML"), QStringLiteral("velino.html"),
                          [&](const std::optional<QString> &path) { answer = path; });
    EXPECT_FALSE(answer);
}
