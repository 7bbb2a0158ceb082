#include "window_dialogs.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

using velino::ui::WindowDialogs;
using namespace Qt::StringLiterals;
using Answer = std::optional<QString>;

TEST(WindowDialogs, WarningsReturnAtOnceAndAreShownNewestFirst) {
    WindowDialogs dialogs;
    dialogs.dismissAlert(); // no alert: nothing happens
    dialogs.showWarning(u"Impossible d'ouvrir l'apercu."_s);
    dialogs.showWarning(u"Synchronisation impossible."_s);
    QStringList shown;
    while (dialogs.isModal() && shown.size() < 3) {
        shown.append(dialogs.alertText());
        dialogs.dismissAlert();
    }
    EXPECT_EQ(shown,
              QStringList({u"Synchronisation impossible."_s, u"Impossible d'ouvrir l'apercu."_s}));
}

TEST(WindowDialogs, SaveAnswersAndTheReplacementQuestion) {
    QTemporaryDir dir;
    const QString fresh = dir.filePath(u"nouveau"_s), old = dir.filePath(u"devis.html"_s);
    ASSERT_TRUE(QFile(old).open(QIODevice::WriteOnly));
    // An existing file: the question is asked, then declined (back to the file dialog, then
    // cancelled); confirming it: tst_MainWindow. An empty choice cancels.
    const std::pair<QString, Answer> cases[] = {
        {fresh, fresh + u".html"_s},
        {old, std::nullopt},
        {QString(), std::nullopt},
    };
    for (const auto &[chosen, expected] : cases) {
        SCOPED_TRACE(chosen.toStdString());
        WindowDialogs dialogs;
        std::vector<Answer> answers;
        dialogs.requestSaveLocation(u"Exporter le mail HTML"_s, u"devis.html"_s,
                                    [&](const Answer &path) { answers.push_back(path); });
        // A second request while one is open is refused at once.
        Answer second = u"unchanged"_s;
        dialogs.requestSaveLocation(u"x"_s, u"y"_s, [&](const Answer &path) { second = path; });
        EXPECT_FALSE(second);
        if (chosen.isEmpty())
            dialogs.cancelSave();
        else
            dialogs.chooseSaveFile(QUrl::fromLocalFile(chosen));
        EXPECT_EQ(dialogs.replaceQuestionVisible(), chosen == old);
        if (chosen == old) {
            EXPECT_TRUE(!dialogs.saveRequested() && answers.empty());
            dialogs.declineReplace();
            EXPECT_TRUE(dialogs.saveRequested()) << "back to the file dialog";
            dialogs.cancelSave();
        }
        EXPECT_EQ(answers, std::vector<Answer>{expected});
        EXPECT_FALSE(dialogs.isModal());
    }
}

TEST(WindowDialogs, StoreInterfacesOutliveTheWindow) {
    auto dialogs = std::make_unique<WindowDialogs>();
    const std::shared_ptr<velino::AlertPresenter> alerts = dialogs->alertPresenter();
    const std::shared_ptr<velino::SaveDialog> save = dialogs->saveDialog();
    dialogs.reset();
    alerts->showWarning(u"Impossible d'ouvrir l'apercu."_s);
    Answer answer = u"unchanged"_s;
    save->askSaveLocation(u"Exporter le mail HTML"_s, u"velino.html"_s,
                          [&](const Answer &path) { answer = path; });
    EXPECT_FALSE(answer);
}
