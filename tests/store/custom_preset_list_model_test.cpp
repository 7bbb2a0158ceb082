#include "custom_preset_list_model.h"
#include "identifiers.h"
#include "store_fixture.h"

#include <functional>

using namespace velino;
using velino::test::StoreTest;

namespace {

// Every signal the model sends, in order, written short: "inserted 0", "removed 2",
// "moved 3>0", "changed 1 isActive", "reset"; " to N" when it spans rows up to N.
class ModelLog : public QObject {
public:
    explicit ModelLog(CustomPresetListModel &model) {
        const auto rows = [this](const char *what) {
            return [this, what](const QModelIndex &, int first, int last) {
                add(QLatin1String(what) + QString::number(first), first, last);
            };
        };
        connect(&model, &QAbstractItemModel::rowsInserted, this, rows("inserted "));
        connect(&model, &QAbstractItemModel::rowsRemoved, this, rows("removed "));
        connect(&model, &QAbstractItemModel::rowsMoved, this,
                [this](const QModelIndex &, int first, int last, const QModelIndex &, int to) {
                    add(QStringLiteral("moved %1>%2").arg(first).arg(to), first, last);
                });
        connect(&model, &QAbstractItemModel::dataChanged, this,
                [this](const QModelIndex &from, const QModelIndex &to, const QList<int> &roles) {
                    const bool active = roles == QList<int>{CustomPresetListModel::IsActiveRole};
                    add(QStringLiteral("changed %1 ").arg(from.row()) +
                            (active ? "isActive" : "content"),
                        from.row(), to.row());
                });
        connect(&model, &QAbstractItemModel::modelReset, this, [this] { entries << "reset"; });
    }
    void add(const QString &entry, int first, int last) {
        entries << (first == last ? entry : entry + QStringLiteral(" to %1").arg(last));
    }
    QStringList entries;
};

class CustomPresetListModelTest : public StoreTest {
protected:
    // Five presets "P0" (oldest) to "P4" (newest, first row, loaded).
    std::unique_ptr<ComposerStore> storeWithFivePresets() {
        auto store = makeStore();
        for (int i = 0; i < 5; ++i) {
            clock->advance(60);
            saveAs(*store, QStringLiteral("P%1").arg(i));
        }
        return store;
    }

    static QStringList shownNames(const CustomPresetListModel &model) {
        QStringList names;
        for (int row = 0; row < model.rowCount(); ++row)
            names << model.index(row).data(CustomPresetListModel::NameRole).toString();
        return names;
    }
    static int activeRow(const CustomPresetListModel &model) {
        int found = -1;
        for (int row = 0; row < model.rowCount(); ++row) {
            if (model.index(row).data(CustomPresetListModel::IsActiveRole).toBool()) {
                EXPECT_EQ(found, -1) << "two rows highlighted";
                found = row;
            }
        }
        return found;
    }
};

TEST_F(CustomPresetListModelTest, EachOperationAnnouncesOnlyTheRowsItTouches) {
    using Operation = std::function<void(ComposerStore &)>;
    using S = ComposerStore;
    const auto onRow = [](void (S::*action)(CustomMailPreset), int row) -> Operation {
        return [=](S &store) { (store.*action)(store.customPresets().at(row)); };
    };
    const struct {
        const char *name;
        Operation operation;
        const char *signalsSent;
        int activeRowAfter;
    } cases[] = {
        {"load another preset: the old and the new highlight", onRow(&S::loadCustomPreset, 2),
         "changed 0 isActive, changed 2 isActive", 2},
        {"load the loaded preset again: nothing", onRow(&S::loadCustomPreset, 0), "", 0},
        {"save as new: one row on top", [](S &s) { saveAs(s, QStringLiteral("Nouveau")); },
         "changed 0 isActive, inserted 0", 0},
        {"overwrite an older one: it moves to the top with its new date",
         onRow(&S::overwriteCustomPreset, 3),
         "changed 0 isActive, changed 3 isActive, moved 3>0, changed 0 content", 0},
        {"update the loaded one, renamed: it stays first and shows the new name",
         [](S &s) {
             s.setCustomPresetDraftName(QStringLiteral("Renomme"));
             s.updateActiveCustomPreset();
         },
         "changed 0 content", 0},
        {"delete another preset: that row only", onRow(&S::deleteCustomPreset, 3), "removed 3", 0},
        {"delete the loaded preset: its row goes, no highlight left",
         onRow(&S::deleteCustomPreset, 0), "removed 0", -1},
        {"built-in preset applied: the highlight goes",
         [](S &s) { s.applyPreset(PresetKind::Rdv); }, "changed 0 isActive", -1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const auto store = storeWithFivePresets();
        CustomPresetListModel model(store.get());
        ASSERT_EQ(activeRow(model), 0);
        ModelLog log(model);
        clock->advance(60);
        c.operation(*store);
        EXPECT_EQ(log.entries.join(", "), c.signalsSent);
        EXPECT_EQ(shownNames(model), presetNames(*store));
        EXPECT_EQ(activeRow(model), c.activeRowAfter);
    }
}

// Names, source titles and subject lines are checked through the window (tst_MainWindow).
TEST_F(CustomPresetListModelTest, RowsCarryTheIdAndDateOfTheirPreset) {
    const auto store = storeWithFivePresets();
    CustomPresetListModel model(store.get());
    const CustomMailPreset &first = store->customPresets().first();
    EXPECT_EQ(model.index(0).data(CustomPresetListModel::IdRole).toString(), uuidText(first.id));
    EXPECT_EQ(model.index(0).data(CustomPresetListModel::UpdatedAtRole).toDateTime(),
              first.updatedAt.toDateTime());
    EXPECT_FALSE(model.index(5).data(CustomPresetListModel::NameRole).isValid());
}

} // namespace
