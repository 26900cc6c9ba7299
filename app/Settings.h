#pragma once

#include <QSettings>
#include <QVector>

#include <memory>

/// Opens the user's settings, organisation "quillmoss" and application "pdx3". Never writes unless a value is set.
/// Fallback files are read for missing keys. Returns null if the settings file exists but is not a regular file or
/// cannot be read: it must not be overwritten.
///
/// Where the native format is a text file, the file is read and written by SettingsFormat.
std::unique_ptr<QSettings> openSettings();

/// Returns the parameter list in `settings`. Empty if it is missing, damaged, or not of the engine's shape, 64 rows of
/// six floats, on which all users of the list rely.
QVector<QVector<float>> storedParamList(const QSettings &settings);

/// Waits until no other program saves `settings`, and removes a stale lock file. Returns false after 3.5 s: saving
/// would block for longer.
bool canSave(const QSettings &settings);
