// The parameter list on the real clipboard, exchanged with another program.

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
#include <cstdio>

namespace {

using Rows = QVector<QVector<float>>;

/// Puts `text` on the clipboard from another program and waits until this one sees it.
void copyElsewhere(const QByteArray &text)
{
    QProcess xclip;
    xclip.start("xclip", {"-selection", "clipboard", "-in"});
    QVERIFY(xclip.waitForStarted());
    xclip.write(text);
    xclip.closeWriteChannel();
    QVERIFY(xclip.waitForFinished()); // a child process remains and serves the text
    const QClipboard *clipboard = QGuiApplication::clipboard();
    QTRY_VERIFY(!clipboard->ownsClipboard() && clipboard->text() == QString::fromUtf8(text));
}

/// Moves the pointer over a window. The X server gives the clipboard to a program only if its last input event is newer
/// than that of the present owner.
void receiveInputEvent()
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

/// Returns the clipboard's text as another program reads it.
QByteArray pasteElsewhere(const QByteArray &selection = "clipboard")
{
    QProcess xclip;
    xclip.start("xclip", {"-selection", selection, "-out"});
    while (xclip.state() != QProcess::NotRunning) // this program's event loop serves it
        QTest::qWait(5);
    return xclip.readAllStandardOutput();
}

/// Returns `rows` in the clipboard's format; printf's %g has the same digits and exponents.
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

    /// Shows `window` with the presets in its table, independent of the settings that an earlier window saved.
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
        // snprintf must use the C locale in every environment.
        QVERIFY(std::setlocale(LC_NUMERIC, "C"));
    }

    void init()
    {
        pdx3.paramList = presetRows;
        pdx3.set(0);
        receiveInputEvent();
        QGuiApplication::clipboard()->clear();
    }

    void cleanup() { QLocale::setDefault(QLocale::c()); }

    // ---- Copy ----

    void copiesAllRowsToOtherPrograms()
    {
        copyParamsToClipboard(pdx3);
        const QByteArray text = pasteElsewhere();
        QCOMPARE(text, textOf(presetRows));
        QCOMPARE(text.count('\n'), 64);
        QVERIFY(text.startsWith("1\t2\t3\t0.46\t1.5e-08\t1\n2\t3\t4\t0.25\t0\t2\n"));
        QVERIFY(text.endsWith("0\t0\t0\t0\t0\t0\n"));
        QCOMPARE(pasteElsewhere("primary"), QByteArray()); // not in the selection
    }

    void roundsToSixDigits()
    {
        pdx3.paramList[0][0] = 1.2345678F;
        copyParamsToClipboard(pdx3);
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList.at(0).at(0), 1.23457F);
    }

    // ---- Paste ----

    void replacesCellsWithNumbersOnly()
    {
        pdx3.paramList = numberedRows();
        // The byte-order mark is not part of the text.
        copyElsewhere("\uFEFF1.5\tabc\t3\t4\t5\t6\r\n7\t8\t9\t10\t11\t1e39\r\n");
        pasteParamsFromClipboard(pdx3);
        Rows expected = numberedRows();
        expected[0] = {1.5F, 1.0F, 3.0F, 4.0F, 5.0F, 6.0F};
        expected[1] = {7.0F, 8.0F, 9.0F, 10.0F, 11.0F, 15.0F};
        QCOMPARE(pdx3.paramList, expected);

        // The displayed curve does not change.
        QCOMPARE(pdx3.freq2, 2.0F);
        QCOMPARE(pdx3.points.size(), 16666);
    }

    void readsAtMostSixtyFourRows()
    {
        copyElsewhere(textOf(numberedRows() + Rows(3, QVector<float>(6, 9.0F))));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, numberedRows());

        // Malformed lines do not count.
        pdx3.paramList = presetRows;
        copyElsewhere("rubbish\n" + textOf(numberedRows()).replace("\n", "\nrubbish\n\n"));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, numberedRows());
    }

    void keepsRowsAfterTheLastLine()
    {
        copyElsewhere(textOf(numberedRows().mid(0, 10)));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, numberedRows().mid(0, 10) + presetRows.mid(10));
    }

    void staysWithinListsOfAnyShape()
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

    void keepsOtherRowsThatShareStorage()
    {
        copyElsewhere("\n" + textOf(Rows(13, QVector<float>(6, 4.0F))));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList.at(12), QVector<float>(6, 4.0F));
        QCOMPARE(pdx3.paramList.at(13), QVector<float>(6, 0.0F));
        QCOMPARE(pdx3.blankRow, QVector<float>(6, 0.0F));
        QCOMPARE(pdx3.presets, presetRows.mid(0, 12));
    }

    void ignoresClipboardWithoutText()
    {
        auto *data = new QMimeData;
        data->setImageData(QImage(10, 10, QImage::Format_RGB32));
        QGuiApplication::clipboard()->setMimeData(data);
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, presetRows);
    }

    void pastesHundredMegabytes()
    {
        QGuiApplication::clipboard()->setText("7\t2\t3\t4\t5\t6\n" + QString(100000000, '5'));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList.at(0), QVector<float>({7.0F, 2.0F, 3.0F, 4.0F, 5.0F, 6.0F}));
        QCOMPARE(pdx3.paramList.at(1), presetRows.at(1));
        QGuiApplication::clipboard()->clear();
    }

    // ---- In the window ----

    void shortcutsExchangeWholeList()
    {
        MainWindow window;
        open(window);
        TableParams *table = window.ui->tableParams;
        table->setCurrentIndex(table->model->index(3, 1));
        table->setFocus();
        for (QWidget *focused : {static_cast<QWidget *>(table), static_cast<QWidget *>(&window)}) {
            pdx3.paramList = presetRows;
            focused->setFocus();
            receiveInputEvent();
            QTRY_VERIFY(window.isActiveWindow());
            QTest::keyClick(window.windowHandle(), Qt::Key_C, Qt::ControlModifier);
            QCOMPARE(QGuiApplication::clipboard()->text().toUtf8(), textOf(presetRows));

            copyElsewhere(textOf(numberedRows()));
            QTest::keyClick(window.windowHandle(), Qt::Key_V, Qt::ControlModifier);
            QCOMPARE(pdx3.paramList, numberedRows());
            QCOMPARE(table->model->data(table->model->index(5, 2)).toFloat(), 52.0F);
        }
    }

    void menuEntriesExchangeWholeList()
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

    void shortcutsActOnOpenEditor()
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
