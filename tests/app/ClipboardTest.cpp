// The parameter list on the real clipboard, exchanged with another program.

#include "app/Clipboard.h"

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/SampleSize.h"
#include "ui_MainWindow.h"

#include <QClipboard>
#include <QMimeData>
#include <QProcess>
#include <QSignalSpy>

namespace {

using Rows = QVector<QVector<float>>;

/// Puts `text` on the clipboard from another program and waits until this program sees it.
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

/// Returns the text of a selection as another program reads it.
QByteArray pasteElsewhere(const QByteArray &selection)
{
    QProcess xclip;
    xclip.start("xclip", {"-selection", selection, "-out"});
    while (xclip.state() != QProcess::NotRunning) // this program's event loop serves it
        QTest::qWait(5);
    return xclip.readAllStandardOutput();
}

/// Moves the pointer over a window. The X server gives the clipboard to a program only if its last input event is newer
/// than the one of the present owner.
void receiveInputEvent()
{
    QWidget window;
    window.setGeometry(0, 0, 100, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCursor::setPos(500, 500);
    QTRY_VERIFY(!window.underMouse());
    QCursor::setPos(50, 50);
    QTRY_VERIFY(window.underMouse());
}

QByteArray textOf(const Rows &rows)
{
    QByteArray text;
    for (const QVector<float> &row : rows) {
        for (const float value : row)
            text += QByteArray::number(double(value)) + '\t';
        text.chop(1);
        text += '\n';
    }
    return text;
}

Rows numberedRows()
{
    Rows rows;
    for (int r = 0; r < 64; ++r) {
        const auto first = static_cast<float>(r * 10);
        rows.append({first, first + 1, first + 2, first + 3, first + 4, first + 5});
    }
    return rows;
}

} // namespace

class ClipboardTest : public QObject
{
    Q_OBJECT

    const Rows presetRows = pdx3.paramList;

private slots:
    void init()
    {
        pdx3.paramList = presetRows;
        receiveInputEvent();
        QGuiApplication::clipboard()->clear();
    }

    void copyReachesOtherPrograms()
    {
        copyParamsToClipboard(pdx3);
        const QByteArray text = pasteElsewhere("clipboard");
        QVERIFY(text.startsWith("1\t2\t3\t0.46\t1.5e-08\t1\n2\t3\t4\t0.25\t0\t2\n"));
        QCOMPARE(text, textOf(presetRows));
        QCOMPARE(pasteElsewhere("primary"), QByteArray());
    }

    void pasteReplacesCellsWithNumbersOnly()
    {
        pdx3.paramList = numberedRows();
        // The byte-order mark is not part of the text.
        copyElsewhere("\uFEFF1.5\tabc\t3\t4\t5\t6\r\nrubbish\r\n7\t8\t9\t10\t11\t1e39\r\n");
        pasteParamsFromClipboard(pdx3);
        Rows expected = numberedRows();
        expected[0] = {1.5F, 1.0F, 3.0F, 4.0F, 5.0F, 6.0F};
        expected[1] = {7.0F, 8.0F, 9.0F, 10.0F, 11.0F, 15.0F};
        QCOMPARE(pdx3.paramList, expected);
        QVERIFY(pdx3.freq2 == 2.0F && pdx3.points.size() == 16666); // the displayed curve does not change
    }

    void pasteKeepsRowsAfterLastLine()
    {
        copyElsewhere(textOf(numberedRows().mid(0, 13)));
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, numberedRows().mid(0, 13) + presetRows.mid(13));
        QCOMPARE(pdx3.blankRow, QVector<float>(6, 0.0F));
        QCOMPARE(pdx3.presets, presetRows.mid(0, 12));
    }

    void pasteFillsListsOfAnyShapeUpToSixtyFourRows()
    {
        copyElsewhere(textOf(numberedRows() + Rows(9, QVector<float>(6, 9.0F))));
        for (const Rows &rows : {Rows(), presetRows.mid(0, 3), Rows(64), Rows(70, QVector<float>(2, 1.0F))}) {
            Rows expected = rows;
            for (int r = 0; r < qMin(64, rows.size()); ++r)
                expected[r] = numberedRows().at(r).mid(0, rows.at(r).size());
            pdx3.paramList = rows;
            pasteParamsFromClipboard(pdx3);
            QCOMPARE(pdx3.paramList, expected);
        }
    }

    void pasteIgnoresClipboardWithoutText()
    {
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, presetRows);
        auto *data = new QMimeData;
        data->setImageData(QImage(10, 10, QImage::Format_RGB32));
        QGuiApplication::clipboard()->setMimeData(data);
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, presetRows);
    }

    void pasteReadsHugeText()
    {
        const QString digits(sampleSize(1000000, 100000000), '5');
        QGuiApplication::clipboard()->setText("7\t2\t3\t4\t5\t6\n" + digits);
        pasteParamsFromClipboard(pdx3);
        QCOMPARE(pdx3.paramList, Rows({{7.0F, 2.0F, 3.0F, 4.0F, 5.0F, 6.0F}}) + presetRows.mid(1));
        QGuiApplication::clipboard()->clear();
    }

    void shortcutsExchangeListAndRefreshTable()
    {
        MainWindow window;
        pdx3.paramList = presetRows; // not those that an earlier window saved
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QSignalSpy refreshed(window.ui->tableParams->model, &Model::dataChanged);
        for (QWidget *focused : {static_cast<QWidget *>(window.ui->tableParams), static_cast<QWidget *>(&window)}) {
            pdx3.paramList = presetRows;
            focused->setFocus();
            receiveInputEvent();
            QTRY_VERIFY(window.isActiveWindow());
            QTest::keyClick(window.windowHandle(), Qt::Key_C, Qt::ControlModifier);
            QCOMPARE(QGuiApplication::clipboard()->text().toUtf8(), textOf(presetRows));

            refreshed.clear();
            copyElsewhere(textOf(numberedRows()));
            QTest::keyClick(window.windowHandle(), Qt::Key_V, Qt::ControlModifier);
            QCOMPARE(pdx3.paramList, numberedRows());
            QCOMPARE(refreshed.count(), 1);
        }
    }
};

PENDRIX_APPLICATION_TEST_MAIN(ClipboardTest)
#include "ClipboardTest.moc"
