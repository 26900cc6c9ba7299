// The two dialogs of the File menu.

#include "app/MainWindow.h"

#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/support/ApplicationTest.h"
#include "ui_MainWindow.h"

#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTextDocument>
#include <QTimer>

#include <functional>

using Rows = QVector<QVector<float>>;

class DialogTest : public QObject
{
    Q_OBJECT

    const Rows presetRows = pdx3.paramList;
    MainWindow window;

    /// Triggers `action` and calls `answer` with its open dialog. Returns whether that closed the dialog.
    static bool answer(QAction *action, const std::function<void(QMessageBox &)> &answer)
    {
        bool isAnswered = false;
        QTimer poll;
        connect(&poll, &QTimer::timeout, &poll, [&] {
            auto *dialog = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            if (!dialog->isActiveWindow()) {
                dialog->activateWindow(); // without a window manager, nothing else does
                return;
            }
            poll.stop();
            const float freq1 = pdx3.freq1;
            QTRY_VERIFY(pdx3.freq1 > freq1 + 0.0015F); // the animation continues for four frames
            answer(*dialog);
            isAnswered = true;
        });
        poll.start(20);
        QTimer::singleShot(30000, &poll, [&isAnswered] {
            isAnswered = false;
            if (QWidget *dialog = QApplication::activeModalWidget())
                dialog->close();
        });
        action->trigger();
        return isAnswered;
    }

private slots:
    void initTestCase()
    {
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
    }

    void resetDialogAsksWithCancelAsDefault()
    {
        QVERIFY(answer(window.ui->actionreset, [](QMessageBox &dialog) {
            QCOMPARE(dialog.text(), QString("This will reset parameters values to original preset"));
            QCOMPARE(dialog.informativeText(), QString("Do you want to reset values?"));
            QCOMPARE(dialog.standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
            QCOMPARE(dialog.defaultButton(), dialog.button(QMessageBox::Cancel));
            QCOMPARE(dialog.icon(), QMessageBox::NoIcon);
            QCOMPARE(dialog.windowTitle(), QString());
            QVERIFY(!dialog.parent());
            dialog.close();
        }));
    }

    void resetRestoresPresetsAfterOkOnly_data()
    {
        QTest::addColumn<int>("key"); // 0: a click on OK
        QTest::addColumn<bool>("isReset");
        QTest::newRow("Escape") << int(Qt::Key_Escape) << false;
        QTest::newRow("Return") << int(Qt::Key_Return) << false;
        QTest::newRow("OK") << 0 << true;
    }

    void resetRestoresPresetsAfterOkOnly()
    {
        QFETCH(int, key);
        QFETCH(bool, isReset);
        pdx3.set(7);
        for (const Rows &rows : {Rows(64, QVector<float>(6, 3.0F)), Rows(), Rows(200, QVector<float>(2, 5.0F))}) {
            pdx3.paramList = rows;
            QSignalSpy refreshed(window.ui->tableParams->model, &Model::dataChanged);
            QVERIFY(answer(window.ui->actionreset, [key](QMessageBox &dialog) {
                if (key == 0)
                    dialog.button(QMessageBox::Ok)->click();
                else
                    QTest::keyClick(dialog.windowHandle(), Qt::Key(key));
            }));
            QCOMPARE(pdx3.paramList, isReset ? presetRows : rows);
            QCOMPARE(refreshed.count(), isReset ? 1 : 0);
        }
        QVERIFY(pdx3.freq3 >= 4.0F && pdx3.phase1 == 0.43F); // still the curve of preset 7
    }

    void aboutDialogShowsPage()
    {
        QVERIFY(answer(window.ui->actionabout, [this](QMessageBox &dialog) {
            QCOMPARE(dialog.parent(), &window);
            QCOMPARE(dialog.windowTitle(), QString());
            QCOMPARE(dialog.text(), window.readTextFile(":/about.html"));
            QCOMPARE(dialog.textFormat(), Qt::AutoText);
            QVERIFY(Qt::mightBeRichText(dialog.text()));
            // Fits on small screens.
            QVERIFY2(dialog.width() <= 600 && dialog.height() <= 800,
                     QByteArray::number(dialog.width()) + " x " + QByteArray::number(dialog.height()));
            QTest::keyClick(dialog.windowHandle(), Qt::Key_Return);
        }));
    }

    void pageHasRequiredContent()
    {
        const QString text = window.readTextFile(":/about.html");
        QVERIFY2(text.size() >= 4300 && text.size() <= 4500, QByteArray::number(text.size()));
        const QString page = text.simplified();
        QVERIFY(page.startsWith("<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\""));
        for (const char *part : {
                 "charset=utf-8",
                 "<body bgcolor=\"#d3d3d3\">",
                 "<h1>Pendrix</h1>",
                 "color: #ff0000; text-align: center",
                 "color: #008000; font-family: verdana; font-size: 11pt; text-align: center",
                 "<table border=\"1\" width=\"511\"",
                 // NOLINTNEXTLINE(bugprone-suspicious-missing-comma)
                 "Define frequency parameters for x,y,z (ffre1,fre2,fre3) and phase1, phase2, color format or select "
                 "from preset list, once modified parameters are saved, copy/paste from a spreadsheet in a 64 row x 6 "
                 "column format. </p>",
                 "<p align=\"left\" style=\"text-align: left\"> Reset copies original preset values. </p>",
                 "values. </p> <h2>The pendulum drawing machine</h2> <p",
                 "href=\"https://quillmoss.example/\"",
                 "href=\"mailto:pendrix@quillmoss.example\"",
                 "It is built with the <a href=\"https://www.qt.io/\">Qt</a> framework.",
             })
            QVERIFY2(page.contains(part), part);
    }

    void textFilesAreReadAsUtf8UpToZeroByte()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("file");
        const struct
        {
            QByteArray content;
            QString text;
        } rows[] = {
            {"a\u00E9\n\r\nb", QString::fromUtf8("a\u00E9\n\r\nb")},
            {QByteArray("before\0after", 12), "before"},
            {"", ""},
            {"\xFF\xFE", QString(2, QChar::ReplacementCharacter)},
        };
        for (const auto &row : rows) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(row.content) == row.content.size());
            file.close();
            QCOMPARE(window.readTextFile(path), row.text);
        }
        QCOMPARE(window.readTextFile(folder.filePath("none")), QString());
        QCOMPARE(window.readTextFile(folder.path()), QString());
    }
};

PENDRIX_APPLICATION_TEST_MAIN(DialogTest)
#include "DialogTest.moc"
