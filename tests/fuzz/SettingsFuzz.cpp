// Reads any bytes as the settings file, with the program's own window.

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

/// Makes `content` the settings, in a folder of their own below `place`: the toolkit remembers what it read from a
/// file. The path of the file.
QString useSettings(const QDir &place, const QString &name, const QByteArray &content)
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, place.filePath(name));
    const QDir folder(place.filePath(name + QStringLiteral("/quillmoss")));
    expect(folder.mkpath(QStringLiteral(".")), "There is a folder for the settings");
    QFile file(folder.filePath(QStringLiteral("pdx3.conf")));
    expect(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "The settings are there");
    return file.fileName();
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    expect(file.open(QIODevice::ReadOnly), "There is a file to read");
    return file.readAll();
}

/// Lays the window out as on a screen.
void show(MainWindow &window)
{
    // There is no OpenGL: neither for the curve nor for putting a window together that had one.
    delete window.ui->pdx3;
    window.setAttribute(Qt::WA_DontShowOnScreen);
    window.show();
    QCoreApplication::processEvents();
    const QSize form(701, 605); // higher than the screen that the platform makes up
    const QSize most = QGuiApplication::primaryScreen()->availableVirtualSize().expandedTo(form);
    expect(window.size() == window.size().boundedTo(most), "The window fits the screen");
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
        show(window);
        const QString damaged = path + QStringLiteral(".damaged");
        if (QFile::exists(damaged))
            expect(contentOf(damaged) == content, "What was mended is kept as it was");

        // As at the end of this run and the start of the next; another window would take twice the time.
        pdx3.paramList[1][2] = 42.5F; // what the user changes
        const Rows rows = pdx3.paramList;
        window.saveSettings();
        useSettings(place, QStringLiteral("next"), contentOf(path));
        pdx3.resetParamList();
        window.loadSettings();
        expect(haveSameBits(pdx3.paramList, rows), "The rows come back after a restart");
        for (const char *key : {"windowState", "geometry", "colsWidth", "paramList"})
            expect(window.settings->contains(key), "Nothing that the program saved is taken for damage");
    }
    expect(place.removeRecursively(), "Everything can be removed");
    return 0;
}
