#pragma once

namespace velino {

// Names of the saved state: the document (its key in earlier versions, and its file name
// with ".json") and the sync code's key in the settings file.
inline constexpr char kSavedStateKey[] = "velino-native-v1";
inline constexpr char kSyncCodeKey[] = "velino-sync-code-v1";

} // namespace velino
