#pragma once

#include <QSettings>
#include <QVector>

#include <memory>

/// Opens the user's settings, organisation "quillmoss" and application "pdx3". Never writes unless a value is set.
/// Missing keys are read from fallback files. Returns null if the settings file exists but is not a regular file,
/// cannot be read or is larger than 64 MiB: it must not be overwritten.
///
/// On systems whose native format is a text file, SettingsFormat reads and writes it.
std::unique_ptr<QSettings> openSettings();

/// Returns the parameter list in `settings`. Empty if it is missing, damaged, or not of the engine's shape (64 rows of
/// six floats), which all users of the list require.
QVector<QVector<float>> storedParamList(const QSettings &settings);

/// Waits until no other program is saving `settings`, and removes a stale lock file. Returns false if this takes more
/// than 3.5 s, or if the file is no longer a regular file: saving would block or replace it.
bool canSave(const QSettings &settings);
