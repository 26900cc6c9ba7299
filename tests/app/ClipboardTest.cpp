// The parameter list on the real clipboard, with another program on the other side.

#include "app/Clipboard.h"

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/support/ApplicationTest.h"
#include "ui_MainWindow.h"

#include <QClipboard>
#include <QLineEdit>
#include <QMimeData>
#include <QProcess>
#include <QSignalSpy>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

using Rows = QVector<QVector<float>>;

/// Puts `text` on the clipboard from another program.
void copyElsewhere(const QByteArray &text)
{
    QProcess xclip;
    xclip.start("xclip", {"-selection", "clipboard", "-in"});
    QVERIFY(xclip.waitForStarted());
    xclip.write(text);
    xclip.closeWriteChannel();
    QVERIFY(xclip.waitForFinished()); // a child of it stays and serves the text
    const QClipboard *clipboard = QGuiApplication::clipboard();
    QTRY_VERIFY(!clipboard->ownsClipboard() && clipboard->text() == QString::fromUtf8(text));
}

/// Lets this program take the clipboard, as the user's keys would: the display server gives it to whoever has seen a
/// later event than the present owner. The event is the pointer's way over a window.
void seeAnEvent()
{
    QWidget window;
    window.setGeometry(0, 0, 100, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    struct Watch : QObject
    {
        bool eventFilter(QObject * /*object*/, QEvent *event) override
        {
            entered = entered || event->type() == QEvent::Enter;
            return false;
        }
        bool entered = false;
    } watch;
    window.installEventFilter(&watch);
    for (int i = 0; i < 100 && !watch.entered; ++i) {
        QCursor::setPos(500, 500);
        QTest::qWait(10);
        QCursor::setPos(50, 50);
        QTest::qWait(10);
    }
    QVERIFY(watch.entered);
}

/// The clipboard's text as another program sees it.
QByteArray pasteElsewhere(const QByteArray &selection = "clipboard")
{
    QProcess xclip;
    xclip.start("xclip", {"-selection", selection, "-out"});
    while (xclip.state() != QProcess::NotRunning) // it is served by this program's event loop
        QTest::qWait(5);
    return xclip.readAllStandardOutput();
}

/// What the clipboard's format makes of a list: printf's %g has the same six digits and the same exponents.
QByteArray textOf(const Rows &rows)
{
    QByteArray text;
    for (const QVector<float> &row : rows) {
        for (int i = 0; i < row.size(); ++i) {
            char number[32];
            text.append(number, std::snprintf(number, sizeof number, "%g", double(row.at(i))));
            text += i + 1 < row.size() ? '\t' : '\n';
        }
    }
    return text;
}

Rows numberedRows()
{
    Rows rows;
    for (int r = 0; r < 64; ++r) {
        QVector<float> row;
        for (int i = 0; i < 6; ++i)
            row << static_cast<float>(r * 10 + i);
        rows << row;
    }
    return rows;
}

} // namespace

class ClipboardTest : public QObject
{
    Q_OBJECT

    Rows presetRows;

    /// Shows `window` with the presets in its table, whatever the window before has left in the settings.
    void open(MainWindow &window) const
    {
        pdx3.paramList = presetRows;
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

private slots:
    void initTestCase()
    {
        presetRows = pdx3.paramList;
        // snprintf must speak the C locale, whatever the environment says.
        QVERIFY(std::setlocale(LC_NUMERIC, "C"));
    }

    void init()
    {
        pdx3.paramList = presetRows;
        pdx3.set(0);
        seeAnEvent();
        QGuiApplication::clipboard()->clear();
    }

    void cleanup() { QLocale::setDefault(QLocale::c()); }

    // ---- Copy ----

    void copiesAllRowsForOthers()
    {
        copyParamsToClipboard(pdx3);
        const QByteArray text = pasteElsewhere();
        QCOMPARE(text, textOf(presetRows));
        QCOMPARE(text.count('\n'), 64);
        QVERIFY(text.startsWith("1\t2\t3\t0.46\t1.5e-08\t1\n2\t3\t4\t0.25\t0\t2\n"));
        QVERIFY(text.endsWith("0\t0\t0\t0\t0\t0\n"));
        QCOMPARE(pasteElsewhere("primary"), QByteArray()); // the selection is not touched
    }

    void writesSixDigits()
    {
        const float inf = std::numeric_limits<float>::infinity();
        pdx3.paramList[0] = {1.0F, 0.25F, 0.00003F, 1234567.0F, 123456.0F, -0.1F};
        pdx3.paramList[1] = {1e38F, 1e-45F, 3.4028235e38F, 0.000123456789F, 100000.0F, 1000000.0F};
        pdx3.paramList[2] = {inf, -inf, std::nanf(""), 0.0F, 2.0F / 3.0F, 1.0F / 3.0F};
        copyParamsToClipboard(pdx3);
        const QStringList lines = QGuiApplication::clipboard()->text().split('\n');
        QCOMPARE(lines.at(0), QString("1\t0.25\t3e-05\t1.23457e+06\t123456\t-0.1"));
        QCOMPARE(lines.at(1), QString("1e+38\t1.4013e-45\t3.40282e+38\t0.000123457\t100000\t1e+06"));
        QCOMPARE(lines.at(2), QString("inf\t-inf\tnan\t0\t0.666667\t0.333333"));
    }

    void copiesSixtyFourLinesOfAnyList()
    {
        for (const Rows &rows : {Rows(), numberedRows().mid(0, 3), Rows(64), numberedRows() + numberedRows()}) {
            pdx3.paramList = rows;
            copyParamsToClipboard(pdx3);
            const QStringList lines = QGuiApplication::clipboard()->text().split('\n');
            QCOMPARE(lines.size(), 65);
            for (int r = 0; r < 64; ++r)
                QCOMPARE(lines.at(r).count('\t'), 5);
        }
    }

    void readsBackWhatItWrote_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::newRow("C") << QLocale::c();
        QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany);
        QTest::newRow("Arabic") << QLocale(QLocale::Arabic, QLocale::Egypt);
    }

    void readsBackWhatItWrote()
    {
        QFETCH(QLocale, locale);
        QLocale::setDefault(locale);
        for (int r = 0; r < 64; ++r) {
            for (int i = 0; i < 6; ++i)
                pdx3.paramList[r][i] =
                    QString::number((r - 32) * 1234.56 * std::pow(10.0, i * 7 - 20), 'g', 6).toFloat();
        }
        const Rows rows = pdx3.paramList;
        copyParamsToClipboard(pdx3);
        const QByteArray text = pasteElsewhere();
        QCOMPARE(text, textOf(rows));

        pdx3.paramList = presetRows;
        copyElsewhere(text);
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, rows);
    }

    void moreDigitsAreRounded()
    {
        pdx3.paramList[0][0] = 1.2345678F;
        copyParamsToClipboard(pdx3);
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList.at(0).at(0), 1.23457F);
    }

    // ---- Paste ----

    void texts_data()
    {
        // What stands on the clipboard and what the first rows are then; "-" is a value that stays.
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QStringList>("rows");
        const auto row = [](const char *name, const QByteArray &text, const QStringList &rows) {
            QTest::newRow(name) << text << rows;
        };
        row("nothing", "", {});
        row("one row", "1\t2\t3\t4\t5\t6\n", {"1 2 3 4 5 6"});
        row("no line end", "1\t2\t3\t4\t5\t6", {"1 2 3 4 5 6"});
        row("carriage returns and line feeds", "1\t2\t3\t4\t5\t6\r\n7\t8\t9\t10\t11\t12\r\n",
            {"1 2 3 4 5 6", "7 8 9 10 11 12"});
        row("carriage returns", "1\t2\t3\t4\t5\t6\r7\t8\t9\t10\t11\t12\r", {"1 2 3 4 5 6", "7 8 9 10 11 12"});
        row("blank lines", "\n\n\r\n1\t2\t3\t4\t5\t6\n\n\n7\t8\t9\t10\t11\t12\n\n", {"1 2 3 4 5 6", "7 8 9 10 11 12"});
        row("titles", "freq1\tfreq2\tfreq3\tphase1\tphase2\tcolor\n1\t2\t3\t4\t5\t6\n", {"- - - - - -", "1 2 3 4 5 6"});
        row("titles of another width", "one\ttwo\n1\t2\t3\t4\t5\t6\n", {"1 2 3 4 5 6"});
        row("two tabs are one", "1\t\t2\t3\t4\t5\t6\n", {"1 2 3 4 5 6"});
        row("seven fields, one of them empty", "1\t2\t\t4\t5\t6\t7\n", {"1 2 4 5 6 7"});
        row("six fields, one of them empty", "1\t2\t\t4\t5\t6\n7\t8\t9\t10\t11\t12\n", {"7 8 9 10 11 12"});
        row("tabs at both ends", "\t1\t2\t3\t4\t5\t6\t\n", {"1 2 3 4 5 6"});
        row("only tabs", "\t\t\t\t\t\t\n\t\n", {});
        row("five columns", "1\t2\t3\t4\t5\n", {});
        row("seven columns", "1\t2\t3\t4\t5\t6\t7\n", {});
        row("malformed lines take no row", "x\n1\t2\t3\t4\t5\t6\ny\tz\n7\t8\t9\t10\t11\t12\n",
            {"1 2 3 4 5 6", "7 8 9 10 11 12"});
        row("a field that is no number", "1\tabc\t3\t4\t5\t6\n", {"1 - 3 4 5 6"});
        row("decimal commas", "1,5\t2\t3\t0,46\t5\t6\n", {"- 2 3 - 5 6"});
        row("digit groups", "1,000\t1.000,5\t1 000\t4\t5\t6\n", {"- - - 4 5 6"});
        row("quotes", "\"1\"\t'2'\t3\t4\t5\t6\n", {"- - 3 4 5 6"});
        row("blanks", " 1\t2 \t  3  \t\v4\t5\f\t6\n", {"1 2 3 4 5 6"});
        row("no-break blanks", "\u00A01\t2\u00A0\t3\t4\t5\t6\n", {"1 2 3 4 5 6"});
        row("a byte-order mark", "\uFEFF1\t2\t3\t4\t5\t6\n", {"1 2 3 4 5 6"}); // the toolkit takes it off
        row("beyond a float", "1e39\t-1e39\t1e400\t4\t5\t6\n", {"- - - 4 5 6"});
        row("too small for a float", "1e-50\t2\t3\t4\t5\t6\n", {"- 2 3 4 5 6"});
        row("exponents and signs", "+1\t-2e1\t3E-1\t.5\t5.\t6e+0\n", {"1 -20 0.3 0.5 5 6"});
        row("infinities and no number", "inf\t-inf\tnan\t4\t5\t6\n", {"inf -inf nan 4 5 6"});
        row("hexadecimal", "0x10\t2\t3\t4\t5\t6\n", {"- 2 3 4 5 6"});
        row("Arabic digits", "\u0661\t2\t3\t4\t5\t6\n", {"- 2 3 4 5 6"});
        row("commas between the fields", "1,2,3,4,5,6\n", {});
        row("other line ends", "1\t2\t3\t4\t5\t6\u2028\v7\t8\t9\t10\t11\t12\n", {});
        // As spreadsheets put a selection of two rows there.
        row("a spreadsheet's rows", "1\t2\t3\t0.46\t0\t1\n2\t3\t4\t0.25\t0\t2\n", {"1 2 3 0.46 0 1", "2 3 4 0.25 0 2"});
        row("a browser's rows", "1\t2\t3\t0.46\t0\t1\r\n2\t3\t4\t0.25\t0\t2", {"1 2 3 0.46 0 1", "2 3 4 0.25 0 2"});
        row("one cell", "5\n", {});
        row("one column", "1\n2\n3\n4\n5\n6\n", {});
    }

    void texts()
    {
        QFETCH(QByteArray, text);
        QFETCH(QStringList, rows);
        Rows expected = numberedRows();
        for (int r = 0; r < rows.size(); ++r) {
            const QStringList values = rows.at(r).split(' ');
            for (int i = 0; i < 6; ++i) {
                if (values.at(i) != "-")
                    expected[r][i] = std::strtof(values.at(i).toUtf8(), nullptr);
            }
        }
        pdx3.paramList = numberedRows();
        if (!text.isEmpty())
            copyElsewhere(text);
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(textOf(pdx3.paramList), textOf(expected)); // as text, for NaN is unequal to itself

        // The curve on screen is left alone.
        QCOMPARE(pdx3.freq2, 2.0F);
        QCOMPARE(pdx3.points.size(), 16666);
    }

    void takesSixtyFourRowsAtMost()
    {
        copyElsewhere(textOf(numberedRows() + Rows(3, QVector<float>(6, 9.0F))));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, numberedRows());

        // Lines that take no row do not count, wherever they stand.
        pdx3.paramList = presetRows;
        copyElsewhere("rubbish\n" + textOf(numberedRows()).replace("\n", "\nrubbish\n\n"));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, numberedRows());
    }

    void fewerRowsLeaveTheOthers()
    {
        copyElsewhere(textOf(numberedRows().mid(0, 10)));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, numberedRows().mid(0, 10) + presetRows.mid(10));
    }

    void neverLeavesTheList()
    {
        copyElsewhere(textOf(numberedRows()));
        for (const Rows &rows : {Rows(), presetRows.mid(0, 3), Rows(64), Rows(70, QVector<float>(2, 1.0F))}) {
            pdx3.paramList = rows;
            pasteParamsFromClipboard(pdx3);
            QCOMPARE(pdx3.paramList.size(), rows.size());
            for (int r = 0; r < rows.size(); ++r) {
                QCOMPARE(pdx3.paramList.at(r).size(), rows.at(r).size());
                for (int i = 0; i < rows.at(r).size(); ++i)
                    QCOMPARE(pdx3.paramList.at(r).at(i), r < 64 ? numberedRows().at(r).at(i) : 1.0F);
            }
        }
    }

    void blankRowsOfOneStorageAreWrittenOneByOne()
    {
        copyElsewhere("\n" + textOf(Rows(13, QVector<float>(6, 4.0F))));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList.at(12), QVector<float>(6, 4.0F));
        QCOMPARE(pdx3.paramList.at(13), QVector<float>(6, 0.0F));
        QCOMPARE(pdx3.blankRow, QVector<float>(6, 0.0F));
        QCOMPARE(pdx3.presets, presetRows.mid(0, 12));
    }

    void clipboardsWithoutText()
    {
        auto *data = new QMimeData;
        data->setImageData(QImage(10, 10, QImage::Format_RGB32));
        QGuiApplication::clipboard()->setMimeData(data);
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, presetRows);
    }

    void hugeTexts_data()
    {
        QTest::addColumn<QString>("piece"); // repeated to 100 MB
        QTest::addColumn<float>("first");
        QTest::newRow("lines that take no row") << QString("123456789\n") << 1.0F;
        QTest::newRow("good lines") << QString("7\t2\t3\t4\t5\t6\n") << 7.0F;
        QTest::newRow("blank lines") << QString("\r\n") << 1.0F;
        QTest::newRow("one line") << QString("1234567890") << 1.0F;
        QTest::newRow("one line of tabs") << QString("\t") << 1.0F;
        QTest::newRow("one line of fields") << QString("1\t") << 1.0F;
    }

    void hugeTexts()
    {
        QFETCH(QString, piece);
        QFETCH(float, first);
        QGuiApplication::clipboard()->setText(piece.repeated(100000000 / piece.size()));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList.at(0).at(0), first);
        QCOMPARE(pdx3.paramList.size(), 64);
        QGuiApplication::clipboard()->clear();
    }

    void aFieldOfHundredMegabytes()
    {
        QGuiApplication::clipboard()->setText("1\t2\t3\t4\t" + QString(100000000, '5') + "\t6\n");
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList.at(0), QVector<float>({1.0F, 2.0F, 3.0F, 4.0F, 1.5e-8F, 6.0F}));
        QGuiApplication::clipboard()->clear();
    }

    // ---- In the window ----

    void shortcutsMeanTheWholeList()
    {
        MainWindow window;
        open(window);
        TableParams *table = window.ui->tableParams;
        table->setCurrentIndex(table->model->index(3, 1));
        table->setFocus();
        for (QWidget *focused : {static_cast<QWidget *>(table), static_cast<QWidget *>(&window)}) {
            pdx3.paramList = presetRows;
            focused->setFocus();
            seeAnEvent();
            QTRY_VERIFY(window.isActiveWindow());
            QTest::keyClick(window.windowHandle(), Qt::Key_C, Qt::ControlModifier);
            QCOMPARE(QGuiApplication::clipboard()->text().toUtf8(), textOf(presetRows));

            copyElsewhere(textOf(numberedRows()));
            QTest::keyClick(window.windowHandle(), Qt::Key_V, Qt::ControlModifier);
            QCOMPARE(pdx3.paramList, numberedRows());
            QCOMPARE(table->model->data(table->model->index(5, 2)).toFloat(), 52.0F);
        }
    }

    void menuEntriesMeanTheWholeList()
    {
        MainWindow window;
        open(window);
        window.ui->actioncopy->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text().toUtf8(), textOf(presetRows));
        copyElsewhere(textOf(numberedRows()));
        QSignalSpy changed(window.ui->tableParams->model, &Model::dataChanged);
        window.ui->actionpaste->trigger();
        QCOMPARE(pdx3.paramList, numberedRows());
        QCOMPARE(changed.count(), 1);
    }

    void inAnEditorTheyAreTheEditors()
    {
        MainWindow window;
        open(window);
        TableParams *table = window.ui->tableParams;
        const QModelIndex cell = table->model->index(4, 2);
        table->setCurrentIndex(cell);
        table->edit(cell);
        auto *editor = table->viewport()->findChild<QLineEdit *>();
        QVERIFY(editor && editor->hasFocus());
        QCOMPARE(editor->selectedText(), QString("11"));

        QTest::keyClick(window.windowHandle(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("11"));

        copyElsewhere("2.75");
        QTest::keyClick(window.windowHandle(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(editor->text(), QString("2.75"));
        QCOMPARE(pdx3.paramList, presetRows);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(pdx3.paramList.at(4).at(2), 2.75F);
    }
};

PENDRIX_APPLICATION_TEST_MAIN(ClipboardTest)
#include "ClipboardTest.moc"
