// What the window leaves in the settings store, byte for byte, and what it makes of a store that is damaged.

#include "app/MainWindow.h"

#include "engine/Pendrix3D.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/FloatBits.h"
#include "ui_MainWindow.h"

#include <QHeaderView>
#include <QProcess>
#include <QScreen>
#include <QSettings>

#include <csignal>
#include <limits>
#include <memory>
#include <random>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using Rows = QVector<QVector<float>>;

// ---- The store's file, read and written without the toolkit's settings ----

/// The bytes of an escaped value, as the store's text format has it: C's escapes, and \x with hexadecimal digits.
QByteArray unescaped(const QByteArray &text)
{
    static const QHash<char, char> escapes = {{'0', '\0'}, {'a', '\a'}, {'b', '\b'}, {'f', '\f'}, {'n', '\n'},
                                              {'r', '\r'}, {'t', '\t'}, {'v', '\v'}, {'"', '"'},  {'\\', '\\'}};
    QByteArray bytes;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) != '\\') {
            if (text.at(i) != '"')
                bytes.append(text.at(i));
            continue;
        }
        ++i;
        if (text.at(i) != 'x') {
            bytes.append(escapes.value(text.at(i)));
            continue;
        }
        int digits = 0;
        while (std::isxdigit(static_cast<unsigned char>(text.at(i + 1 + digits))))
            ++digits;
        bytes.append(static_cast<char>(text.mid(i + 1, digits).toInt(nullptr, 16)));
        i += digits;
    }
    return bytes;
}

/// A value as the store's text format has it.
QByteArray escaped(const QByteArray &bytes)
{
    QByteArray text;
    for (const char byte : bytes)
        text += "\\x" + QByteArray::number(static_cast<uchar>(byte), 16);
    return text;
}

/// The value of `key` in the store's file: its kind, "Variant" or "ByteArray", and its bytes.
QPair<QByteArray, QByteArray> storedValue(const QByteArray &file, const QByteArray &key)
{
    const QList<QByteArray> lines = file.split('\n');
    for (QByteArray line : lines) {
        if (!line.startsWith(key + '='))
            continue;
        line = line.mid(key.size() + 1);
        if (line.startsWith('"'))
            line = line.mid(1, line.size() - 2);
        const int open = line.indexOf('(');
        return {line.mid(1, open - 1), unescaped(line.mid(open + 1, line.size() - open - 2) + ' ').chopped(1)};
    }
    return {};
}

QByteArray bigEndian(quint32 value)
{
    QByteArray bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(value >> shift));
    return bytes;
}

QByteArray bigEndian(float value)
{
    return bigEndian(bitsOf(value));
}

/// A value of the user's own type `name` as the store has it: the number of user types, the name and the content.
QByteArray userValue(const QByteArray &name, const QByteArray &content)
{
    return bigEndian(127U) + bigEndian(static_cast<quint32>(name.size() + 1)) + name + '\0' + content;
}

QByteArray contentOf(const Rows &rows)
{
    QByteArray bytes = bigEndian(static_cast<quint32>(rows.size()));
    for (const QVector<float> &row : rows) {
        bytes += bigEndian(static_cast<quint32>(row.size()));
        for (const float value : row)
            bytes += bigEndian(value);
    }
    return bytes;
}

QByteArray contentOf(const QVector<int> &widths)
{
    QByteArray bytes = bigEndian(static_cast<quint32>(widths.size()));
    for (const int width : widths)
        bytes += bigEndian(static_cast<quint32>(width));
    return bytes;
}

const QByteArray rowsType = QByteArrayLiteral("QVector<QVector<float> >"); // clazy:exclude=non-pod-global-static
const QByteArray widthsType = QByteArrayLiteral("QVector<int>");           // clazy:exclude=non-pod-global-static

QByteArray variantLine(const QByteArray &key, const QByteArray &bytes)
{
    return key + "=@Variant(" + escaped(bytes) + ")\n";
}

QByteArray bitsOf(const Rows &rows)
{
    return contentOf(rows);
}

/// Rows that can be told from the presets and from those of another `seed`.
Rows markedRows(int seed)
{
    Rows rows;
    for (int r = 0; r < 64; ++r)
        rows.append(QVector<float>(6, static_cast<float>(seed) + static_cast<float>(r) / 64.0F));
    return rows;
}

// ---- Another process with a window, for what must not happen in this one ----

/// In a process of its own: does what `task` says and ends.
int runTask(const QStringList &task)
{
    const QString &what = task.at(0);
    if (what == "save-forever") {
        // Every window saves rows of another mark, until the process is killed.
        for (int seed = 1000;; ++seed) {
            const MainWindow window;
            pdx3.paramList = markedRows(seed);
            if (seed == 1001) {
                QTextStream out(stdout);
                out << "saved\n";
            }
        }
    }
    if (what == "save-on-a-full-disk") {
        // No file of this process can grow beyond the limit.
        const rlim_t size = task.at(1).toULong();
        const rlimit limit = {size, size};
        if (std::signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 3;
    }
    if (what == "save-as-nobody" && getuid() == 0 && setuid(65534) != 0)
        return 3;
    MainWindow window;
    window.show();
    QCoreApplication::processEvents();
    if (pdx3.points.size() != 16666)
        return 2;
    if (task.contains("expect-presets") && pdx3.paramList.mid(0, 12) != pdx3.presets)
        return 4;
    if (task.contains("expect-marked") && pdx3.paramList != markedRows(3))
        return 5;
    pdx3.paramList = markedRows(7);
    return 0;
}

} // namespace

class SettingsTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder;
    Rows presetRows;
    static QStringList messages;

    static void collectMessage(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString &message)
    {
        messages << message;
    }

    QString path() const { return folder->filePath("quillmoss/pdx3.conf"); }

    QByteArray file() const
    {
        QFile store(path());
        return store.open(QIODevice::ReadOnly) ? store.readAll() : QByteArray();
    }

    void write(const QByteArray &content) const
    {
        QDir().mkpath(folder->filePath("quillmoss"));
        QFile store(path());
        QVERIFY(store.open(QIODevice::WriteOnly));
        QCOMPARE(store.write(content), qint64{content.size()});
    }

    /// The rows of a window that starts with `content` as its store; nothing may be printed on the way.
    Rows rowsFrom(const QByteArray &content)
    {
        // A folder of its own: the toolkit remembers what it read from a file.
        folder = std::make_unique<QTemporaryDir>();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder->path());
        write(content);
        pdx3.paramList = presetRows;
        const QtMessageHandler before = qInstallMessageHandler(collectMessage);
        Rows loaded;
        {
            const MainWindow window;
            loaded = pdx3.paramList;
        }
        qInstallMessageHandler(before);
        return loaded;
    }

    /// A store as the program itself writes it, with `rows`.
    QByteArray goodStore(const Rows &rows)
    {
        folder = std::make_unique<QTemporaryDir>();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder->path());
        {
            const MainWindow window;
            pdx3.paramList = rows;
        }
        return file();
    }

    QProcess *start(const QStringList &task) const
    {
        auto *process = new QProcess;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", folder->path());
        process->setProcessEnvironment(environment);
        process->start(QCoreApplication::applicationFilePath(), QStringList{"--task"} + task);
        return process;
    }

private slots:
    void initTestCase() { presetRows = pdx3.paramList; }

    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder->path());
        pdx3.paramList = presetRows;
        messages.clear();
    }

    void cleanup() { QCOMPARE(messages, QStringList()); }

    void firstRun()
    {
        {
            MainWindow window;
            QVERIFY(window.settings);
            QCOMPARE(window.settings->fileName(), path());
            QCOMPARE(window.size(), QSize(701, 605));
            QCOMPARE(bitsOf(pdx3.paramList), bitsOf(presetRows));
            QVERIFY(!QFile::exists(path())); // written at the end and at no other time
        }
        QVERIFY(QFile::exists(path()));
    }

    void theFileByteForByte()
    {
        pdx3.paramList[2][3] = std::numeric_limits<float>::quiet_NaN();
        pdx3.paramList[3][0] = -std::numeric_limits<float>::infinity();
        pdx3.paramList[63][5] = -0.0F;
        pdx3.paramList[40][1] = 1e-45F;
        const QVector<int> widths = {100, 41, 300, 77, 100, 255};
        QByteArray geometry;
        QByteArray state;
        {
            MainWindow window;
            for (int i = 0; i < 6; ++i)
                window.ui->tableParams->setColumnWidth(i, widths.at(i));
            geometry = window.saveGeometry();
            state = window.saveState();
        }
        const QByteArray store = file();
        QStringList keys;
        const QList<QByteArray> lines = store.split('\n');
        for (const QByteArray &line : lines)
            keys << line.split('=').first();
        QCOMPARE(keys, QStringList({"[General]", "colsWidth", "geometry", "paramList", "windowState", ""}));

        QCOMPARE(storedValue(store, "geometry"), qMakePair(QByteArray("ByteArray"), geometry));
        QCOMPARE(storedValue(store, "windowState"), qMakePair(QByteArray("ByteArray"), state));
        QCOMPARE(storedValue(store, "colsWidth"),
                 qMakePair(QByteArray("Variant"), userValue(widthsType, contentOf(widths))));
        QCOMPARE(storedValue(store, "paramList"),
                 qMakePair(QByteArray("Variant"), userValue(rowsType, contentOf(pdx3.paramList))));
        QCOMPARE(contentOf(pdx3.paramList).size(), 4 + 64 * (4 + 6 * 4));
    }

    void comesBackAfterARestart()
    {
        const Rows rows = markedRows(5);
        {
            MainWindow window;
            window.show();
            window.resize(900, 500);
            window.move(40, 30);
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            window.ui->dockParams->close();
            window.ui->tableParams->setColumnWidth(2, 33);
            pdx3.paramList = rows;
            QTest::qWait(100);
        }
        pdx3.paramList = presetRows;
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.size(), QSize(900, 500));
        QCOMPARE(window.pos(), QPoint(40, 30));
        QVERIFY(!window.ui->dockParams->isVisible());
        QCOMPARE(window.ui->tableParams->columnWidth(2), 33);
        QCOMPARE(bitsOf(pdx3.paramList), bitsOf(rows));
        // The curve on screen is still the engine's own first choice.
        QVERIFY(pdx3.freq2 == 2.0F);
    }

    void everyFloatComesBackAsItWas()
    {
        std::mt19937 random(99);
        Rows rows(64, QVector<float>(6));
        for (QVector<float> &row : rows) {
            for (float &value : row)
                value = anyFloat(random);
        }
        rows[0] = {std::numeric_limits<float>::quiet_NaN(),
                   std::numeric_limits<float>::infinity(),
                   -0.0F,
                   1e-45F,
                   3.4028235e38F,
                   -3.4028235e38F};
        const QByteArray store = goodStore(rows);
        QCOMPARE(bitsOf(rowsFrom(store)), bitsOf(rows));
    }

    void bothSpellingsOfTheTypeLoad()
    {
        for (const char *name : {"QVector<QVector<float> >", "QVector<QVector<float>>"}) {
            const QByteArray line = variantLine("paramList", userValue(name, contentOf(markedRows(3))));
            QCOMPARE(bitsOf(rowsFrom("[General]\n" + line)), bitsOf(markedRows(3)));
        }
    }

    void twoRunsWriteTheSame()
    {
        // The first run of all has no layout to restore, and the toolkit then writes another height for the hidden
        // middle of the window. From then on nothing changes.
        QByteArray before;
        for (int run = 0; run < 4; ++run) {
            {
                MainWindow window;
                if (run == 0)
                    window.move(30, 30); // at the very top, the toolkit would make room for a frame
                window.show();
                QVERIFY(QTest::qWaitForWindowExposed(&window));
                QTest::qWait(50);
            }
            QVERIFY(!file().isEmpty());
            if (run > 1)
                QCOMPARE(file(), before);
            before = file();
        }
    }

    void keysOfOthersSurvive()
    {
        write("[General]\nmine=7\ncolsWidth=rubbish\n\n[group]\nvalue=@Size(3 4)\nlist=a, b\n");
        {
            const MainWindow window;
        }
        const QByteArray store = file();
        QVERIFY(store.contains("\nmine=7\n"));
        QVERIFY(store.contains("\n[group]\n"));
        QVERIFY(store.contains("\nvalue=@Size(3 4)\n"));
        QVERIFY(store.contains("\nlist=a, b\n"));
        QVERIFY(!storedValue(store, "paramList").second.isEmpty());
    }

    // ---- Damage ----

    void listsOfAnotherShapeAreRefused_data()
    {
        QTest::addColumn<QByteArray>("content");
        Rows rows = markedRows(3);
        QTest::newRow("63 rows") << contentOf(rows.mid(1));
        QTest::newRow("65 rows") << contentOf(rows + Rows{rows.first()});
        QTest::newRow("no rows") << contentOf(Rows());
        rows[63].removeLast();
        QTest::newRow("a row of five") << contentOf(rows);
        rows[63] += QVector<float>{1.0F, 2.0F};
        QTest::newRow("a row of seven") << contentOf(rows);
        QTest::newRow("empty rows") << contentOf(Rows(64));
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("2^31 - 1 rows") << bigEndian(0x7FFFFFFFU);
        QTest::newRow("2^32 - 1 rows") << bigEndian(0xFFFFFFFFU) + QByteArray(1000, '\0');
        QTest::newRow("a row of 2^31 - 1") << bigEndian(64U) + bigEndian(0x7FFFFFFFU) + QByteArray(1000, '\1');
        QTest::newRow("a row of 2^30") << bigEndian(64U) + bigEndian(0x40000000U) + QByteArray(1000, '\1');
    }

    void listsOfAnotherShapeAreRefused()
    {
        QFETCH(QByteArray, content);
        QCOMPARE(bitsOf(rowsFrom("[General]\n" + variantLine("paramList", userValue(rowsType, content)))),
                 bitsOf(presetRows));
    }

    void widths_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QVector<int>>("expected"); // 0: as wide as when nothing sets it; -1: as narrow as can be
        constexpr int most = std::numeric_limits<int>::max();
        constexpr int least = std::numeric_limits<int>::min();
        const auto row = [](const char *name, const QVector<int> &widths, const QVector<int> &expected) {
            QTest::newRow(name) << contentOf(widths) << expected;
        };
        row("all", {50, 60, 70, 80, 90, 110}, {50, 60, 70, 80, 90, 110});
        row("empty", {}, {0, 0, 0, 0, 0, 0});
        row("shorter", {50, 60}, {50, 60, 0, 0, 0, 0});
        row("longer", {50, 60, 70, 80, 90, 110, 5, 6, 7}, {50, 60, 70, 80, 90, 110});
        row("negative", {-1, least, 70, -5, -100, 110}, {0, 0, 70, 0, 0, 110});
        row("absurd", {most, 2000000, 1000000, 80, 90, 110}, {0, 0, 0, 80, 90, 110});
        row("nothing left to see", {0, 70, 0, 80, 90, 110}, {0, 70, 0, 80, 90, 110});
        row("too narrow, as after a change to a larger font", {1, 8, 70, 80, 90, 110}, {-1, -1, 70, 80, 90, 110});
        QTest::newRow("2^31 - 1 of them") << bigEndian(0x7FFFFFFFU) << QVector<int>(6, 0);
        QTest::newRow("cut off") << contentOf(QVector<int>{50, 60, 70}).chopped(2) << QVector<int>(6, 0);
    }

    void widths()
    {
        QFETCH(QByteArray, content);
        QFETCH(QVector<int>, expected);
        write("[General]\n" + variantLine("colsWidth", userValue(widthsType, content)));
        const TableParams untouched;
        const int narrowest = untouched.horizontalHeader()->minimumSectionSize();
        QVERIFY(narrowest > 8);
        std::replace(expected.begin(), expected.end(), 0, untouched.columnWidth(0));
        std::replace(expected.begin(), expected.end(), -1, narrowest);
        const MainWindow window;
        QVector<int> found;
        for (int i = 0; i < 6; ++i)
            found << window.ui->tableParams->columnWidth(i);
        QCOMPARE(found, expected);
    }

    void everyCountByteDamaged()
    {
        const Rows rows = markedRows(3);
        const QByteArray good = userValue(rowsType, contentOf(rows));
        const int start = userValue(rowsType, {}).size();
        QVector<int> countBytes = {start, start + 1, start + 2, start + 3};
        for (int r = 0; r < 64; ++r) {
            for (int byte = 0; byte < 4; ++byte)
                countBytes << start + 4 + r * 28 + byte;
        }
        for (const int at : qAsConst(countBytes)) {
            for (const uint damage : {0x00U, 0x7FU, 0x80U, 0xFFU}) {
                QByteArray bytes = good;
                bytes[at] = static_cast<char>(damage);
                const Rows loaded = rowsFrom("[General]\n" + variantLine("paramList", bytes));
                QCOMPARE(bitsOf(loaded), bitsOf(bytes == good ? rows : presetRows));
            }
        }
    }

    void everyByteOfTheWidthsDamaged()
    {
        const QByteArray good = userValue(widthsType, contentOf(QVector<int>{50, 60, 70, 80, 90, 110}));
        for (int at = 0; at < good.size(); ++at) {
            for (const uint damage : {0x00U, 0x7FU, 0x80U, 0xFFU}) {
                QByteArray bytes = good;
                bytes[at] = static_cast<char>(damage);
                QCOMPARE(bitsOf(rowsFrom("[General]\n" + variantLine("colsWidth", bytes))), bitsOf(presetRows));
                QCOMPARE(messages, QStringList());
            }
        }
    }

    void everyByteOfTheWindowDamaged_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::newRow("windowState") << QByteArray("windowState");
        QTest::newRow("geometry") << QByteArray("geometry");
    }

    void everyByteOfTheWindowDamaged()
    {
        QFETCH(QByteArray, key);
        const QByteArray good = storedValue(goodStore(presetRows), key).second;
        QVERIFY(good.size() > 50);
        for (int at = 0; at < good.size(); ++at) {
            for (const uint damage : {0x01U, 0x7FU, 0x80U, 0xFFU}) {
                QByteArray bytes = good;
                bytes[at] = static_cast<char>(damage);
                init();
                write("[General]\n" + key + "=@ByteArray(" + escaped(bytes) + ")\n");
                const QtMessageHandler before = qInstallMessageHandler(collectMessage);
                {
                    MainWindow window; // restores the layout at once and its size when it is shown
                    if (key == "geometry")
                        window.show();
                    QCoreApplication::processEvents();
                    const QSize screen = QGuiApplication::primaryScreen()->virtualSize();
                    QVERIFY(window.width() <= screen.width() && window.height() <= screen.height());
                }
                qInstallMessageHandler(before);
                QVERIFY2(messages.isEmpty(), qPrintable(messages.join('\n')));
            }
        }
        for (int length = 0; length < good.size(); ++length) {
            init();
            write("[General]\n" + key + "=@ByteArray(" + escaped(good.left(length)) + ")\n");
            const MainWindow window;
        }
    }

    void everyLayoutOfTheWindowIsRestored()
    {
        for (const Qt::ToolBarArea area :
             {Qt::TopToolBarArea, Qt::LeftToolBarArea, Qt::BottomToolBarArea, Qt::RightToolBarArea}) {
            for (const bool shown : {true, false}) {
                init();
                {
                    MainWindow window;
                    window.addToolBar(area, window.ui->mainToolBar);
                    window.ui->mainToolBar->setVisible(shown);
                    window.ui->dockParams->setVisible(!shown);
                }
                const MainWindow window;
                QCOMPARE(window.toolBarArea(window.ui->mainToolBar), area);
                QCOMPARE(window.ui->mainToolBar->isHidden(), !shown);
                QCOMPARE(window.ui->dockParams->isHidden(), shown);
            }
        }
    }

    void aToolbarDraggedOutOfTheWindowStaysThere()
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
            QVERIFY(bar->isFloating());
        }
        const MainWindow window;
        QVERIFY(window.ui->mainToolBar->isFloating());
    }

    void cutOffAfterEveryByte()
    {
        const Rows rows = markedRows(3);
        const QByteArray store = goodStore(rows);
        const int end = store.indexOf("windowState=") - 1; // where the rows are complete
        for (int length = 0; length <= store.size(); ++length) {
            const Rows loaded = rowsFrom(store.left(length));
            if (bitsOf(loaded) != bitsOf(length >= end ? rows : presetRows))
                QFAIL(QByteArray::number(length));
        }
    }

    void wrongTypesUnderEveryKey()
    {
        const QByteArray values[] = {
            "7",
            "text",
            "a, b, c",
            "@Invalid()",
            "@ByteArray(abc)",
            "@ByteArray()",
            "@Size(3 4)",
            "@Rect(1 2 3 4)",
            "@Point(1 2)",
            "@Variant(",
            "@Variant()",
            "@Variant(" + escaped(userValue(rowsType, contentOf(QVector<int>{1, 2, 3}))) + ")",
            "@Variant(" + escaped(userValue(widthsType, contentOf(markedRows(3)))) + ")",
            "@Variant(" + escaped(userValue("NoSuchType", "1234")) + ")",
            "@Variant(" + escaped(bigEndian(9U) + bigEndian(2U)) + ")",
            "@DateTime(" + escaped(bigEndian(9U)) + ")",
            "\"unbalanced",
            "\\x",
        };
        for (const char *key : {"windowState", "geometry", "colsWidth", "paramList"}) {
            for (const QByteArray &value : values) {
                const Rows loaded = rowsFrom("[General]\n" + QByteArray(key) + '=' + value + '\n');
                QCOMPARE(bitsOf(loaded), bitsOf(presetRows));
            }
        }
    }

    void valuesThatWouldEndTheProgram_data()
    {
        QTest::addColumn<QByteArray>("value");
        const auto row = [](const char *name, const QByteArray &bytes) {
            QTest::newRow(name) << QByteArray("@Variant(" + escaped(bytes) + ")");
        };
        row("a list of 2^31 - 1", bigEndian(9U) + bigEndian(0x7FFFFFFFU));
        row("a list of strings", bigEndian(11U) + bigEndian(0x7FFFFFFFU));
        row("a list of byte arrays", bigEndian(49U + 97U) + bigEndian(0x7FFFFFFFU));
        row("a polygon", bigEndian(71U) + bigEndian(0x3FFFFFFFU) + QByteArray(100, '\0'));
        row("a list under its name", userValue("QVariantList", bigEndian(0x7FFFFFFFU)));
        row("a container under its name", userValue("QStringList", bigEndian(0x7FFFFFFFU)));
        QByteArray nested;
        for (int i = 0; i < 1000000; ++i)
            nested += bigEndian(9U) + bigEndian(1U);
        row("a million lists in one another", nested);
        const QByteArray list = escaped(bigEndian(9U) + bigEndian(0x7FFFFFFFU));
        QTest::newRow("in a list") << QByteArray("a, @Variant(" + list + "), b");
        QTest::newRow("in quotation marks") << QByteArray("\"@Var\"iant(" + list + ")");
        QTest::newRow("escaped") << QByteArray("\\x40Vari\\141nt(" + list + ")");
        QTest::newRow("a digit too much") << QByteArray("\\x10040Variant(" + list + ")");
        QTest::newRow("unknown escapes") << QByteArray("@Var\\qiant(" + list + ")");
        QTest::newRow("over two lines") << QByteArray("@Var\\\niant(" + list + ")");
        QTest::newRow("over two lines of another system") << QByteArray("@Var\\\r\niant(" + list + ")");
        QTest::newRow("blanks after a quotation mark") << QByteArray("\"@Var\" \tiant(" + list + ")");
        QTest::newRow("quotation marks with blanks between") << QByteArray("\"@Var\" \"iant(" + list + ")");
        QTest::newRow("a number without digits") << QByteArray("@Var\\xiant(" + list + ")");
        QTest::newRow("a type behind numbers without digits") << QByteArray("@Variant(\\x\\x\\x\\x" + list + ")");
        QTest::newRow("a mark of the encoding") << QByteArray("@Var\"\"\xEF\xBB\xBFiant(" + list + ")");
        QTest::newRow("a date and time") << QByteArray("@DateTime(" + list + ")");
        // These would end it when it saves.
        const QByteArray date = bigEndian(16U) + QByteArray(13, '\0');
        const auto zone = [](const char *name, const QByteArray &bytes) {
            QTest::newRow(name) << QByteArray("@DateTime(" + escaped(bytes) + ")");
        };
        zone("a date and time of a zone that is missing", date + '\3');
        zone("a date and time of a zone that nobody knows", date + '\3' + bigEndian(2U) + QByteArray("\0x", 2));
        zone("a date and time of another kind", date + '\x7f');
        zone("a date and time that is cut off", date);
        QTest::newRow("a zone behind a quotation mark") << QByteArray("\"@DateTime(" + escaped(date) + "\"\\x3)");
        QTest::newRow("a zone behind a mark of the encoding")
            << QByteArray("@DateTime(\xEF\xBB\xBF" + escaped(date) + "\\x3)");
    }

    void valuesThatWouldEndTheProgram()
    {
        QFETCH(QByteArray, value);
        const QByteArray good = variantLine("paramList", userValue(rowsType, contentOf(markedRows(3))));
        for (const char *key : {"geometry", "paramList", "foreign"}) {
            const bool isOurs = qstrcmp(key, "paramList") == 0;
            const QByteArray content = "[General]\n" + QByteArray(key) + '=' + value + '\n' + (isOurs ? "" : good);
            const Rows loaded = rowsFrom(content);
            QCOMPARE(bitsOf(loaded), bitsOf(isOurs ? presetRows : markedRows(3)));
        }
    }

    void harmlessValuesOfOthersSurvive()
    {
        const QByteArray lines[] = {
            "color=@Variant(" + escaped(bigEndian(67U) + QByteArray("\1\0\0\0\0\0\0\0\0\0\0", 11)) + ")\n",
            "date=@DateTime(" + escaped(bigEndian(16U) + QByteArray(13, '\0') + '\1') + ")\n",
            "double=@Variant(" + escaped(bigEndian(6U) + QByteArray(8, '\0')) + ")\n",
            "list=a, b, c\n",
            "text=me@Variant\n",
            "at=@@Variant(abc)\n",
            "float=@Variant(" + escaped(bigEndian(135U) + bigEndian(1.5F)) + ")\n",
        };
        QByteArray content = "[General]\n";
        for (const QByteArray &line : lines)
            content += line;
        rowsFrom(content);
        for (const char *key :
             {"\nat=@@Variant(abc)", "\ncolor=", "\ndate=", "\ndouble=", "\nfloat=", "\nlist=", "\ntext="})
            QVERIFY2(file().contains(key), key);
    }

    void noise_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("zeros") << QByteArray(100000, '\0');
        QTest::newRow("one line") << QByteArray(1000000, '=');
        QTest::newRow("brackets") << QByteArray(100000, '[');
        QByteArray bytes(50000000, Qt::Uninitialized);
        std::mt19937 random(1);
        for (char &byte : bytes)
            byte = static_cast<char>(random());
        QTest::newRow("50 MB") << bytes;
    }

    void noise()
    {
        QFETCH(QByteArray, content);
        QCOMPARE(bitsOf(rowsFrom(content)), bitsOf(presetRows));
    }

    void missingKeysAreReadFromTheOrganisationsFile()
    {
        QFile shared(folder->filePath("quillmoss.conf"));
        QVERIFY(shared.open(QIODevice::WriteOnly));
        shared.write("[General]\n" + variantLine("geometry", bigEndian(9U) + bigEndian(0x7FFFFFFFU)) +
                     variantLine("paramList", userValue(rowsType, contentOf(markedRows(3)))));
        shared.close();
        const MainWindow window;
        QCOMPARE(bitsOf(pdx3.paramList), bitsOf(markedRows(3)));
    }

    void aFolderInItsPlace()
    {
        QVERIFY(QDir().mkpath(path()));
        {
            const MainWindow window;
            QCOMPARE(bitsOf(pdx3.paramList), bitsOf(presetRows));
        }
        QVERIFY(QFileInfo(path()).isDir());
    }

    // ---- Saving is all or nothing ----

    void killedAtAnyMoment()
    {
        write(goodStore(markedRows(1000)));
        std::mt19937 random(2024);
        const int rounds = 200;
        int whole = 0;
        int amidst = 0;
        for (int round = 0; round < rounds; ++round) {
            const std::unique_ptr<QProcess> process(start({"save-forever"}));
            QVERIFY(process->waitForReadyRead(30000));
            QTest::qSleep(1 + static_cast<int>(random() % 20));
            process->kill();
            QVERIFY(process->waitForFinished());
            QCOMPARE(process->exitStatus(), QProcess::CrashExit);
            // What is left of an unfinished save: the toolkit's lock, and files that would have become the store.
            QDir place(folder->filePath("quillmoss"));
            const QStringList leftovers = place.entryList({"pdx3.conf.*"}, QDir::Files);
            amidst += leftovers.isEmpty() ? 0 : 1;
            for (const QString &leftover : leftovers)
                QVERIFY(place.remove(leftover)); // for a lock without content the toolkit would wait half a minute

            const QByteArray store = file();
            const QByteArray bytes = storedValue(store, "paramList").second;
            const int start = userValue(rowsType, {}).size() + 8;
            QVERIFY(bytes.size() > start + 4);
            quint32 bits = 0;
            for (int i = 0; i < 4; ++i)
                bits = bits << 8U | static_cast<uchar>(bytes.at(start + i));
            if (bytes == userValue(rowsType, contentOf(markedRows(static_cast<int>(floatOf(bits))))) &&
                !storedValue(store, "windowState").second.isEmpty() && store.endsWith('\n'))
                ++whole;
        }
        QCOMPARE(whole, rounds);
        QVERIFY2(amidst > rounds / 10, QByteArray::number(amidst)); // or the kills came at the wrong moments
        qInfo() << amidst << "of" << rounds << "kills fell into a save";
    }

    void aFullDiskKeepsTheOldStore()
    {
        const QByteArray before = goodStore(markedRows(3));
        for (const int room : {0, 10, 200, 1000, 4096, before.size() - 1, before.size(), before.size() + 1000}) {
            const std::unique_ptr<QProcess> process(start({"save-on-a-full-disk", QString::number(room)}));
            QVERIFY(process->waitForFinished());
            QCOMPARE(process->exitStatus(), QProcess::NormalExit);
            QCOMPARE(process->exitCode(), 0);
            QCOMPARE(process->readAllStandardError(), QByteArray());
            QCOMPARE(file(), before);
        }
    }

    void aReadOnlyStoreIsLoadedAndKept_data()
    {
        QTest::addColumn<QByteArray>("damage");
        QTest::newRow("sound") << QByteArray();
        QTest::newRow("damaged") << variantLine("geometry", bigEndian(9U) + bigEndian(0x7FFFFFFFU));
    }

    void aReadOnlyStoreIsLoadedAndKept()
    {
        QFETCH(QByteArray, damage);
        const QByteArray before = goodStore(markedRows(3)) + damage;
        write(before);
        QFile::setPermissions(path(), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
        for (const QString &name : {folder->filePath("quillmoss"), folder->path()})
            QFile::setPermissions(name, QFile::Permissions(0x5555));
        const std::unique_ptr<QProcess> process(start({"save-as-nobody", "expect-marked"}));
        QVERIFY(process->waitForFinished());
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 0);
        QCOMPARE(process->readAllStandardError(), QByteArray());
        for (const QString &name : {folder->path(), folder->filePath("quillmoss")})
            QFile::setPermissions(name, QFile::Permissions(0x7777));
        QCOMPARE(file(), before);
    }

    void anUnreadableStoreGivesThePresets()
    {
        const QByteArray before = goodStore(markedRows(3));
        QFile::setPermissions(folder->path(), QFile::Permissions(0x5555));
        QFile::setPermissions(folder->filePath("quillmoss"), QFile::Permissions(0x5555));
        QFile::setPermissions(path(), QFile::Permissions());
        const std::unique_ptr<QProcess> process(start({"save-as-nobody", "expect-presets"}));
        QVERIFY(process->waitForFinished());
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 0);
        QCOMPARE(process->readAllStandardError(), QByteArray());
        for (const QString &name : {folder->path(), folder->filePath("quillmoss"), path()})
            QFile::setPermissions(name, QFile::Permissions(0x7777));
        QCOMPARE(file(), before);
    }
};

QStringList SettingsTest::messages; // clazy:exclude=non-pod-global-static

int main(int argc, char *argv[])
{
    if (argc > 2 && qstrcmp(argv[1], "--task") == 0) {
        QApplication application(argc, argv);
        return runTask(QCoreApplication::arguments().mid(2));
    }
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.filePath("settings")));
    QApplication application(argc, argv);
    SettingsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SettingsTest.moc"
