#pragma once

#include <QByteArray>
#include <QString>

/// Whether the toolkit can parse `file`, the content of a settings file, without harm to the program.
///
/// The toolkit restores every value of the file when it opens it, whoever wrote it and under whatever key. A damaged
/// value of a container or graphics type may claim billions of elements or a nesting without end, and restoring it ends
/// the program. Plain values are harmless, and so are the containers of registerSettingsTypes.
bool isHarmlessSettingsFile(const QByteArray &file);

/// Makes the settings file at `path` harmless: takes out the lines that are not, and keeps the file as it was beside
/// it, with ".damaged" added to its name. True if the file is harmless now or does not exist; false if it is not and
/// cannot be written.
bool mendSettingsFile(const QString &path);
