// Soak test: operates the window for many frames and fails if a resource of the process grows: Soak [FRAMES]
//
// Shows the real window on an X display, lets its frame timer run without a pause and repeats what users do: rows by
// mouse and keys, edits, drags, copies, pastes, resets, dialogs and menus, other sizes, the dock closed and opened, the
// window hidden and shown. Checks the effect of each action. The random numbers are the same in each run. FRAMES is 200
// by default and 10,000 in exhaustive runs; a thousand take about ten seconds.
//
// Brings the window to the same state and measures it after half of the frames, but at least every thousand, and at the
// end. Fails if the last measurement exceeds the first, see growth.

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/soak/Resources.h"
#include "tests/support/SampleSize.h"
#include "ui_MainWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPixmapCache>
#include <QProcess>
#include <QTimer>
#include <QWindow>
#include <QtTest>

#include <array>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <random>

#include <unistd.h>

namespace {

constexpr int timeout = 60000; // ms, longest wait for an effect
constexpr QSize usualSize(701, 605);

/// Exits with a failure unless `holds`.
void expect(bool holds, const char *what)
{
    if (!holds) {
        std::cout << "Soak: failed: " << what << std::endl;
        std::exit(1);
    }
}

/// Processes events until `holds` returns true. Exits with a failure after the longest wait.
void waitUntil(const char *what, const std::function<bool()> &holds)
{
    QElapsedTimer clock;
    clock.start();
    while (!holds()) {
        expect(clock.elapsed() < timeout, what);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    }
}

/// Counts the paints of the view. Each paint computes and draws a frame.
class FrameCount : public QObject
{
public:
    using QObject::QObject;

    int frames = 0;

    bool eventFilter(QObject * /*view*/, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++frames;
        return false;
    }
};

/// Uses the window as a user does.
class User
{
public:
    explicit User(MainWindow &mainWindow) : window(mainWindow), ui(*mainWindow.ui), presetRows(pdx3.paramList)
    {
        ui.pdx3->installEventFilter(&count);
        const QList<QTimer *> timers = ui.pdx3->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        expect(timers.size() == 1, "The view has one frame timer");
        timers.first()->setInterval(0);
        activate();
    }

    int frames() const { return count.frames; }

    /// Uses the program until `frames` frames have been painted since the start.
    void useUntil(int frames)
    {
        while (count.frames < frames) {
            for (Action &action : actions) {
                if (count.frames < action.next)
                    continue;
                action.next = count.frames + action.every;
                (this->*action.act)();
            }
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        }
    }

    /// Brings the window to the state in which it is measured.
    void rest()
    {
        copy(); // take over the clipboard
        pdx3.paramList = presetRows;
        ui.tableParams->model->refresh();
        ui.tableParams->scrollToTop();
        ui.tableParams->setCurrentIndex(ui.tableParams->model->index(0, 0));
        resizeTo(usualSize);
        QCursor::setPos(window.mapToGlobal(ui.statusBar->geometry().center()));
        const int before = count.frames;
        waitUntil("frames are painted", [&] { return count.frames >= before + 20; });
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QGuiApplication::sync();
        expect(showsCurve(), "The view shows the curve");
    }

private:
    /// An action, done at the start and then once in `every` frames. The numbers are prime, so that the actions meet in
    /// all orders.
    struct Action
    {
        int every;
        void (User::*act)();
        int next = 0;
    };
    std::array<Action, 13> actions = {{
        {7, &User::clickRow},
        {11, &User::goToRow},
        {13, &User::rotate},
        {29, &User::edit},
        {61, &User::copy},
        {83, &User::paste},
        {97, &User::resize},
        {113, &User::openMenu},
        {149, &User::closeAndOpenDock},
        {211, &User::reset},
        {251, &User::pasteFromOtherProgram},
        {307, &User::hideAndShow},
        {401, &User::readAbout},
    }};

    int chance(int below) { return static_cast<int>(random() % static_cast<unsigned int>(below)); }

    void activate()
    {
        window.activateWindow(); // there is no window manager
        waitUntil("the window is active", [this] { return window.isActiveWindow(); });
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(window.windowHandle(), key, modifiers);
    }

    QPoint placeOf(const QModelIndex &cell) const
    {
        const QRect place = ui.tableParams->visualRect(cell);
        return ui.tableParams->viewport()->mapTo(&window, place.center());
    }

    /// Clicks a random visible cell; tries another one if the cell moves away, as after a change of size.
    QModelIndex clickCell()
    {
        QModelIndex cell;
        waitUntil("a click selects a cell", [&] {
            const QRect area = ui.tableParams->viewport()->rect();
            cell = ui.tableParams->indexAt({chance(area.width()), chance(area.height())});
            if (!cell.isValid())
                return false;
            ui.tableParams->scrollTo(cell); // its middle may be hidden
            QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, placeOf(cell));
            return ui.tableParams->currentIndex() == cell;
        });
        return cell;
    }

    void clickRow()
    {
        clickCell();
        ui.tableParams->setFocus();
    }

    void goToRow()
    {
        constexpr std::array<Qt::Key, 6> keys = {Qt::Key_Down, Qt::Key_Down,     Qt::Key_Up,
                                                 Qt::Key_Down, Qt::Key_PageDown, Qt::Key_PageUp};
        const QModelIndex cell = clickCell();
        press(keys.at(static_cast<std::size_t>(chance(keys.size()))));
        const int row = ui.tableParams->currentIndex().row();
        expect(row != cell.row() || row == 0 || row == Pendrix3D::rowCount - 1, "A key goes to another row");
    }

    void rotate()
    {
        QWindow *const handle = window.windowHandle();
        const QPoint from = ui.pdx3->mapTo(&window, ui.pdx3->rect().center());
        const int across = chance(81) - 40;
        const QPoint to = from + QPoint(across, chance(81) - 40);
        const Qt::MouseButton button = chance(2) == 0 ? Qt::LeftButton : Qt::RightButton;
        QTest::mousePress(handle, button, {}, from);
        QTest::mouseMove(handle, (from + to) / 2);
        QTest::mouseMove(handle, to);
        QTest::mouseRelease(handle, button, {}, to);
    }

    void edit()
    {
        const auto number = static_cast<float>(chance(64)) / 8.0F;
        const QModelIndex cell = clickCell();
        if (chance(2) == 0)
            QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, {}, placeOf(cell));
        const QByteArray text = QByteArray::number(static_cast<double>(number));
        for (const char key : text)
            QTest::keyClick(window.windowHandle(), key);
        press(Qt::Key_Return);
        expect(pdx3.paramList.at(cell.row()).at(cell.column()) == number, "An edit reaches the row");
    }

    /// Copies with Ctrl+C. Moves the pointer first: the X server gives the clipboard to the client with the later
    /// event.
    void copy()
    {
        const QPoint place = window.mapToGlobal(ui.statusBar->geometry().center());
        bool moved = false;
        waitUntil("a copy reaches the clipboard", [&] {
            moved = !moved;
            QCursor::setPos(place + QPoint(moved ? 3 : 0, 0));
            QGuiApplication::sync();
            QCoreApplication::processEvents();
            press(Qt::Key_C, Qt::ControlModifier);
            return QGuiApplication::clipboard()->ownsClipboard();
        });
        expect(QGuiApplication::clipboard()->text().count(QLatin1Char('\n')) == Pendrix3D::rowCount,
               "A copy puts every row on the clipboard");
    }

    void paste()
    {
        copy();
        const QVector<QVector<float>> copied = pdx3.paramList;
        pdx3.paramList.fill(QVector<float>(Pendrix3D::rowLength, 1.0F));
        press(Qt::Key_V, Qt::ControlModifier);
        expect(pdx3.paramList == copied, "A paste restores the rows");
    }

    void pasteFromOtherProgram()
    {
        const auto first = static_cast<float>(chance(1000));
        QByteArray text;
        for (int r = 0; r < Pendrix3D::rowCount; ++r)
            text += QByteArray::number(static_cast<double>(first)) + "\t2\t3\t0.25\t0.5\t" + QByteArray::number(r % 5) +
                    '\n';
        QProcess xclip;
        xclip.start(QStringLiteral("xclip"), {QStringLiteral("-selection"), QStringLiteral("clipboard")});
        expect(xclip.waitForStarted(), "xclip starts");
        xclip.write(text);
        xclip.closeWriteChannel();
        expect(xclip.waitForFinished(), "xclip reads the text"); // its child process offers it
        const QClipboard *const clipboard = QGuiApplication::clipboard();
        waitUntil("the clipboard has another program's text", [&] { return !clipboard->ownsClipboard(); });
        waitUntil("a paste reaches the rows", [&] {
            press(Qt::Key_V, Qt::ControlModifier);
            return pdx3.paramList.at(Pendrix3D::rowCount - 1).at(0) == first;
        });
    }

    void resizeTo(const QSize &size)
    {
        window.resize(size);
        waitUntil("the window has another size",
                  [&] { return window.size() == size && window.windowHandle()->size() == size && isPainted(); });
    }

    /// Returns whether a frame was painted since the last call.
    bool isPainted()
    {
        const bool painted = count.frames > lastFrames;
        lastFrames = count.frames;
        return painted;
    }

    void resize() { resizeTo({650 + chance(400), 400 + chance(400)}); }

    void openMenu()
    {
        QMenu *const menu = chance(2) == 0 ? ui.menuFile : ui.menuEdit;
        const QRect title = ui.menuBar->actionGeometry(menu->menuAction());
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, ui.menuBar->mapTo(&window, title.center()));
        waitUntil("a menu opens", [menu] { return menu->isVisible(); });
        QTest::keyClick(menu->windowHandle(), Qt::Key_Escape);
        waitUntil("a menu closes", [menu] { return !menu->isVisible(); });
        press(Qt::Key_Escape); // out of the menu bar
        activate();
    }

    void closeAndOpenDock()
    {
        ui.dockParams->close();
        waitUntil("the dock closes", [this] { return !ui.tableParams->isVisible() && isPainted(); });
        ui.dockParams->toggleViewAction()->trigger();
        waitUntil("the dock opens", [this] { return ui.tableParams->isVisible() && isPainted(); });
    }

    void hideAndShow()
    {
        window.hide();
        waitUntil("the window is hidden", [this] { return !window.windowHandle()->isExposed(); });
        window.show();
        waitUntil("the window is shown", [this] { return window.windowHandle()->isExposed() && isPainted(); });
        activate();
    }

    /// Triggers `action` and presses `keys` once its dialog is active.
    void answerDialog(QAction *action, const QList<Qt::Key> &keys)
    {
        bool answered = false;
        QElapsedTimer clock;
        clock.start();
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &look, [&] {
            expect(clock.elapsed() < timeout, "A dialog opens");
            auto *const dialog = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            dialog->activateWindow();
            if (!dialog->isActiveWindow())
                return;
            look.stop();
            for (const Qt::Key key : keys)
                QTest::keyClick(dialog->windowHandle(), key);
            answered = true;
        });
        look.start(1);
        action->trigger();
        expect(answered, "A dialog is answered");
        activate();
    }

    void reset()
    {
        pdx3.paramList[0][0] = 99.0F;
        answerDialog(ui.actionreset, {Qt::Key_Escape});
        expect(pdx3.paramList.at(0).at(0) == 99.0F, "Cancel resets nothing");
        answerDialog(ui.actionreset, {Qt::Key_Left, Qt::Key_Return});
        expect(pdx3.paramList == presetRows, "OK restores the presets");
    }

    void readAbout() { answerDialog(ui.actionabout, {Qt::Key_Escape}); }

    bool showsCurve()
    {
        const QImage picture = ui.pdx3->grabFramebuffer();
        int lit = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                lit += (picture.pixel(x, y) & 0xFFFFFFU) != 0 ? 1 : 0;
        }
        return lit > 100;
    }

    MainWindow &window;
    Ui_MainWindow &ui;
    QVector<QVector<float>> presetRows;
    FrameCount count;
    int lastFrames = 0;
    std::minstd_rand random; // the same numbers everywhere and every time
};

} // namespace

int main(int argc, char *argv[])
{
    // glibc counts the blocks in its threads' caches, whose number varies, as allocated. It reads this variable only
    // when a program starts.
    if (!qEnvironmentVariableIsSet("GLIBC_TUNABLES")) {
        qputenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0");
        execv("/proc/self/exe", argv);
        expect(false, "The program restarts with another allocator setting");
    }
    // With threads, the software renderer keeps a varying number of pictures, 9 MB each.
    if (!qEnvironmentVariableIsSet("LP_NUM_THREADS"))
        qputenv("LP_NUM_THREADS", "0");
    QApplication application(argc, argv);
    // Qt caches pictures of the dialogs' buttons, up to 10 MB, and keeps their names even after it removes them.
    QPixmapCache::setCacheLimit(0);
    const QStringList arguments = QCoreApplication::arguments();
    const int frames = arguments.size() == 2 ? arguments.at(1).toInt() : sampleSize(200, 10000);
    if (arguments.size() > 2 || frames < 200) {
        std::cerr << "usage: Soak [FRAMES], at least 200" << std::endl;
        return 2;
    }
    MainWindow window;
    window.show();
    User user(window);
    // Qt keeps an X cursor for each shape that it has used. Which shapes the user's pointer meets depends on timing.
    for (int shape = 0; shape <= Qt::LastCursor; ++shape)
        window.windowHandle()->setCursor(QCursor(static_cast<Qt::CursorShape>(shape)));
    window.windowHandle()->unsetCursor();

    Resources first;
    Resources last;
    const int interval = std::min(frames / 2, 1000);
    for (int at = interval; at <= frames; at += interval) {
        user.useUntil(at);
        user.rest();
        last = measureResources(window.winId());
        if (first.isEmpty())
            first = last;
        std::cout << user.frames() << " frames: " << last["allocated bytes"] / 1024 << " kB allocated, "
                  << last["resident bytes"] / 1024 << " kB resident" << std::endl;
    }
    const QStringList grown = growth(first, last);
    for (const QString &what : grown)
        std::cout << "Soak: grown: " << qPrintable(what) << std::endl;
    return grown.isEmpty() ? 0 : 1;
}
