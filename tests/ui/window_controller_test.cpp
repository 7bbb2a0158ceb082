#include "window_controller.h"

#include "qt_services.h"
#include "service_host.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using velino::ComposerStore;
using velino::PresetKind;
using velino::ui::WindowController;

namespace {

class RecordingUrlOpener final : public velino::UrlOpener {
public:
    bool openUrl(const QUrl &url) override {
        opened.append(url);
        return true;
    }
    QList<QUrl> opened;
};

// A controller whose store keeps its settings in a temporary folder and opens no URL.
class WindowControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        qunsetenv("VELINO_SERVICE_HOST");
    }
    void TearDown() override { qunsetenv("VELINO_SERVICE_HOST"); }

    std::unique_ptr<WindowController> makeController() {
        velino::StoreServices services = velino::StoreServices::qtDefaults();
        services.settings =
            std::make_shared<velino::QtSettingsStore>(dir.filePath(QStringLiteral("Velino.conf")));
        services.urls = urls;
        return std::make_unique<WindowController>(std::move(services));
    }

    QTemporaryDir dir;
    std::shared_ptr<RecordingUrlOpener> urls = std::make_shared<RecordingUrlOpener>();
};

// Answers the window's dialogs from inside their wait, as the user would.
class DialogAnswerer : public QObject {
public:
    explicit DialogAnswerer(WindowController &controller) : m_controller(controller) {
        m_timer.setInterval(5);
        connect(&m_timer, &QTimer::timeout, this, [this] { answer(); });
        m_timer.start();
    }

    std::function<void(velino::ui::SavePanel &)> onSavePanel;
    QStringList alerts;

private:
    void answer() {
        velino::ui::WindowDialogs *dialogs = m_controller.dialogs();
        if (dialogs->alertVisible()) {
            alerts.append(dialogs->alertText());
            dialogs->dismissAlert();
        } else if (dialogs->savePanel()->isOpen()) {
            if (onSavePanel)
                onSavePanel(*dialogs->savePanel());
            dialogs->savePanel()->cancel();
        }
    }

    WindowController &m_controller;
    QTimer m_timer;
};

} // namespace

TEST_F(WindowControllerTest, PresetTilesInTileOrder) {
    const auto controller = makeController();
    const QVariantList tiles = controller->presetTiles();
    ASSERT_EQ(tiles.size(), 4);
    QStringList ids;
    QStringList titles;
    for (const QVariant &tile : tiles) {
        ids.append(tile.toMap().value(QStringLiteral("id")).toString());
        titles.append(tile.toMap().value(QStringLiteral("title")).toString());
        EXPECT_FALSE(tile.toMap().value(QStringLiteral("summary")).toString().isEmpty());
    }
    EXPECT_EQ(ids, (QStringList{QStringLiteral("devis"), QStringLiteral("pret"),
                                QStringLiteral("rdv"), QStringLiteral("relance")}));
    EXPECT_EQ(titles, (QStringList{QStringLiteral("Devis"), QStringLiteral("Appareil pret"),
                                   QStringLiteral("Rendez-vous"), QStringLiteral("Relance")}));
}

TEST_F(WindowControllerTest, TileHighlightedOnlyWithoutLoadedSavedPreset) {
    const auto controller = makeController();
    ComposerStore *store = controller->store();
    QSignalSpy tileChanged(controller.get(), &WindowController::activePresetTileChanged);
    EXPECT_EQ(controller->activePresetTile(), QStringLiteral("devis"));

    store->applyPreset(PresetKind::Pret);
    EXPECT_EQ(controller->activePresetTile(), QStringLiteral("pret"));
    EXPECT_GT(tileChanged.count(), 0);

    store->setCustomPresetDraftName(QStringLiteral("Retrait"));
    store->saveAsNewCustomPreset();
    ASSERT_TRUE(store->activeCustomPresetID().has_value());
    EXPECT_EQ(store->activePresetId(), QStringLiteral("pret"));
    EXPECT_EQ(controller->activePresetTile(), QString());

    store->applyPreset(PresetKind::Rdv);
    EXPECT_EQ(controller->activePresetTile(), QStringLiteral("rdv"));

    store->loadCustomPreset(store->customPresets().first());
    EXPECT_EQ(controller->activePresetTile(), QString());
}

TEST_F(WindowControllerTest, LoadedPresetLine) {
    const auto controller = makeController();
    ComposerStore *store = controller->store();
    QSignalSpy changed(controller.get(), &WindowController::loadedPresetTextChanged);
    EXPECT_EQ(controller->loadedPresetText(),
              QStringLiteral("Aucun preset perso charge pour l'instant."));
    store->setCustomPresetDraftName(QStringLiteral("Atelier du samedi"));
    store->saveAsNewCustomPreset();
    EXPECT_EQ(controller->loadedPresetText(), QStringLiteral("Preset charge : Atelier du samedi"));
    EXPECT_GT(changed.count(), 0);
    store->deleteCustomPreset(store->customPresets().first());
    EXPECT_EQ(controller->loadedPresetText(),
              QStringLiteral("Aucun preset perso charge pour l'instant."));
}

TEST_F(WindowControllerTest, ResetAsksForConfirmation) {
    const auto controller = makeController();
    ComposerStore *store = controller->store();
    QSignalSpy shown(controller.get(), &WindowController::showResetAlertChanged);
    store->setDataField(QStringLiteral("subject"), QStringLiteral("Objet perso"));

    controller->requestReset();
    EXPECT_TRUE(controller->showResetAlert());
    EXPECT_EQ(store->data().subject, QStringLiteral("Objet perso"));
    controller->cancelReset();
    EXPECT_FALSE(controller->showResetAlert());
    EXPECT_EQ(store->data().subject, QStringLiteral("Objet perso"));
    EXPECT_EQ(shown.count(), 2);

    controller->requestReset();
    controller->confirmReset();
    EXPECT_FALSE(controller->showResetAlert());
    EXPECT_EQ(store->data(), velino::MailComposerData::defaultRecord());
    EXPECT_EQ(store->lastAction(), QStringLiteral("Nouveau message."));
}

TEST_F(WindowControllerTest, WebInterfaceOnTheServiceHost) {
    qputenv("VELINO_SERVICE_HOST", "atelier.test:8443");
    const auto controller = makeController();
    EXPECT_EQ(controller->serviceHost(), QStringLiteral("atelier.test:8443"));
    EXPECT_EQ(
        controller->syncSubtitle(),
        QStringLiteral("Relie cette app a l'interface privee atelier.test:8443/velino.html."));
    EXPECT_EQ(controller->webInterfaceUrl(),
              QUrl(QStringLiteral("https://atelier.test:8443/velino.html")));
    EXPECT_TRUE(controller->openWebInterface());
    EXPECT_EQ(urls->opened,
              QList<QUrl>{QUrl(QStringLiteral("https://atelier.test:8443/velino.html"))});
}

TEST_F(WindowControllerTest, CompiledInHostByDefault) {
    const auto controller = makeController();
    EXPECT_EQ(controller->serviceHost(), velino::serviceHost());
    EXPECT_EQ(controller->syncSubtitle(), QStringLiteral("Relie cette app a l'interface privee ") +
                                              velino::defaultServiceHost() +
                                              QStringLiteral("/velino.html."));
}

TEST_F(WindowControllerTest, DetailsCountInDecimal) {
    const auto controller = makeController();
    ComposerStore *store = controller->store();
    EXPECT_EQ(controller->detailsCountText(), QStringLiteral("4"));
    QSignalSpy changed(controller.get(), &WindowController::detailsCountTextChanged);
    for (int i = 1; i <= 4; ++i) {
        store->setDataField(QStringLiteral("detailLabel%1").arg(i), QString());
        store->setDataField(QStringLiteral("detailValue%1").arg(i), QString());
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return store->currentDetailsCount() == 0; }, 3000));
    EXPECT_EQ(controller->detailsCountText(), QStringLiteral("0"));
    EXPECT_GT(changed.count(), 0);
}

TEST_F(WindowControllerTest, ExportGoesThroughTheWindowSavePanel) {
    const auto controller = makeController();
    ComposerStore *store = controller->store();
    QTemporaryDir target;
    ASSERT_TRUE(target.isValid());
    DialogAnswerer answerer(*controller);
    QString title;
    QString name;
    answerer.onSavePanel = [&](velino::ui::SavePanel &panel) {
        title = panel.title();
        name = panel.fileName();
        panel.openFolder(target.path());
        panel.save();
    };
    store->exportHTML();
    EXPECT_EQ(title, QStringLiteral("Exporter le mail HTML"));
    EXPECT_EQ(name, QStringLiteral("votre-devis-korvel-est-pret.html"));
    QFile written(target.filePath(QStringLiteral("votre-devis-korvel-est-pret.html")));
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(written.readAll()), store->generatedHTML());
    EXPECT_EQ(store->lastAction(),
              QStringLiteral("HTML exporte vers votre-devis-korvel-est-pret.html."));
    EXPECT_TRUE(answerer.alerts.isEmpty());
}

TEST_F(WindowControllerTest, FailedExportShowsTheWindowAlert) {
    const auto controller = makeController();
    ComposerStore *store = controller->store();
    QTemporaryDir target;
    ASSERT_TRUE(target.isValid());
    DialogAnswerer answerer(*controller);
    answerer.onSavePanel = [&](velino::ui::SavePanel &panel) {
        panel.openFolder(target.path());
        // The folder disappears before the file is written.
        ASSERT_TRUE(QDir(target.path()).removeRecursively());
        panel.save();
    };
    const QString before = store->lastAction();
    store->exportHTML();
    EXPECT_EQ(answerer.alerts, QStringList{QStringLiteral("Impossible d'exporter le mail HTML.")});
    EXPECT_EQ(store->lastAction(), before);
    EXPECT_FALSE(controller->dialogs()->isModal());
}

TEST_F(WindowControllerTest, CancelledExportIsSilent) {
    const auto controller = makeController();
    ComposerStore *store = controller->store();
    DialogAnswerer answerer(*controller);
    const QString before = store->lastAction();
    store->exportHTML();
    EXPECT_EQ(store->lastAction(), before);
    EXPECT_TRUE(answerer.alerts.isEmpty());
}
