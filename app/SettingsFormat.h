#pragma once

#include <QSettings>

/// The text format of the settings file, as QSettings::registerFormat accepts it: the format of Qt's native text files,
/// limited to the four keys of SettingsKey in [General], each with its own type. Damaged values of other types can
/// crash or hang Qt's own parser.
namespace SettingsFormat {

/// Reads the values of the four keys. Ignores malformed values and all other entries. Returns false on I/O errors.
/// `device` is a file.
bool read(QIODevice &device, QSettings::SettingsMap &values);

/// Writes the file that `device`, a QSaveFile, replaces with `values` in the place of the four keys' entries. Keeps all
/// other bytes. Returns false on errors.
bool write(QIODevice &device, const QSettings::SettingsMap &values);

} // namespace SettingsFormat

namespace SettingsKey {
constexpr QLatin1String colsWidth("colsWidth");
constexpr QLatin1String geometry("geometry");
constexpr QLatin1String paramList("paramList");
constexpr QLatin1String windowState("windowState");
} // namespace SettingsKey
