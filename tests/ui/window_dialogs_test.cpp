#include "window_dialogs.h"

#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

#include <memory>

using velino::ui::WindowDialogs;

TEST(WindowDialogs, WarningBlocksUntilDismissed) {
    WindowDialogs dialogs;
    QSignalSpy changed(&dialogs, &WindowDialogs::alertChanged);
    dialogs.dismissAlert(); // no alert: nothing happens
    EXPECT_EQ(changed.count(), 0);
    QSignalSpy modal(&dialogs, &WindowDialogs::isModalChanged);
    bool visibleDuring = false;
    QString textDuring;
    bool modalDuring = false;
    QTimer::singleShot(10, &dialogs, [&] {
        visibleDuring = dialogs.alertVisible();
        textDuring = dialogs.alertText();
        modalDuring = dialogs.isModal();
        dialogs.dismissAlert();
    });
    dialogs.showWarning(QStringLiteral("Impossible d'exporter le mail HTML."));
    EXPECT_TRUE(visibleDuring);
    EXPECT_TRUE(modalDuring);
    EXPECT_EQ(textDuring, QStringLiteral("Impossible d'exporter le mail HTML."));
    EXPECT_FALSE(dialogs.alertVisible());
    EXPECT_TRUE(dialogs.alertText().isEmpty());
    EXPECT_FALSE(dialogs.isModal());
    EXPECT_EQ(modal.count(), 2);
    EXPECT_EQ(dialogs.alertTitle(), QStringLiteral("Velino"));
    EXPECT_EQ(dialogs.alertButtonText(), QStringLiteral("OK"));
}

TEST(WindowDialogs, NestedWarningsAreAnsweredNewestFirst) {
    WindowDialogs dialogs;
    QStringList returned;
    QStringList shown;
    // While the first alert waits, a second one arrives (as a sync failure would).
    QTimer::singleShot(10, &dialogs, [&] {
        shown.append(dialogs.alertText());
        QTimer::singleShot(10, &dialogs, [&] {
            shown.append(dialogs.alertText());
            EXPECT_EQ(dialogs.pendingAlertCount(), 2);
            dialogs.dismissAlert();
            // The first one is on screen again.
            shown.append(dialogs.alertText());
            EXPECT_EQ(dialogs.pendingAlertCount(), 1);
        });
        dialogs.showWarning(QStringLiteral("Synchronisation impossible."));
        returned.append(QStringLiteral("second"));
        QTimer::singleShot(10, &dialogs, [&] { dialogs.dismissAlert(); });
    });
    dialogs.showWarning(QStringLiteral("Impossible d'ouvrir l'apercu."));
    returned.append(QStringLiteral("first"));

    EXPECT_EQ(returned, (QStringList{QStringLiteral("second"), QStringLiteral("first")}));
    EXPECT_EQ(shown, (QStringList{QStringLiteral("Impossible d'ouvrir l'apercu."),
                                  QStringLiteral("Synchronisation impossible."),
                                  QStringLiteral("Impossible d'ouvrir l'apercu.")}));
    EXPECT_FALSE(dialogs.alertVisible());
}

TEST(WindowDialogs, StoreInterfacesOutliveTheWindow) {
    auto dialogs = std::make_unique<WindowDialogs>();
    const std::shared_ptr<velino::AlertPresenter> alerts = dialogs->alertPresenter();
    const std::shared_ptr<velino::SaveDialog> save = dialogs->saveDialog();
    dialogs.reset();
    // Nothing to wait for: both return at once.
    alerts->showWarning(QStringLiteral("Impossible d'ouvrir l'apercu."));
    EXPECT_FALSE(save->askSaveLocation(QStringLiteral("Exporter le mail HTML"),
                                       QStringLiteral("velino.html")));
}
