// Loads arbitrary bytes as the settings file in the program's window, and saves the settings over them.

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "tests/fuzz/FuzzApplication.h"
#include "ui_MainWindow.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QSettings>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

using Rows = QVector<QVector<float>>;

bool areParameterRows(const Rows &rows)
{
    return rows.size() == Pendrix3D::rowCount && std::all_of(rows.cbegin(), rows.cend(), [](const QVector<float> &row) {
               return row.size() == Pendrix3D::rowLength;
           });
}

/// Makes `content` the settings file, in a new folder below `place`: Qt caches the content of settings files by path.
/// Returns the file's path.
QString useSettings(const QDir &place, const QString &name, const QByteArray &content)
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, place.filePath(name));
    const QDir folder(place.filePath(name + QStringLiteral("/quillmoss")));
    expect(folder.mkpath(QStringLiteral(".")), "The settings folder can be made");
    QFile file(folder.filePath(QStringLiteral("pdx3.conf")));
    expect(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "The settings can be written");
    return file.fileName();
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    expect(file.open(QIODevice::ReadOnly), "The file can be read");
    return file.readAll();
}

/// Shows `window` off-screen, so that it is laid out. Checks its size and the visibility of the curve.
void show(MainWindow &window)
{
    delete window.ui->pdx3; // the platform has no OpenGL
    window.setAttribute(Qt::WA_DontShowOnScreen);
    window.show();
    QCoreApplication::processEvents();
    const QSize form(701, 605); // higher than the platform's screen
    const QSize largest = QGuiApplication::primaryScreen()->availableVirtualSize().expandedTo(form);
    expect(window.size() == window.size().boundedTo(largest), "The window fits the screen");
    expect(!window.ui->dockWidget->isHidden(), "The curve is shown");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    startFuzzApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int run = 0;
    QDir place(fuzzFolder() + QStringLiteral("/%1").arg(++run));
    const QByteArray content(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const QString path = useSettings(place, QStringLiteral("first"), content);
    pdx3.resetParamList();
    {
        MainWindow window;
        expect(areParameterRows(pdx3.paramList), "The parameter list has 64 rows of six");
        expect(contentOf(path) == content, "Loading changes nothing");
        show(window);

        // Imitates a restart with the same window: a second one would take twice the time.
        pdx3.paramList[1][2] = 0.002857F; // 0x3B3B3C82: the saved value contains semicolons and is quoted
        const Rows rows = pdx3.paramList;
        window.saveSettings();
        const QByteArray saved = contentOf(path);
        useSettings(place, QStringLiteral("next"), saved);
        pdx3.resetParamList();
        window.loadSettings();
        expect(haveSameBits(pdx3.paramList, rows), "The rows come back after a restart");
        for (const char *key : {"windowState", "geometry", "colsWidth", "paramList"})
            expect(window.settings->contains(key), "All that was saved is read");
        if (!content.contains("windowState") && !content.contains("geometry") && !content.contains("colsWidth") &&
            !content.contains("paramList")) {
            // Only lines were added.
            const auto *const kept =
                std::mismatch(content.cbegin(), content.cend(), saved.cbegin(), saved.cend()).first;
            expect(saved.endsWith(content.mid(static_cast<int>(kept - content.cbegin()))), "Foreign bytes stay");
        }
    }
    expect(place.removeRecursively(), "The folder can be removed");
    return 0;
}
