#pragma once

#include <QSettings>

// The format of Qt's native text files, limited to four keys in [General], each with its own type, for
// QSettings::registerFormat. Damaged values of other types can crash or hang Qt's own parser.

namespace SettingsKey {
constexpr auto colsWidth = "colsWidth";
constexpr auto geometry = "geometry";
constexpr auto paramList = "paramList";
constexpr auto windowState = "windowState";
} // namespace SettingsKey

/// Reads the values of the four keys from `file`. Ignores malformed values and foreign entries. Returns false on
/// errors.
bool readSettings(QIODevice &file, QSettings::SettingsMap &values);

/// Writes to `file`, a QSaveFile, the content of the file that it replaces, with `values` in the place of the entries
/// of the four keys. Keeps all other bytes. Returns false on errors.
bool writeSettings(QIODevice &file, const QSettings::SettingsMap &values);
