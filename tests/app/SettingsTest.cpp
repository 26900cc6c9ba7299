// Settings of the window: saving at close, restoring at start.

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "tests/app/FileFaults.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/SampleSize.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/SettingsText.h"
#include "ui_MainWindow.h"

#include <QHeaderView>
#include <QLibraryInfo>
#include <QScreen>
#include <QVersionNumber>

#include <cstdio>
#include <limits>
#include <memory>
#include <random>
#include <utility>

#include <sys/resource.h>

namespace {

/// The values of QWidget::saveGeometry, as Qt 5.12 and later write them.
struct Geometry
{
    QRect frame{100, 100, 300, 220};
    QRect normal{100, 120, 300, 200};
    QRect current{100, 120, 300, 200};
    bool isMaximized = false;
    int screenWidth = QGuiApplication::primaryScreen()->geometry().width();

    QByteArray bytes() const
    {
        return streamed(0x1D9D0CBU) + streamed(quint16{3}) + streamed(quint16{0}) + streamed(frame) + streamed(normal) +
               streamed(qint32{0}) + streamed(isMaximized) + streamed(false) + streamed(screenWidth) +
               streamed(current);
    }
};

/// Returns the most memory that the process has had, in KiB.
long mostMemory()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

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
    static inline int messages = 0;

    /// Returns a window that starts with `text` as its settings file, in a new folder.
    std::unique_ptr<MainWindow> windowWith(const QByteArray &text)
    {
        folder = std::make_unique<SettingsFolder>();
        pdx3.paramList = presetRows;
        return folder->write(text) ? std::make_unique<MainWindow>() : nullptr;
    }

private slots:
    void initTestCase() { presetRows = pdx3.paramList; }

    void init()
    {
        folder = std::make_unique<SettingsFolder>();
        pdx3.paramList = presetRows;
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &message) {
            ++messages;
            (void)std::fputs(qPrintable(message + '\n'), stderr);
        });
    }

    void cleanup()
    {
        qInstallMessageHandler(nullptr);
        QCOMPARE(std::exchange(messages, 0), 0);
    }

    // ---- Saving and restoring ----

    void firstRunHasFormSizeAndPresets()
    {
        {
            MainWindow window;
            QVERIFY(window.settings);
            QCOMPARE(window.settings->fileName(), folder->path());
            QCOMPARE(window.size(), QSize(701, 605));
            QCOMPARE(pdx3.paramList, presetRows);
            QVERIFY(!QFile::exists(folder->path()));
        }
        const QSettings file(folder->path(), QSettings::IniFormat);
        QCOMPARE(file.allKeys(), QStringList({"colsWidth", "geometry", "paramList", "windowState"}));
    }

    void restartRestoresWindowAndRows()
    {
        {
            MainWindow window;
            window.show();
            window.setGeometry(40, 30, 900, 500);
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            window.ui->dockParams->close();
            window.ui->tableParams->setColumnWidth(2, 33);
            pdx3.paramList = markedRows(5);
            QTest::qWait(100);
        }
        const auto window = windowWith(folder->read());
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QCOMPARE(window->geometry(), QRect(40, 30, 900, 500));
        QVERIFY(!window->ui->dockParams->isVisible());
        QCOMPARE(window->ui->tableParams->columnWidth(2), 33);
        QCOMPARE(pdx3.paramList, markedRows(5));
        QVERIFY(pdx3.freq2 == 2.0F); // still the curve of the first preset
    }

    void columnWidthsOutOfRangeAreIgnored()
    {
        const TableParams untouched;
        const int own = untouched.columnWidth(0);
        const int least = untouched.horizontalHeader()->minimumSectionSize();
        QVERIFY(least > 8);
        using Widths = QVector<int>;
        const int highest = std::numeric_limits<int>::max();
        const int lowest = std::numeric_limits<int>::min();
        const struct
        {
            QByteArray content;
            Widths expected;
        } rows[] = {
            {streamed(Widths{50, 60}), {50, 60, own, own, own, own}},
            {streamed(Widths{50, 60, 70, 80, 90, 110, 5, 6}), {50, 60, 70, 80, 90, 110}},
            {streamed(Widths{-1, lowest, 0, highest, 20001, 20000}), {own, own, own, own, own, 20000}},
            {streamed(Widths{1, 8, 70, 80, 90, 110}), {least, least, 70, 80, 90, 110}}, // too narrow for the font
            {streamed(Widths{50, 60, 70}).chopped(2), Widths(6, own)},
            {streamed(0x7FFFFFFFU), Widths(6, own)},
        };
        for (const auto &row : rows) {
            const auto window =
                windowWith("[General]\n" + variantLine("colsWidth", userValue("QVector<int>", row.content)));
            Widths found;
            for (int i = 0; i < 6; ++i)
                found << window->ui->tableParams->columnWidth(i);
            QCOMPARE(found, row.expected);
        }
    }

    // ---- Layout ----

    void layoutsAreRestored()
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

    void closedTableOfQt611StaysClosed()
    {
        QByteArray state;
        {
            const MainWindow window;
            window.ui->dockParams->hide();
            state = window.saveState();
        }
        const QByteArray name("d\0o\0c\0k\0P\0a\0r\0a\0m\0s", 19);
        QVERIFY(state.contains(name + '\0'));
        state.replace(name + '\0', name + '\x08');
        const auto window = windowWith("[General]\n" + byteArrayLine("windowState", state));
        QVERIFY(window->ui->dockParams->isHidden());
    }

    void floatingToolbarIsRestoredWithSizeOfItsContents()
    {
        {
            const MainWindow window;
            window.ui->mainToolBar->setWindowFlags(Qt::Tool);
            window.ui->mainToolBar->setGeometry(10, 20, 32000, 65000);
        }
        const MainWindow window;
        QVERIFY(window.ui->mainToolBar->isFloating());
        QCOMPARE(window.ui->mainToolBar->size(), window.ui->mainToolBar->sizeHint());
    }

    void layoutThatHidesCurveIsIgnored()
    {
        {
            const MainWindow window;
            window.ui->dockWidget->hide();
            window.ui->dockParams->hide();
        }
        const MainWindow window;
        QVERIFY(!window.ui->dockWidget->isHidden());
        QVERIFY(!window.ui->dockParams->isHidden());
    }

    void damageToAnyByteOfWindowStateIsHarmless_data()
    {
        QTest::addColumn<QByteArray>("good");
        const MainWindow window;
        QTest::newRow("windowState") << window.saveState();
        QTest::newRow("geometry") << window.saveGeometry();
    }

    void damageToAnyByteOfWindowStateIsHarmless()
    {
        QFETCH(QByteArray, good);
        const QByteArray key = QTest::currentDataTag();
        QVERIFY(good.size() > 50);
        const QSize screen = QGuiApplication::primaryScreen()->virtualSize();
        const int step = sampleSize(11, 1);
        for (int at = 0; at < good.size(); at += step) {
            QVector<QByteArray> damaged = {good.left(at)};
            for (const char byte : {'\x01', '\x7F', '\x80', '\xFF'})
                damaged << QByteArray(good).replace(at, 1, QByteArray(1, byte));
            for (const QByteArray &bytes : std::as_const(damaged)) {
                const auto window = windowWith("[General]\n" + byteArrayLine(key, bytes));
                if (key == "geometry")
                    window->show(); // applies it
                QCoreApplication::processEvents();
                QVERIFY(window->width() <= screen.width() && window->height() <= screen.height());
                QCOMPARE(messages, 0);
            }
        }
    }

    // ---- Geometry ----

    void geometryIsRestoredOnScreen_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QRect>("expected"); // null: not restored
        const QSize form(701, 605);
        const auto row = [](const char *name, const QRect &current, const QRect &expected) {
            Geometry geometry;
            geometry.current = current;
            QTest::newRow(name) << geometry.bytes() << expected;
        };
        row("at the top, without a frame", {0, 20, 300, 200}, {0, 20, 300, 200});
        row("40 pixels at the left edge", {-260, 120, 301, 200}, {-260, 120, 301, 200});
        row("41 pixels at the right edge", {1239, 120, 300, 200}, {1239, 120, 300, 200});
        row("title bar at the bottom", {100, 1023, 300, 200}, {100, 1023, 300, 200});
        row("half a title bar at the bottom", {100, 1033, 300, 200}, {100, 824, 300, 200}); // Qt moves it
        row("larger than screen", {10, 30, 100000, 5000}, {10, 30, 1280, 1024});
        row("40 pixels at the left edge, of 300", {-260, 120, 300, 200}, {0, 120, 300, 200});
        row("40 pixels at the right edge", {1240, 120, 300, 200}, {980, 120, 300, 200});
        row("12 pixels wide", {100, 120, 12, 200}, {100, 120, 12, 200}); // show widens it
        row("less than half a title bar at the bottom", {100, 1034, 300, 200}, {100, 824, 300, 200});
        row("above the screen", {100, -11, 300, 200}, {100, 20, 300, 200});
        row("on a screen that is gone", {2000, 120, 900, 700}, {380, 120, 900, 700});
        row("no width", {100, 120, 0, 200}, {{100, 120}, form});
        row("negative height", {100, 120, 300, -7}, {{100, 120}, form});
        const int low = std::numeric_limits<int>::min();
        // The calculation of some versions of Qt overflows.
        const QVersionNumber qt = QLibraryInfo::version();
        const int width = qt >= QVersionNumber(6) && qt < QVersionNumber(6, 5) ? 1280 : 6;
        row("lowest coordinates", QRect(QPoint(low, low), QPoint(low + 5, low + 5)), {0, 20, width, 6});
        row("lowest to highest", QRect(QPoint(low + 200, 30), QPoint(200, -(low + 1))), {{0, 20}, form});

        Geometry wide;
        wide.screenWidth = 2560;
        QTest::newRow("of a wider screen") << wide.bytes() << wide.current;

        const Geometry good;
        QTest::newRow("truncated") << good.bytes().chopped(1) << QRect({100, 120}, form);
        QTest::newRow("of unknown version") << good.bytes().replace(4, 2, QByteArray("\0\4", 2)) << QRect();
        QTest::newRow("of Qt 5.3") << good.bytes().replace(4, 2, QByteArray("\0\2", 2)).left(50) << good.normal;
        Geometry geometry;
        geometry.frame = QRect(5, 5, -1, 7);
        QTest::newRow("invalid frame") << geometry.bytes() << geometry.current;
        geometry = good;
        geometry.normal = QRect(5, 5, 7, -1);
        QTest::newRow("invalid normal rectangle") << geometry.bytes() << geometry.current;
        geometry.normal = {5000, 5000, 300, 200};
        QTest::newRow("unused rectangle beside the screen") << geometry.bytes() << geometry.current;
        geometry.isMaximized = true;
        QTest::newRow("maximised, normally beside the screen") << geometry.bytes() << QRect(980, 824, 300, 200);
        geometry.normal = {10, 30, 100000, 5000};
        QTest::newRow("maximised, normally larger than screen") << geometry.bytes() << QRect(10, 30, 1280, 1024);
    }

    void geometryIsRestoredOnScreen()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QRect, expected);
        QCOMPARE(QGuiApplication::primaryScreen()->availableGeometry(), QRect(0, 0, 1280, 1024));
        const auto window = windowWith("[General]\n" + byteArrayLine("geometry", bytes));
        const QRect restored = window->isMaximized() ? window->normalGeometry() : window->geometry();
        if (expected.isNull()) {
            QCOMPARE(window->size(), QSize(701, 605));
        } else if (QLibraryInfo::version() < QVersionNumber(6, 5)) {
            QCOMPARE(restored, expected);
        } else { // Qt moves the whole window, with an assumed frame, onto the screen
            QVERIFY2(QRect(0, 20, 1280, 1024).contains(restored), QTest::toString(restored));
            QVERIFY(restored.width() >= qMin(expected.width(), 1278) &&
                    restored.height() >= qMin(expected.height(), 998));
        }
    }

    void damagedGeometryIsRestoredOnScreenInLittleMemory()
    {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        const QByteArray good = Geometry().bytes();
        QVector<QByteArray> damaged;
        for (int bit = 0; bit < 8 * good.size(); bit += sampleSize(13, 1)) {
            damaged << good;
            damaged.last()[bit / 8] = static_cast<char>(static_cast<uchar>(good.at(bit / 8)) ^ (1U << (bit % 8)));
        }
        std::mt19937 random(3);
        for (int round = sampleSize(50, 3000); round > 0; --round) {
            damaged << good.left(8);
            while (damaged.last().size() < good.size())
                damaged.last() += static_cast<char>(
                    random() % 2 == 0 ? static_cast<uchar>(good.at(damaged.last().size())) : random());
        }
        {
            const auto window = windowWith({});
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        }
        [[maybe_unused]] const long before = mostMemory();
        int count = 0;
        for (const QByteArray &bytes : std::as_const(damaged)) {
            const auto window = windowWith("[General]\n" + byteArrayLine("geometry", bytes));
            for (const QRect &rect : {window->geometry(), window->normalGeometry()}) {
                const QRect title = rect.adjusted(0, -20, 0, 20 - rect.height()) & screen;
                QVERIFY2(title.width() >= std::min(rect.width(), 40) && title.height() >= 10, bytes.toHex());
                QVERIFY2(rect.width() <= screen.width() && rect.height() <= screen.height(), bytes.toHex());
            }
            if (++count % 10 != 0)
                continue; // showing takes most of the time
            window->show();
            QCoreApplication::processEvents();
            QVERIFY2(screen.width() >= window->width() && screen.height() >= window->height(), bytes.toHex());
        }
#ifndef PENDRIX_ADDRESS_SANITIZER
        const long growth = mostMemory() - before;
        QVERIFY2(growth < 100L * 1024, QByteArray::number(static_cast<int>(growth)));
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0) // later versions and their OpenGL drivers need more for any window
        QVERIFY2(before + growth < 200L * 1024, QByteArray::number(static_cast<int>(before + growth)));
#endif
#endif
    }

    void maximisedWindowIsRestored()
    {
        Geometry geometry;
        geometry.isMaximized = true;
        geometry.current = {0, 20, 1280, 1004};
        const auto window = windowWith("[General]\n" + byteArrayLine("geometry", geometry.bytes()));
        QVERIFY(window->isMaximized());
        QCOMPARE(window->normalGeometry(), geometry.normal);
    }

    // ---- Files and rows that cannot be read ----

    void unreadableFileIsKept()
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

    void malformedRowsLeavePresets()
    {
        const auto window = windowWith("[General]\n" + rowsLine(markedRows(3).mid(1)));
        QVERIFY(window->settings);
        QCOMPARE(pdx3.paramList, presetRows);
    }
};

PENDRIX_APPLICATION_TEST_MAIN(SettingsTest)
#include "SettingsTest.moc"
