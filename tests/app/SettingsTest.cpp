// The settings and the window: what a start restores, what a close saves.

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "tests/app/FileFaults.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/SampleSize.h"
#include "tests/support/SettingsText.h"
#include "ui_MainWindow.h"

#include <QHeaderView>
#include <QScreen>

#include <limits>
#include <memory>

#include <sys/stat.h>

namespace {

/// The values of QWidget::saveGeometry, as Qt 5.12 and later write them.
struct Geometry
{
    QRect frame{100, 100, 300, 220};
    QRect normal{100, 120, 300, 200};
    QRect current{100, 120, 300, 200};
    bool isMaximized = false;

    QByteArray bytes() const
    {
        return streamed(0x1D9D0CBU) + streamed(quint16{3}) + streamed(quint16{0}) + streamed(frame) + streamed(normal) +
               streamed(qint32{0}) + streamed(isMaximized) + streamed(false) +
               streamed(QGuiApplication::primaryScreen()->geometry().width()) + streamed(current);
    }
};

QByteArray byteArrayLine(const QByteArray &key, const QByteArray &bytes)
{
    return key + "=@ByteArray(" + escapedText(bytes) + ")\n";
}

} // namespace

class SettingsTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<SettingsFolder> folder;
    Rows presetRows;
    static QStringList messages;

    static void collectMessage(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString &message)
    {
        messages << message;
    }

    /// Returns a window that starts with `text` as its settings file, in a folder of its own.
    std::unique_ptr<MainWindow> windowWith(const QByteArray &text)
    {
        folder = std::make_unique<SettingsFolder>();
        pdx3.paramList = presetRows;
        return folder->write(text) ? std::make_unique<MainWindow>() : nullptr;
    }

    /// Returns the layout and the geometry that a new window saves.
    static QPair<QByteArray, QByteArray> savedState()
    {
        const MainWindow window;
        return {window.saveState(), window.saveGeometry()};
    }

private slots:
    void initTestCase() { presetRows = pdx3.paramList; }

    void init()
    {
        folder = std::make_unique<SettingsFolder>();
        pdx3.paramList = presetRows;
        messages.clear();
        qInstallMessageHandler(collectMessage);
    }

    void cleanup()
    {
        qInstallMessageHandler(nullptr);
        QCOMPARE(messages, QStringList());
    }

    // ---- Saving and restoring ----

    void firstRunHasTheFormsSizeAndThePresets()
    {
        {
            MainWindow window;
            QVERIFY(window.settings);
            QCOMPARE(window.settings->fileName(), folder->path());
            QCOMPARE(window.size(), QSize(701, 605));
            QCOMPARE(pdx3.paramList, presetRows);
            QVERIFY(!QFile::exists(folder->path()));
        }
        QStringList keys;
        const QList<QByteArray> lines = folder->read().split('\n');
        for (const QByteArray &line : lines)
            keys << line.split('=').first();
        QCOMPARE(keys, QStringList({"[General]", "colsWidth", "geometry", "paramList", "windowState", ""}));
    }

    void everythingComesBackAfterARestart()
    {
        {
            MainWindow window;
            window.show();
            window.resize(900, 500);
            window.move(40, 30);
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            window.ui->dockParams->close();
            window.ui->tableParams->setColumnWidth(2, 33);
            pdx3.paramList = markedRows(5);
            QTest::qWait(100);
        }
        pdx3.paramList = presetRows;
        const auto window = windowWith(folder->read());
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QCOMPARE(window->size(), QSize(900, 500));
        QCOMPARE(window->pos(), QPoint(40, 30));
        QVERIFY(!window->ui->dockParams->isVisible());
        QCOMPARE(window->ui->tableParams->columnWidth(2), 33);
        QCOMPARE(pdx3.paramList, markedRows(5));
        QVERIFY(pdx3.freq2 == 2.0F); // still the curve of the first preset
    }

    void laterRunsWriteTheSameFile()
    {
        // The second run restores a layout for the first time, and Qt then saves another height of the hidden centre.
        QByteArray before;
        for (int run = 0; run < 4; ++run) {
            {
                MainWindow window;
                if (run == 0)
                    window.move(30, 30); // at the very top, Qt would make room for a frame
                window.show();
                QVERIFY(QTest::qWaitForWindowExposed(&window));
                QTest::qWait(50);
            }
            QVERIFY(!folder->read().isEmpty());
            if (run > 1)
                QCOMPARE(folder->read(), before);
            before = folder->read();
        }
    }

    void columnWidths_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QVector<int>>("expected"); // 0: the table's own width; -1: the minimum
        constexpr int highest = std::numeric_limits<int>::max();
        constexpr int lowest = std::numeric_limits<int>::min();
        const auto row = [](const char *name, const QVector<int> &widths, const QVector<int> &expected) {
            QTest::newRow(name) << streamed(widths) << expected;
        };
        row("all", {50, 60, 70, 80, 90, 110}, {50, 60, 70, 80, 90, 110});
        row("empty", {}, {0, 0, 0, 0, 0, 0});
        row("too few", {50, 60}, {50, 60, 0, 0, 0, 0});
        row("too many", {50, 60, 70, 80, 90, 110, 5, 6, 7}, {50, 60, 70, 80, 90, 110});
        row("negative", {-1, lowest, 70, -5, -100, 110}, {0, 0, 70, 0, 0, 110});
        row("too wide", {highest, 20001, 20000, 80, 90, 110}, {0, 0, 20000, 80, 90, 110});
        row("zero", {0, 70, 0, 80, 90, 110}, {0, 70, 0, 80, 90, 110});
        row("too narrow for the font", {1, 8, 70, 80, 90, 110}, {-1, -1, 70, 80, 90, 110});
        QTest::newRow("2^31 - 1 widths") << streamed(0x7FFFFFFFU) << QVector<int>(6, 0);
        QTest::newRow("truncated") << streamed(QVector<int>{50, 60, 70}).chopped(2) << QVector<int>(6, 0);
    }

    void columnWidths()
    {
        QFETCH(QByteArray, content);
        QFETCH(QVector<int>, expected);
        const TableParams untouched;
        const int narrowest = untouched.horizontalHeader()->minimumSectionSize();
        QVERIFY(narrowest > 8);
        std::replace(expected.begin(), expected.end(), 0, untouched.columnWidth(0));
        std::replace(expected.begin(), expected.end(), -1, narrowest);
        const auto window = windowWith("[General]\n" + variantLine("colsWidth", userValue("QVector<int>", content)));
        QVector<int> found;
        for (int i = 0; i < 6; ++i)
            found << window->ui->tableParams->columnWidth(i);
        QCOMPARE(found, expected);
    }

    // ---- Layout ----

    void everyLayoutIsRestored()
    {
        for (const auto area : {Qt::TopToolBarArea, Qt::LeftToolBarArea, Qt::BottomToolBarArea, Qt::RightToolBarArea}) {
            for (const bool isShown : {true, false}) {
                init();
                {
                    MainWindow window;
                    window.addToolBar(area, window.ui->mainToolBar);
                    window.ui->mainToolBar->setVisible(isShown);
                    window.ui->dockParams->setVisible(!isShown);
                }
                const MainWindow window;
                QCOMPARE(window.toolBarArea(window.ui->mainToolBar), area);
                QCOMPARE(window.ui->mainToolBar->isHidden(), !isShown);
                QCOMPARE(window.ui->dockParams->isHidden(), isShown);
            }
        }
    }

    void aFloatingToolbarIsRestored()
    {
        {
            MainWindow window;
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            const QToolBar *bar = window.ui->mainToolBar;
            const QPoint handle = bar->geometry().topLeft() + QPoint(6, bar->height() / 2);
            QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, handle);
            for (int i = 1; i <= 10; ++i)
                QTest::mouseMove(window.windowHandle(), handle + QPoint(20 * i, 20 * i));
            QTRY_VERIFY(bar->isFloating());
            QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, handle + QPoint(200, 200));
        }
        const MainWindow window;
        QVERIFY(window.ui->mainToolBar->isFloating());
    }

    void aLayoutThatHidesTheCurveIsIgnored()
    {
        QByteArray layout;
        {
            const MainWindow window;
            window.ui->dockWidget->hide();
            window.ui->dockParams->hide();
            layout = window.saveState();
        }
        const auto window = windowWith("[General]\n" + byteArrayLine("windowState", layout));
        QVERIFY(!window->ui->dockWidget->isHidden());
        QVERIFY(!window->ui->dockParams->isHidden());
    }

    void damageToAnyByteOfTheWindowIsHarmless_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("good");
        const auto state = savedState();
        QTest::newRow("layout") << QByteArray("windowState") << state.first;
        QTest::newRow("geometry") << QByteArray("geometry") << state.second;
    }

    void damageToAnyByteOfTheWindowIsHarmless()
    {
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, good);
        QVERIFY(good.size() > 50);
        const int step = sampleSize(11, 1);
        for (int at = 0; at < good.size(); at += step) {
            QVector<QByteArray> damaged = {good.left(at), good, good, good, good};
            for (int i = 1; i < damaged.size(); ++i)
                damaged[i][at] = "\x01\x7F\x80\xFF"[i - 1];
            for (const QByteArray &bytes : qAsConst(damaged)) {
                const auto window = windowWith("[General]\n" + byteArrayLine(key, bytes));
                if (key == "geometry")
                    window->show(); // applies it
                QCoreApplication::processEvents();
                const QSize screen = QGuiApplication::primaryScreen()->virtualSize();
                QVERIFY(window->width() <= screen.width() && window->height() <= screen.height());
                QVERIFY2(messages.isEmpty(), qPrintable(messages.join('\n')));
            }
        }
    }

    // ---- Geometry ----

    void geometry_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QRect>("expected"); // null: ignored
        const auto row = [](const char *name, const QRect &current, bool isRestored) {
            Geometry geometry;
            geometry.current = current;
            QTest::newRow(name) << geometry.bytes() << (isRestored ? current : QRect());
        };
        row("on the screen", {100, 120, 300, 200}, true);
        row("without a frame, at the top", {0, 20, 300, 200}, true);
        row("40 pixels at the left edge", {-260, 120, 301, 200}, true);
        row("39 pixels at the left edge", {-260, 120, 300, 200}, false);
        row("41 pixels at the right edge", {1239, 120, 300, 200}, true);
        row("40 pixels at the right edge", {1240, 120, 300, 200}, false);
        row("12 pixels wide", {100, 120, 12, 200}, false);
        row("title bar at the bottom", {100, 1023, 300, 200}, true);
        row("less than half a title bar at the bottom", {100, 1034, 300, 200}, false);
        row("above the screen", {100, -11, 300, 200}, false);
        row("beside the screen", {5000, 120, 300, 200}, false);
        row("no width", {100, 120, 0, 200}, false);
        row("negative height", {100, 120, 300, -7}, false);
        const int low = std::numeric_limits<int>::min();
        row("extreme coordinates", QRect(QPoint(low, low), QPoint(low + 5, low + 5)), false);

        Geometry geometry;
        geometry.current = {100, 1033, 300, 200}; // which Qt moves
        QTest::newRow("half a title bar at the bottom") << geometry.bytes() << QRect(100, 824, 300, 200);
        geometry = Geometry();
        geometry.normal = {5000, 5000, 300, 200};
        QTest::newRow("unused rectangle beside the screen") << geometry.bytes() << geometry.current;
        geometry.frame = QRect(5, 5, -1, 7);
        QTest::newRow("invalid frame") << geometry.bytes() << QRect();
        geometry = Geometry();
        geometry.normal = QRect(5, 5, 7, -1);
        QTest::newRow("invalid normal rectangle") << geometry.bytes() << QRect();
        geometry = Geometry();
        QTest::newRow("truncated") << geometry.bytes().chopped(1) << QRect();
        QTest::newRow("of Qt 5.3, without the last rectangle")
            << QByteArray(geometry.bytes()).replace(4, 2, QByteArray("\0\2", 2)).left(50) << geometry.normal;
        geometry.isMaximized = true;
        geometry.normal = {5000, 5000, 300, 200};
        QTest::newRow("maximised, normally beside the screen") << geometry.bytes() << QRect();
    }

    void geometry()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QRect, expected);
        QCOMPARE(QGuiApplication::primaryScreen()->availableGeometry(), QRect(0, 0, 1280, 1024));
        const auto window = windowWith("[General]\n" + byteArrayLine("geometry", bytes));
        if (expected.isNull())
            QCOMPARE(window->size(), QSize(701, 605));
        else
            QCOMPARE(window->geometry(), expected);
    }

    void aMaximisedWindowComesBackMaximised()
    {
        Geometry geometry;
        geometry.isMaximized = true;
        geometry.current = {0, 20, 1280, 1004};
        const auto window = windowWith("[General]\n" + byteArrayLine("geometry", geometry.bytes()));
        QVERIFY(window->isMaximized());
        QCOMPARE(window->normalGeometry(), geometry.normal);
    }

    void aWindowLargerThanTheScreenIsMadeSmaller()
    {
        Geometry geometry;
        geometry.current = {10, 30, 100000, 5000};
        const auto window = windowWith("[General]\n" + byteArrayLine("geometry", geometry.bytes()));
        QCOMPARE(window->geometry(), QRect(10, 30, 1280, 1024));
    }

    // ---- Files that cannot be read ----

    void aSpecialFileIsTreatedAsAbsent()
    {
        QVERIFY(mkfifo(QFile::encodeName(folder->path()).constData(), 0600) == 0);
        {
            const MainWindow window;
            QVERIFY(!window.settings);
            QCOMPARE(pdx3.paramList, presetRows);
        }
        struct stat status = {};
        QVERIFY(stat(QFile::encodeName(folder->path()).constData(), &status) == 0 && S_ISFIFO(status.st_mode));
    }

    void aFileThatCannotBeReadIsNotOverwritten()
    {
        const QByteArray text = "[General]\n" + rowsLine(markedRows(3));
        for (const int call : {0, 1}) { // open, read
            folder = std::make_unique<SettingsFolder>();
            QVERIFY(folder->write(text));
            FileFaults::inject(FileFaults::Fault::Fail, call, call == 0 ? EMFILE : EIO,
                               QFile::encodeName(folder->path(QString())));
            {
                const MainWindow window;
                FileFaults::inject();
                QVERIFY(!window.settings);
                QCOMPARE(pdx3.paramList, presetRows);
            }
            QCOMPARE(folder->read(), text);
        }
    }

    void malformedRowsLeaveThePresets()
    {
        const auto window = windowWith("[General]\n" + rowsLine(markedRows(3).mid(1)));
        QVERIFY(window->settings);
        QCOMPARE(pdx3.paramList, presetRows);
    }
};

QStringList SettingsTest::messages; // clazy:exclude=non-pod-global-static

PENDRIX_APPLICATION_TEST_MAIN(SettingsTest)
#include "SettingsTest.moc"
