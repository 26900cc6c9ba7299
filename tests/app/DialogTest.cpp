// The two boxes of the File menu, driven by keys while they are open.

#include "app/MainWindow.h"

#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/support/ApplicationTest.h"
#include "ui_MainWindow.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTextDocument>
#include <QTimer>

#include <functional>
#include <memory>

Q_DECLARE_METATYPE(std::function<void(QMessageBox &)>)

namespace {

using Rows = QVector<QVector<float>>;

} // namespace

class DialogTest : public QObject
{
    Q_OBJECT

    Rows presetRows;
    std::unique_ptr<MainWindow> window;

    /// Triggers `action` and, once its box is open and active, does `answer` to it. True if that closed the box.
    bool answer(QAction *action, const std::function<void(QMessageBox &)> &answer)
    {
        bool answered = false;
        QTimer look;
        connect(&look, &QTimer::timeout, this, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            if (!box->isActiveWindow()) {
                box->activateWindow(); // there is no window manager to do it
                return;
            }
            look.stop();
            answer(*box);
            answered = true;
        });
        look.start(20);
        bool gaveUp = false;
        QTimer::singleShot(30000, &look, [&gaveUp] {
            gaveUp = true;
            if (QWidget *box = QApplication::activeModalWidget())
                box->close();
        });
        action->trigger();
        return answered && !gaveUp;
    }

    static void press(QMessageBox &box, Qt::Key key) { QTest::keyClick(box.windowHandle(), key); }

private slots:
    void initTestCase() { presetRows = pdx3.paramList; }

    void init()
    {
        QFile::remove(QSettings("quillmoss", "pdx3").fileName()); // what another window has left
        pdx3.resetParamList();
        window = std::make_unique<MainWindow>();
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        pdx3.paramList = Rows(64, QVector<float>(6, 3.0F));
    }

    void cleanup() { window.reset(); }

    void theResetBox()
    {
        QVERIFY(answer(window->ui->actionreset, [](QMessageBox &box) {
            QCOMPARE(box.text(), QString("This will reset parameters values to original preset"));
            QCOMPARE(box.informativeText(), QString("Do you want to reset values?"));
            QCOMPARE(box.standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
            QCOMPARE(box.defaultButton(), box.button(QMessageBox::Cancel));
            QCOMPARE(box.icon(), QMessageBox::NoIcon);
            QCOMPARE(box.windowTitle(), QString());
            QVERIFY(!box.parent());
            QVERIFY(box.isModal());
            press(box, Qt::Key_Escape);
        }));
    }

    void resetAnswers_data()
    {
        using Answer = std::function<void(QMessageBox &)>;
        QTest::addColumn<std::function<void(QMessageBox &)>>("how");
        QTest::addColumn<bool>("resets");
        QTest::newRow("Escape") << Answer([](QMessageBox &box) { press(box, Qt::Key_Escape); }) << false;
        QTest::newRow("Enter on the default") << Answer([](QMessageBox &box) { press(box, Qt::Key_Return); }) << false;
        QTest::newRow("closing it") << Answer([](QMessageBox &box) { box.close(); }) << false;
        QTest::newRow("a click on Cancel")
            << Answer([](QMessageBox &box) { QTest::mouseClick(box.button(QMessageBox::Cancel), Qt::LeftButton); })
            << false;
        QTest::newRow("a click on OK") << Answer([](QMessageBox &box) {
            QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton);
        }) << true;
        QTest::newRow("Tab to OK and Enter") << Answer([](QMessageBox &box) {
            for (int i = 0; i < 5 && !box.button(QMessageBox::Ok)->hasFocus(); ++i)
                press(box, Qt::Key_Tab);
            press(box, Qt::Key_Return);
        }) << true;
    }

    void resetAnswers()
    {
        QFETCH(std::function<void(QMessageBox &)>, how);
        QFETCH(bool, resets);
        pdx3.set(7);
        const Rows before = pdx3.paramList;
        QSignalSpy refreshed(window->ui->tableParams->model, &Model::dataChanged);
        QVERIFY(answer(window->ui->actionreset, how));
        QCOMPARE(pdx3.paramList, resets ? presetRows : before);
        QCOMPARE(refreshed.count(), resets ? 1 : 0);
        QVERIFY(pdx3.freq3 >= 4.0F && pdx3.phase1 == 0.43F); // the curve is still the eighth preset's
    }

    void resetRepairsAListOfAnyShape()
    {
        for (const Rows &rows : {Rows(), Rows(3), Rows(200, QVector<float>(2, 5.0F))}) {
            pdx3.paramList = rows;
            QVERIFY(answer(window->ui->actionreset,
                           [](QMessageBox &box) { QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton); }));
            QCOMPARE(pdx3.paramList, presetRows);
        }
    }

    void resetIsWhatARestartFinds()
    {
        QVERIFY(answer(window->ui->actionreset,
                       [](QMessageBox &box) { QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton); }));
        window.reset();
        pdx3.paramList.clear();
        window = std::make_unique<MainWindow>();
        QCOMPARE(pdx3.paramList, presetRows);
    }

    void theAnimationGoesOnBehindABox()
    {
        for (QAction *action : {window->ui->actionreset, window->ui->actionabout}) {
            QVERIFY(answer(action, [](QMessageBox &box) {
                const float freq1 = pdx3.freq1;
                QTRY_VERIFY(pdx3.freq1 > freq1 + 0.0015F); // four frames
                press(box, Qt::Key_Escape);
            }));
        }
    }

    void theAboutBox()
    {
        QVERIFY(answer(window->ui->actionabout, [this](QMessageBox &box) {
            QCOMPARE(box.parent(), window.get());
            QCOMPARE(box.windowTitle(), QString());
            QCOMPARE(box.text(), window->readTextFile(":/about.html"));
            QVERIFY(Qt::mightBeRichText(box.text()));
            const auto *label = box.findChild<QLabel *>("qt_msgbox_label");
            QVERIFY(label && label->textFormat() == Qt::AutoText);
            // The box fits on small screens.
            QVERIFY2(box.width() <= 600 && box.height() <= 800,
                     QByteArray::number(box.width()) + " x " + QByteArray::number(box.height()));
            const QString picture = qEnvironmentVariable("PENDRIX_ABOUT_PICTURE");
            if (!picture.isEmpty())
                QVERIFY(box.grab().save(picture));
            press(box, Qt::Key_Return);
        }));
    }

    void thePage()
    {
        const QString page = window->readTextFile(":/about.html");
        QVERIFY(page.startsWith("<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\""));
        QVERIFY(page.contains("charset=utf-8"));
        QVERIFY(page.contains("<body bgcolor=\"#d3d3d3\">"));
        QVERIFY(page.contains("<h1>Pendrix</h1>"));
        QVERIFY(page.contains("color: #ff0000; text-align: center"));
        QVERIFY(page.contains("color: #008000; font-family: verdana; font-size: 11pt; text-align: center"));
        QVERIFY(page.contains("<table border=\"1\" width=\"511\""));
        const QString plain = page.simplified();
        QVERIFY(plain.contains(
            "Define frequency parameters for x,y,z (ffre1,fre2,fre3) and phase1, phase2, color format or select from "
            "preset list, once modified parameters are saved, copy/paste from a spreadsheet in a 64 row x 6 column "
            "format. </p>"));
        QVERIFY(
            plain.contains("<p align=\"left\" style=\"text-align: left\"> Reset copies original preset values. </p>"));
        QVERIFY(plain.contains("values. </p> <h2>The pendulum drawing machine</h2> <p"));
        QVERIFY(plain.contains("href=\"https://quillmoss.example/\""));
        QVERIFY(plain.contains("href=\"mailto:pendrix@quillmoss.example\""));
        QVERIFY(plain.contains("It is built with the <a href=\"https://www.qt.io/\">Qt</a> framework."));
    }

    void textFiles()
    {
        const QTemporaryDir folder;
        const auto written = [&folder](const QByteArray &content) {
            QFile file(folder.filePath("file"));
            return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName()
                                                                                            : QString();
        };
        QCOMPARE(window->readTextFile(written("a\u00E9\n\r\nb")), QString::fromUtf8("a\u00E9\n\r\nb"));
        QCOMPARE(window->readTextFile(written(QByteArray("before\0after", 12))), QString("before"));
        QCOMPARE(window->readTextFile(written("")), QString());
        QCOMPARE(window->readTextFile(written("\xFF\xFE")), QString(2, QChar::ReplacementCharacter));
        QCOMPARE(window->readTextFile(folder.filePath("none")), QString());
        QCOMPARE(window->readTextFile(folder.path()), QString());
    }
};

PENDRIX_APPLICATION_TEST_MAIN(DialogTest)
#include "DialogTest.moc"
