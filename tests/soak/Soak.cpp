// Uses the program for a long time and looks for what grows: Soak [FRAMES]
//
// Shows the real window on an X display, lets its frame timer run without a pause and does by turns what a user does:
// rows by mouse and by keys, edits, drags, copies, pastes of its own and of another program's text, resets, the boxes
// and menus, other sizes, the dock closed and opened, the window hidden and shown. The random numbers are the same
// every time, and what can be asked about a deed's effect is asked. FRAMES is 2000 unless given; a thousand take about
// ten seconds.
//
// After every thousand frames the window is brought to the same state and measured: one line of a table. Fails if at
// the end there is more than after the first thousand frames, see judge.

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/soak/Resources.h"
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

constexpr int sampleEvery = 1000; // frames
constexpr int patience = 60000;   // ms for an effect to be seen
constexpr QSize usualSize(701, 605);

[[noreturn]] void giveUp(const QString &why)
{
    std::cout << "Soak: " << qPrintable(why) << std::endl;
    std::exit(1);
}

void expect(bool holds, const char *what)
{
    if (!holds)
        giveUp(QStringLiteral("this does not hold: ") + QLatin1String(what));
}

/// Lets the program run until `holds`.
void waitUntil(const char *what, const std::function<bool()> &holds)
{
    QElapsedTimer clock;
    clock.start();
    while (!holds()) {
        if (clock.elapsed() > patience)
            giveUp(QStringLiteral("has waited in vain for ") + QLatin1String(what));
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    }
}

/// Counts the paints of the view, each of which computes and draws a frame.
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

/// The user: does things with the window.
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

    /// Uses the program until `frames` have been painted since the start.
    void useUntil(int frames)
    {
        while (count.frames < frames) {
            for (Deed &deed : deeds) {
                if (count.frames < deed.next)
                    continue;
                deed.next = count.frames + deed.every;
                (this->*deed.act)();
                ++deed.times;
            }
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        }
    }

    /// Brings everything to the state in which it is measured.
    void rest()
    {
        copy(); // the clipboard is ours
        pdx3.paramList = presetRows;
        ui.tableParams->model->refresh();
        ui.tableParams->scrollToTop();
        ui.tableParams->setCurrentIndex(ui.tableParams->model->index(0, 0));
        resizeTo(usualSize);
        QCursor::setPos(window.mapToGlobal(ui.statusBar->geometry().center()));
        const int before = count.frames;
        waitUntil("frames", [&] { return count.frames >= before + 20; });
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QGuiApplication::sync();
        expect(showsCurve(), "The view shows the curve");
    }

    /// What has been done, for the last line of the table.
    QString story() const
    {
        QStringList parts;
        for (const Deed &deed : deeds)
            parts << QStringLiteral("%1 %2").arg(deed.times).arg(QLatin1String(deed.name));
        return parts.join(QStringLiteral(", "));
    }

private:
    /// A way to use the program, done once in so many frames. The numbers are prime, so that all orders come up; below
    /// a thousand, so that nothing is done for the first time after the first measurement.
    struct Deed
    {
        const char *name;
        int every;
        void (User::*act)();
        int next = 0;
        int times = 0;
    };
    std::array<Deed, 15> deeds = {{
        {"rows by mouse", 7, &User::clickRow},
        {"rows by key", 11, &User::goToRow},
        {"turns", 13, &User::turn},
        {"edits", 29, &User::edit},
        {"edits given up", 67, &User::giveUpEdit},
        {"copies", 61, &User::copy},
        {"pastes", 83, &User::paste},
        {"pastes of another program's text", 251, &User::pasteOfOthers},
        {"other sizes", 97, &User::resize},
        {"menus", 113, &User::openMenu},
        {"borders pointed at", 127, &User::pointAtBorders},
        {"docks closed and opened", 149, &User::closeAndOpenDock},
        {"resets", 211, &User::reset},
        {"windows hidden and shown", 307, &User::hideAndShow},
        {"looks at the about box", 401, &User::readAbout},
    }};

    int chance(int below) { return static_cast<int>(random() % static_cast<unsigned int>(below)); }

    void activate()
    {
        window.activateWindow(); // there is no window manager to do it
        waitUntil("the window to be active", [this] { return window.isActiveWindow(); });
    }

    void type(const QByteArray &text)
    {
        for (const char key : text)
            QTest::keyClick(window.windowHandle(), key);
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

    /// Clicks any of the cells that can be seen. One that moves away, as after a change of size, is clicked in vain.
    QModelIndex clickCell()
    {
        QModelIndex cell;
        waitUntil("a click on a cell", [&] {
            const QRect area = ui.tableParams->viewport()->rect();
            cell = ui.tableParams->indexAt({chance(area.width()), chance(area.height())});
            if (!cell.isValid())
                return false;
            ui.tableParams->scrollTo(cell); // so that its middle is to be seen
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

    void turn()
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

    /// Opens an editor on a cell and types a number into it.
    QModelIndex typeNumber(float number)
    {
        const QModelIndex cell = clickCell();
        if (chance(2) == 0)
            QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, {}, placeOf(cell));
        type(QByteArray::number(static_cast<double>(number)));
        return cell;
    }

    void edit()
    {
        const auto number = static_cast<float>(chance(64)) / 8.0F;
        const QModelIndex cell = typeNumber(number);
        press(Qt::Key_Return);
        expect(pdx3.paramList.at(cell.row()).at(cell.column()) == number, "An edit reaches the row");
    }

    void giveUpEdit()
    {
        const QVector<QVector<float>> before = pdx3.paramList;
        typeNumber(123.0F);
        press(Qt::Key_Escape);
        expect(pdx3.paramList == before, "An edit that was given up changes nothing");
    }

    /// The display server gives the clipboard to whoever has seen a later event than its owner: the pointer moves.
    void copy()
    {
        const QPoint place = window.mapToGlobal(ui.statusBar->geometry().center());
        bool moved = false;
        waitUntil("the clipboard", [&] {
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
        expect(pdx3.paramList == copied, "A paste brings the rows back");
    }

    void pasteOfOthers()
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
        expect(xclip.waitForFinished(), "xclip takes the text"); // a child of it stays and serves it
        const QClipboard *const clipboard = QGuiApplication::clipboard();
        waitUntil("another program's text", [&] { return !clipboard->ownsClipboard(); });
        waitUntil("a paste", [&] {
            press(Qt::Key_V, Qt::ControlModifier);
            return pdx3.paramList.at(Pendrix3D::rowCount - 1).at(0) == first;
        });
    }

    void resizeTo(const QSize &size)
    {
        window.resize(size);
        waitUntil("another size",
                  [&] { return window.size() == size && window.windowHandle()->size() == size && isPainted(); });
    }

    /// Whether a frame was painted since this was asked last.
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
        waitUntil("a menu", [menu] { return menu->isVisible(); });
        QTest::keyClick(menu->windowHandle(), Qt::Key_Escape);
        waitUntil("a menu to go", [menu] { return !menu->isVisible(); });
        press(Qt::Key_Escape); // out of the menu bar
        activate();
    }

    /// The pointer takes other shapes there, each of which the toolkit makes once and keeps.
    void pointAtBorders()
    {
        const int between = (ui.dockParams->geometry().right() + ui.dockWidget->geometry().left()) / 2;
        for (const QPoint &place :
             {QPoint(between, ui.dockWidget->geometry().center().y()), window.rect().bottomRight() - QPoint(4, 4)}) {
            QCursor::setPos(window.mapToGlobal(place));
            const int before = count.frames;
            waitUntil("frames", [&] { return count.frames >= before + 5; });
        }
    }

    void closeAndOpenDock()
    {
        ui.dockParams->close();
        waitUntil("the dock to go", [this] { return !ui.tableParams->isVisible() && isPainted(); });
        ui.dockParams->toggleViewAction()->trigger();
        waitUntil("the dock", [this] { return ui.tableParams->isVisible() && isPainted(); });
    }

    void hideAndShow()
    {
        window.hide();
        waitUntil("the window to go", [this] { return !window.windowHandle()->isExposed(); });
        window.show();
        waitUntil("the window", [this] { return window.windowHandle()->isExposed() && isPainted(); });
        activate();
    }

    /// Triggers `action` and, once its box is active, answers with `keys`.
    void answerBox(QAction *action, const QList<Qt::Key> &keys)
    {
        bool answered = false;
        QElapsedTimer clock;
        clock.start();
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &look, [&] {
            if (clock.elapsed() > patience)
                giveUp(QStringLiteral("has waited in vain for a box"));
            auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            box->activateWindow();
            if (!box->isActiveWindow())
                return;
            look.stop();
            for (const Qt::Key key : keys)
                QTest::keyClick(box->windowHandle(), key);
            answered = true;
        });
        look.start(1);
        action->trigger();
        expect(answered, "A box is answered");
        activate();
    }

    void reset()
    {
        pdx3.paramList[0][0] = 99.0F;
        answerBox(ui.actionreset, {Qt::Key_Escape});
        expect(pdx3.paramList.at(0).at(0) == 99.0F, "Cancel resets nothing");
        answerBox(ui.actionreset, {Qt::Key_Left, Qt::Key_Return});
        expect(pdx3.paramList == presetRows, "OK brings the presets back");
    }

    void readAbout() { answerBox(ui.actionabout, {Qt::Key_Escape}); }

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
    // What its threads' caches hold, which comes and goes, the C library counts as allocated. It looks at this variable
    // only when a program starts.
    if (!qEnvironmentVariableIsSet("GLIBC_TUNABLES")) {
        qputenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0");
        execv("/proc/self/exe", argv);
        giveUp(QStringLiteral("cannot start anew"));
    }
    // With threads of its own the software renderer keeps one to several pictures in work, 9 MB each, as they come.
    if (!qEnvironmentVariableIsSet("LP_NUM_THREADS"))
        qputenv("LP_NUM_THREADS", "0");
    QApplication application(argc, argv);
    // The toolkit keeps pictures of the boxes' buttons, up to 10 MB of them, and their names even when they are
    // dropped.
    QPixmapCache::setCacheLimit(0);
    const QStringList arguments = QCoreApplication::arguments();
    const int frames = arguments.size() == 2 ? arguments.at(1).toInt() : 2 * sampleEvery;
    if (arguments.size() > 2 || frames < 2 * sampleEvery) {
        std::cerr << "usage: Soak [FRAMES], two thousand at least" << std::endl;
        return 2;
    }
    MainWindow window;
    window.show();
    const ResourceMeter meter(window.winId());
    User user(window);

    QVector<Resources> samples;
    std::cout << qPrintable(Resources::titles()) << std::endl;
    for (int at = sampleEvery; at <= frames; at += sampleEvery) {
        user.useUntil(at);
        user.rest();
        samples << meter.measure(user.frames());
        // Only the first and the last are compared so closely, and a hundred of these lists would count as growth.
        if (samples.size() > 2)
            samples[samples.size() - 2].ofDisplay.clear();
        std::cout << qPrintable(samples.last().line()) << std::endl;
    }
    std::cout << qPrintable(user.story()) << std::endl;
    const QStringList growth = judge(samples);
    for (const QString &what : growth)
        std::cout << "Grown: " << qPrintable(what) << std::endl;
    return growth.isEmpty() ? 0 : 1;
}
