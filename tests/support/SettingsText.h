#pragma once

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QVector>

using Rows = QVector<QVector<float>>;

/// Returns `value` as QSettings streams it. Lists of rows are equal bit by bit, NaNs included, if these bytes are.
template <typename T>
QByteArray streamed(const T &value)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_4_0);
    stream << value;
    return bytes;
}

/// Returns the bytes of a variant of the named type `name`.
inline QByteArray userValue(const QByteArray &name, const QByteArray &content)
{
    return streamed(quint32{127}) + streamed(name + '\0') + content;
}

/// Returns `bytes` as text of a settings file, all of them escaped.
inline QByteArray escapedText(const QByteArray &bytes)
{
    QByteArray text;
    for (const char byte : bytes)
        text += "\\x" + QByteArray::number(static_cast<uchar>(byte), 16);
    return text;
}

inline QByteArray variantLine(const QByteArray &key, const QByteArray &bytes)
{
    return key + "=@Variant(" + escapedText(bytes) + ")\n";
}

inline QByteArray rowsLine(const Rows &rows)
{
    return variantLine("paramList", userValue("QVector<QVector<float> >", streamed(rows)));
}

/// Returns 64 rows whose values identify `seed`.
inline Rows markedRows(int seed)
{
    Rows rows;
    for (int r = 0; r < 64; ++r)
        rows.append(QVector<float>(6, static_cast<float>(seed) + static_cast<float>(r) / 64.0F));
    return rows;
}

/// A temporary folder that QSettings uses once it is constructed. In memory where possible, so that fsync does not wait
/// for a disk. Use a new folder for each file: Qt caches the content of settings files by path.
class SettingsFolder
{
public:
    SettingsFolder()
    {
        QDir().mkpath(path("quillmoss"));
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    }

    QString path(const QString &name = QStringLiteral("quillmoss/pdx3.conf")) const { return folder.filePath(name); }

    QByteArray read() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool write(const QByteArray &content, const QString &name = QStringLiteral("quillmoss/pdx3.conf")) const
    {
        QFile file(path(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    }

private:
    QTemporaryDir folder{
        (QFileInfo(QStringLiteral("/dev/shm")).isWritable() ? QStringLiteral("/dev/shm") : QDir::tempPath()) +
        QStringLiteral("/pendrix-XXXXXX")};
};
