#pragma once

#include <QByteArray>
#include <QString>

/// `file`, the content of a settings file, without the lines that the toolkit could not parse without harm to the
/// program; all of it in most cases. registerSettingsTypes must have been called.
///
/// The toolkit restores the values of a file whoever wrote them and under whatever key, and saves them again. A damaged
/// value of a container or graphics type may claim billions of elements or a nesting without end, and restoring it ends
/// the program; so does saving a date and time of a zone that nobody knows. So a value that is stored in binary form
/// stays only if it is a plain one, of a size that its type fixes, a text, or one of the containers of
/// registerSettingsTypes, and spelled as the toolkit spells it.
QByteArray harmlessPartOf(const QByteArray &file);

/// Takes out of the settings file at `path` what harmlessPartOf does, and keeps the file as it was beside it, with
/// ".damaged" added to its name. True if the file is harmless now, cannot be read or does not exist; false if it is not
/// harmless and cannot be written.
bool mendSettingsFile(const QString &path);

/// Whether `bytes` more can be written beside the file at `path`, which is found out by doing so.
///
/// A disk that fills up while the toolkit saves leaves it with a part of the file, which it takes for the whole.
bool hasRoomBeside(const QString &path, qint64 bytes);
