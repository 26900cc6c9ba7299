#include "app/WindowStateCheck.h"

#include <QDataStream>
#include <QRegularExpression>

#include <algorithm>

namespace {

/// Returns the bytes of `name` as QMainWindow::saveState writes them, in hexadecimal.
QString hexOf(const QString &name)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << name;
    return QString::fromLatin1(bytes.toHex());
}

} // namespace

bool isUsableWindowState(const QByteArray &state)
{
    // A dock area with one dock, in hexadecimal: area and size; fc, orientation and the count 1; fb, the dock's name,
    // its visibility, position and sizes.
    const auto dock = [](const char *area, const char *name, const char *visible) {
        return QStringLiteral("%1.{16}fc0[12]00000001fb%2%3.{32}").arg(area, hexOf(name), visible);
    };
    static const QRegularExpression pattern(
        QRegularExpression::anchoredPattern("000000ff00000000" // a layout of version 0
                                            "fd00000002" +     // two dock areas, left and right
                                            dock("00000000", "dockParams", "0[01]") +
                                            dock("00000001", "dockWidget", "01") +
                                            ".{16}"                            // size of the centre
                                            "(0000000[1-8]){4}"                // areas of the corners
                                            "fc000000010000000[0-3]00000001" + // one toolbar line with one toolbar
                                            hexOf("mainToolBar") +
                                            "0[0-3].{32}")); // shown and orientation, position, sizes
    return pattern.match(QString::fromLatin1(state.toHex())).hasMatch();
}

bool isUsableGeometry(const QByteArray &geometry, const QVector<QRect> &screens)
{
    QDataStream stream(geometry);
    stream.setVersion(QDataStream::Qt_4_0);
    stream.skipRawData(4); // restoreGeometry checks the magic number
    quint16 majorVersion = 0;
    quint16 minorVersion = 0;
    QRect frame;
    QRect normal;
    qint32 screenNumber = 0;
    quint8 isMaximized = 0;
    quint8 isFullScreen = 0;
    stream >> majorVersion >> minorVersion >> frame >> normal >> screenNumber >> isMaximized >> isFullScreen;
    QRect current = normal;
    if (majorVersion > 2) {
        stream.skipRawData(4); // width of the screen
        stream >> current;
    }
    if (stream.status() != QDataStream::Ok || !frame.isValid() || !normal.isValid() || !current.isValid())
        return false;
    // Assumes a title bar 20 pixels high. Accepts the top of the window's contents as well: for a window without a
    // title bar, and because restoreGeometry moves a title bar above the screen to below its edge.
    const QRect window = isMaximized || isFullScreen ? normal : current;
    return std::any_of(screens.cbegin(), screens.cend(), [&window](const QRect &screen) {
        constexpr qint64 height = 20; // 64 bits, because the coordinates may be any int
        const qint64 left = std::max(window.left(), screen.left());
        const qint64 right = std::min(window.right(), screen.right());
        const qint64 top = std::max(window.top() - height, qint64{screen.top()});
        const qint64 bottom = std::min(window.top() + height, qint64{screen.bottom()});
        return right - left >= 2 * height && bottom - top >= height / 2;
    });
}
