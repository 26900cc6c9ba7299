#pragma once

#include <QSettings>

// A reader and a writer for QSettings::registerFormat. Their format is that of QSettings' native text files, limited to
// the keys of SettingsKey in [General], with one type and one line each. QSettings' own parser can crash or hang on
// damaged values of other types.

namespace SettingsKey {
constexpr auto colsWidth = "colsWidth";
constexpr auto geometry = "geometry";
constexpr auto paramList = "paramList";
constexpr auto windowState = "windowState";
} // namespace SettingsKey

/// Reads the values of the four keys from `file`. Ignores malformed values and foreign entries. Returns false on read
/// errors and if the file is larger than 64 MiB.
bool readSettings(QIODevice &file, QSettings::SettingsMap &values);

/// Writes to `file`, a QSaveFile, the content of the file that it will replace, with the entries of the four keys set
/// to `values`, which has no other keys. Keeps all other bytes. Returns false on read and write errors, and if the file
/// is or becomes larger than 64 MiB.
bool writeSettings(QIODevice &file, const QSettings::SettingsMap &values);
