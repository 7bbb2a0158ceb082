#pragma once

#include "platform_services.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace velino {

// The files of the saved state.
struct StateFiles {
    QString document; // the JSON document, written whole through a temporary file
    QString settings; // INI file holding the sync code
    QString legacy;   // the single file of earlier versions (may be the same as settings)

    // On Linux ~/.local/share/Korvel/Velino/velino-native-v1.json (AppDataLocation of
    // organisation "Korvel", application "Velino") and ~/.config/Korvel/Velino.conf (the
    // INI file any QSettings("Korvel", "Velino") reads), which is also the earlier file.
    static StateFiles perUser();
    // The same names in the given folders (tests, benchmarks).
    static StateFiles inFolders(const QString &configFolder, const QString &dataFolder);
};

// The saved document in a file of its own, the sync code in an ordinary INI QSettings file.
//
// At construction a file of earlier versions is moved over once: its document is written
// to the document file, then an INI file holding its sync code replaces it. When any step
// fails the earlier file is left as it was and tried again at the next start; until then
// its content is what this storage reads, and every write is refused, so that nothing
// newer exists that the next attempt would overwrite.
//
// The document and its folder are private to the user (0600 and 0700), as is the INI file.
class QtStateStorage final : public StateStorage {
public:
    explicit QtStateStorage(StateFiles files = StateFiles::perUser());

    std::optional<QByteArray> readDocument() const override;
    bool writeDocument(const QByteArray &bytes) override;
    std::optional<QString> readSyncCode() const override;
    bool writeSyncCode(const QString &code) override;

    // True when the earlier file could not be moved over at construction.
    bool isHeldByEarlierFile() const { return heldByEarlierFile_; }
    const StateFiles &files() const { return files_; }

private:
    bool moveEarlierFileOver();
    bool replaceEarlierFile(const std::optional<QString> &syncCode);

    StateFiles files_;
    bool heldByEarlierFile_ = false;
    std::optional<QByteArray> earlierDocument_;
    std::optional<QString> earlierSyncCode_;
};

} // namespace velino
