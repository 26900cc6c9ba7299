#include "tests/e2e/RunningProgram.h"

#include "tests/e2e/CurveOnScreen.h"

#include <QPixmap>
#include <QScreen>
#include <QStyleHints>

#include <cstdlib>
#include <utility>

RunningProgram::RunningProgram() : settingsFolder(ownFolder.path()) {}

RunningProgram::RunningProgram(QString settings) : settingsFolder(std::move(settings)) {}

RunningProgram::~RunningProgram()
{
    if (isRunning()) {
        process.kill();
        process.waitForFinished();
    }
}

bool RunningProgram::start(const Environment &environment, const QStringList &arguments)
{
    QProcessEnvironment surroundings = QProcessEnvironment::systemEnvironment();
    // What a desktop or another test would have it look like.
    for (const char *name : {"QT_SCALE_FACTOR", "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "XDG_CURRENT_DESKTOP",
                             "LC_ALL", "LC_NUMERIC", "LANG", "LANGUAGE"})
        surroundings.remove(name);
    surroundings.insert("XDG_CONFIG_HOME", settingsFolder);
    surroundings.insert("HOME", settingsFolder);
    for (auto variable = environment.cbegin(); variable != environment.cend(); ++variable)
        surroundings.insert(variable.key(), variable.value());
    process.setProcessEnvironment(surroundings);
    process.start(PENDRIX_INSTALLED_PROGRAM, arguments);
    return process.waitForStarted() &&
           QTest::qWaitFor([this] { return window() != 0 && Desktop::activeWindow() == window(); },
                           Desktop::patience) &&
           QTest::qWaitFor([this] { return !curveIn(picture()).isEmpty(); }, Desktop::patience);
}

bool RunningProgram::isRunning() const
{
    return process.state() != QProcess::NotRunning;
}

WId RunningProgram::window() const
{
    const QVector<WId> windows = Desktop::windowsOf(process.processId());
    for (const WId window : windows) {
        if (Desktop::titleOf(window) == "Pendrix 3D")
            return window;
    }
    return 0;
}

WId RunningProgram::box() const
{
    WId box = 0;
    const auto isOpen = [this, &box] {
        const QVector<WId> windows = Desktop::windowsOf(process.processId());
        box = windows.size() == 2 ? windows.last() : 0;
        return box != 0 && Desktop::activeWindow() == box;
    };
    return QTest::qWaitFor(isOpen, Desktop::patience) ? box : 0;
}

bool RunningProgram::isAlone() const
{
    return QTest::qWaitFor(
        [this] { return Desktop::windowsOf(process.processId()).size() == 1 && Desktop::activeWindow() == window(); },
        Desktop::patience);
}

QRect RunningProgram::geometry() const
{
    return Desktop::geometryOf(window());
}

QImage RunningProgram::picture() const
{
    QScreen *screen = QGuiApplication::primaryScreen();
    const QRect place = geometry() & screen->geometry();
    return screen->grabWindow(0, place.x(), place.y(), place.width(), place.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

bool RunningProgram::showsFrames(int count) const
{
    const auto view = [this] {
        const QImage now = picture();
        return now.copy(viewIn(now));
    };
    for (int i = 0; i < count; ++i) {
        const QImage before = view();
        if (!QTest::qWaitFor([&view, &before] { return view() != before; }, Desktop::patience))
            return false;
    }
    return true;
}

void RunningProgram::startPress(QPoint point)
{
    constexpr int nearby = 20; // pixels, more than the toolkit's on any screen
    const int enough = 2 * QGuiApplication::styleHints()->mouseDoubleClickInterval();
    if (sincePress.isValid() && (point - lastPress).manhattanLength() < nearby && sincePress.elapsed() < enough)
        QTest::qWait(enough - static_cast<int>(sincePress.elapsed()));
    lastPress = point;
}

void RunningProgram::click(QPoint point, const QStringList &modifiers)
{
    startPress(point);
    QStringList words = {"mousemove", "--window", QString::number(window()), QString::number(point.x()),
                         QString::number(point.y())};
    for (const QString &modifier : modifiers)
        words << "keydown" << modifier;
    words << "click"
          << "1";
    for (const QString &modifier : modifiers)
        words << "keyup" << modifier;
    Desktop::touch(words);
    sincePress.start();
}

void RunningProgram::doubleClick(QPoint point)
{
    startPress(point);
    Desktop::touch({"mousemove", "--window", QString::number(window()), QString::number(point.x()),
                    QString::number(point.y()), "click", "--repeat", "2", "--delay", "50", "1"});
    sincePress.start();
}

void RunningProgram::drag(QPoint from, QPoint to, const QVector<int> &buttons)
{
    startPress(from);
    const QString id = QString::number(window());
    QStringList words = {"mousemove", "--window", id, QString::number(from.x()), QString::number(from.y())};
    for (const int button : buttons)
        words << "mousedown" << QString::number(button);
    const QPoint middle = (from + to) / 2;
    for (const QPoint point : {middle, to})
        words << "mousemove"
              << "--window" << id << QString::number(point.x()) << QString::number(point.y());
    for (const int button : buttons)
        words << "mouseup" << QString::number(button);
    Desktop::touch(words);
    sincePress.start();
}

void RunningProgram::press(const QStringList &keys)
{
    Desktop::touch(QStringList({"key", "--delay", "10"}) + keys);
}

void RunningProgram::type(const QString &text)
{
    Desktop::touch({"type", "--delay", "10", "--", text});
}

QByteArray RunningProgram::copy()
{
    Desktop::putOnClipboard("nothing has been copied");
    press({"ctrl+c"});
    return QTest::qWaitFor(Desktop::isNewOnClipboard, Desktop::patience) ? Desktop::clipboard() : QByteArray();
}

void RunningProgram::paste(const QByteArray &text)
{
    Desktop::putOnClipboard(text);
    press({"ctrl+v"});
    // Until then no one may put anything else there.
    if (!QTest::qWaitFor(Desktop::isTakenFromClipboard, Desktop::patience))
        QTest::qFail("The program does not take what is on the clipboard.", __FILE__, __LINE__);
}

bool RunningProgram::findCells(double scale)
{
    click((QPointF(150, 250) * scale).toPoint());
    const auto selectedAfter = [this](const QString &key) {
        const QRect before = selectionIn(picture());
        press({key});
        QRect selection;
        const auto hasMoved = [this, &before, &selection] {
            const QRect previous = selection;
            selection = selectionIn(picture());
            return selection != before && !selection.isEmpty() && selection == previous;
        };
        return QTest::qWaitFor(hasMoved, Desktop::patience) ? selection : QRect();
    };
    if (!QTest::qWaitFor([this] { return !selectionIn(picture()).isEmpty(); }, Desktop::patience))
        return false;
    selectedAfter("Home");
    first = selectedAfter("Prior");
    const QRect right = selectedAfter("Tab");
    const QRect diagonal = selectedAfter("Down");
    selectedAfter("Up");
    step = diagonal.topLeft() - first.topLeft();
    return right.top() == first.top() && diagonal.left() == right.left() && selectedAfter("shift+Tab") == first &&
           first.height() == diagonal.height() && step.y() > 0 && step.x() != 0;
}

QPoint RunningProgram::cell(int row, int column) const
{
    return first.center() + QPoint(step.x() * column, step.y() * row);
}

QPoint RunningProgram::rowLabel(int row) const
{
    return {step.x() > 0 ? first.left() - 8 : first.right() + 8, cell(row, 0).y()};
}

QPoint RunningProgram::columnTitle(int column) const
{
    return {cell(0, column).x(), first.top() - 10};
}

bool RunningProgram::closeEditor(const QString &key) const
{
    return ::closeEditor(key, first.size(), [this] { return picture(); });
}

int RunningProgram::close()
{
    Desktop::close(window());
    return process.waitForFinished(Desktop::patience) ? exitCode() : -1;
}

int RunningProgram::exitCode()
{
    if (process.exitStatus() != QProcess::NormalExit)
        return -1;
    QByteArray messages;
    const QList<QByteArray> lines = (process.readAllStandardError() + process.readAllStandardOutput()).split('\n');
    for (const QByteArray &line : lines) {
        // The toolkit's own: word of where a box stands comes from the window manager when the box is closed already.
        if (!line.startsWith("qt.qpa.xcb: QXcbConnection: XCB error: 3 (BadWindow)") ||
            !line.contains("(TranslateCoords)"))
            messages += line;
    }
    if (!messages.isEmpty())
        qWarning() << messages;
    return messages.isEmpty() ? process.exitCode() : -1;
}

bool closeEditor(const QString &key, QSize cell, const std::function<QImage()> &picture)
{
    const QSize most = cell - QSize(2, 2);
    const auto isClosed = [&] { return selectionIn(picture()).size().boundedTo(most) == most; };
    if (!QTest::qWaitFor([&] { return !isClosed(); }, Desktop::patience))
        return false;
    RunningProgram::press({key});
    return QTest::qWaitFor(isClosed, Desktop::patience);
}

bool enter(const QString &text, const std::function<QImage()> &picture)
{
    const QSize cell = selectionIn(picture()).size();
    RunningProgram::type(text);
    return closeEditor("Return", cell, picture);
}

QRect selectionIn(const QImage &picture)
{
    const QRect view = viewIn(picture);
    const auto isSelection = [](QRgb pixel) { // a gradient
        return std::abs(qRed(pixel) - 48) < 16 && std::abs(qGreen(pixel) - 140) < 16 &&
               std::abs(qBlue(pixel) - 198) < 16;
    };
    QRect box;
    for (int y = 0; y < picture.height(); ++y) {
        const QRgb *line = lineOf(picture, y);
        for (int x = 0; x < picture.width(); ++x) {
            if (isSelection(line[x]) && !view.contains(x, y))
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}
