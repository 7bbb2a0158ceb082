#include "custom_preset_list_model.h"
#include "store_fixture.h"

#include <functional>

using namespace velino;
using velino::test::StoreTest;
using Role = velino::CustomPresetListModel::Role;

namespace {

// Every signal the model sends, written short: "inserted 0", "removed 2", "moved 3>0",
// "changed 1 isActive" or "changed 1 content" (always one row each in these cases).
void logSignals(CustomPresetListModel &model, QStringList &log) {
    const auto add = [&log](const QString &entry) { log.append(entry); };
    QObject::connect(&model, &QAbstractItemModel::rowsInserted,
                     [add](auto, int row) { add(QStringLiteral("inserted %1").arg(row)); });
    QObject::connect(&model, &QAbstractItemModel::rowsRemoved,
                     [add](auto, int row) { add(QStringLiteral("removed %1").arg(row)); });
    QObject::connect(&model, &QAbstractItemModel::rowsMoved,
                     [add](auto, int from, int, auto, int to) {
                         add(QStringLiteral("moved %1>%2").arg(from).arg(to));
                     });
    QObject::connect(&model, &QAbstractItemModel::dataChanged,
                     [add](const QModelIndex &at, auto, const QList<int> &roles) {
                         add(QStringLiteral("changed %1 ").arg(at.row()) +
                             (roles == QList<int>{Role::IsActiveRole} ? "isActive" : "content"));
                     });
    QObject::connect(&model, &QAbstractItemModel::modelReset, [add] { add("reset"); });
}

// The rows as shown, the highlighted one marked with "*".
QStringList shownRows(const CustomPresetListModel &model) {
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row)
        rows << model.index(row).data(Role::NameRole).toString() +
                    (model.index(row).data(Role::IsActiveRole).toBool() ? "*" : "");
    return rows;
}

} // namespace

// Ids and dates of the rows are read by the window (tst_MainWindow finds rows by id).
TEST_F(StoreTest, PresetListAnnouncesOnlyTheRowsEachOperationTouches) {
    using S = ComposerStore;
    using Operation = std::function<void(S &)>;
    const auto onRow = [](void (S::*action)(CustomMailPreset), int row) -> Operation {
        return [=](S &store) { (store.*action)(store.customPresets().at(row)); };
    };
    const auto update = [](S &s) {
        s.setCustomPresetDraftName("Renomme");
        s.updateActiveCustomPreset();
    };
    // Five presets, "P4" (newest, loaded) first.
    const std::tuple<Operation, const char *, const char *> cases[] = {
        {onRow(&S::loadCustomPreset, 2), "changed 0 isActive, changed 2 isActive",
         "P4 P3 P2* P1 P0"},
        {onRow(&S::loadCustomPreset, 0), "", "P4* P3 P2 P1 P0"},
        {[](S &s) { saveAs(s, "N"); }, "changed 0 isActive, inserted 0", "N* P4 P3 P2 P1 P0"},
        {onRow(&S::overwriteCustomPreset, 3),
         "changed 0 isActive, changed 3 isActive, moved 3>0, changed 0 content", "P1* P4 P3 P2 P0"},
        {update, "changed 0 content", "Renomme* P3 P2 P1 P0"},
        {onRow(&S::deleteCustomPreset, 3), "removed 3", "P4* P3 P2 P0"},
        {onRow(&S::deleteCustomPreset, 0), "removed 0", "P3 P2 P1 P0"},
        {[](S &s) { s.applyPreset(PresetKind::Rdv); }, "changed 0 isActive", "P4 P3 P2 P1 P0"},
    };
    for (const auto &[operation, signalsSent, rowsAfter] : cases) {
        SCOPED_TRACE(rowsAfter);
        QFile::remove(documentPath());
        const auto store = makeStore();
        for (int i = 0; i < 5; ++i) {
            clock->advance(60);
            saveAs(*store, QStringLiteral("P%1").arg(i));
        }
        QStringList log;
        CustomPresetListModel model(store.get());
        logSignals(model, log);
        clock->advance(60);
        operation(*store);
        EXPECT_EQ(log.join(", "), signalsSent);
        EXPECT_EQ(shownRows(model).join(' '), rowsAfter);
        EXPECT_FALSE(model.index(model.rowCount()).data(Role::NameRole).isValid());
    }
}
