#include "app/Settings.h"

#include "app/SettingsFormat.h"
#include "engine/Pendrix3D.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
#define PENDRIX_SETTINGS_ARE_TEXT
#include <cerrno>

#include <sys/stat.h>
#endif

using Rows = QVector<QVector<float>>;

namespace {

/// Registers the container `T` and its stream operators under `name`.
template <typename T>
void registerContainer(const char *name)
{
    qRegisterMetaType<T>(name);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    qRegisterMetaTypeStreamOperators<T>(name); // Qt 6 finds them itself
#endif
}

} // namespace

#ifdef PENDRIX_SETTINGS_ARE_TEXT
namespace {

/// Returns whether `path` is a regular file or does not exist. Opening a FIFO, for example, would block.
bool canOpen(const QString &path)
{
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) == 0)
        return S_ISREG(status.st_mode);
    return errno == ENOENT || errno == ENOTDIR;
}

/// Returns the folder of QSettings' native files. Uses another organisation name, so that none of the program's
/// files is opened.
QString nativeFolder(QSettings::Scope scope)
{
    const QSettings neighbour(scope, QStringLiteral("quillmoss-neighbour"), QStringLiteral("pdx3"));
    return QDir::cleanPath(neighbour.fileName() + QStringLiteral("/../.."));
}

} // namespace
#endif

std::unique_ptr<QSettings> openSettings()
{
    registerContainer<QVector<int>>("QVector<int>");
    registerContainer<Rows>("QVector<QVector<float>>");
    const QString organization = QStringLiteral("quillmoss");
    const QString application = QStringLiteral("pdx3");
#ifdef PENDRIX_SETTINGS_ARE_TEXT
    static const auto format =
        QSettings::registerFormat(QStringLiteral("conf"), readSettings, writeSettings, Qt::CaseSensitive);
    const QString folder = nativeFolder(QSettings::UserScope);
    QSettings::setPath(format, QSettings::UserScope, folder);
    const QString path = folder + QStringLiteral("/quillmoss/pdx3.conf");
    if (!canOpen(path))
        return nullptr;
    auto settings = std::make_unique<QSettings>(path, format);
    if (settings->status() != QSettings::NoError) // this object reads no fallback files
        return nullptr;

    // Unless its path is set, the system scope consists of the folders in XDG_CONFIG_DIRS.
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    const QString systemFolder = nativeFolder(QSettings::SystemScope);
    if (!folders.contains(systemFolder))
        QSettings::setPath(format, QSettings::SystemScope, systemFolder);
    folders << folder << systemFolder;
    for (const QString &configFolder : std::as_const(folders)) {
        if (!canOpen(configFolder + QStringLiteral("/quillmoss.conf")) ||
            !canOpen(configFolder + QStringLiteral("/quillmoss/pdx3.conf")))
            return settings; // without fallback files
    }
    return std::make_unique<QSettings>(format, QSettings::UserScope, organization, application);
#else
    return std::make_unique<QSettings>(organization, application);
#endif
}

QVector<QVector<float>> storedParamList(const QSettings &settings)
{
    const auto rows = settings.value(SettingsKey::paramList).value<Rows>();
    const bool isParameterList =
        rows.size() == Pendrix3D::rowCount && std::all_of(rows.cbegin(), rows.cend(), [](const QVector<float> &row) {
            return row.size() == Pendrix3D::rowLength;
        });
    return isParameterList ? rows : Rows();
}

bool canSave(const QSettings &settings)
{
#ifdef PENDRIX_SETTINGS_ARE_TEXT
    const QString path = settings.fileName() + QStringLiteral(".lock");
    QLockFile lock(path);        // QSettings itself would wait without limit
    lock.setStaleLockTime(3000); // ms; a save takes a few
    return canOpen(path) && (lock.tryLock(3500) || lock.error() != QLockFile::LockFailedError) &&
           canOpen(settings.fileName());
#else
    Q_UNUSED(settings)
    return true;
#endif
}
