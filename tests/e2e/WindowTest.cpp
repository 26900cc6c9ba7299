// The window's size, place and docks, in one run and in the next one.

#include "tests/e2e/Rows.h"

#include <QScreen>

class WindowTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<RunningProgram> program;

    void restart()
    {
        QCOMPARE(program->close(), 0);
        QVERIFY(program->start());
    }

private slots:
    void init()
    {
        program = std::make_unique<RunningProgram>();
        QVERIFY(program->start());
    }

    void cleanup() { QCOMPARE(program->close(), 0); }

    void aClosedTableStaysClosedUntilTheMenuBarIsAskedForIt()
    {
        const int width = viewIn(program->picture()).width();
        program->click({340, 48});
        VERIFY_SOON(viewIn(program->picture()).width() > width + 300);
        QVERIFY(program->showsFrames(2));
        for (int i = 0; i < 2; ++i) {
            restart();
            VERIFY_SOON(viewIn(program->picture()).width() > width + 300);
            // The rows are still there.
            QCOMPARE(RunningProgram::copy(), presetText());
        }
        program->drag({200, 11}, {200, 11}, {3});
        RunningProgram::press({"Down", "Return"});
        VERIFY_SOON(viewIn(program->picture()).width() < width + 300);
        program->click({60, 250});
        VERIFY_SOON(!selectionIn(program->picture()).isEmpty());
    }

    void columnWidths()
    {
        QVERIFY(program->findCells());
        const QPoint border(program->firstCell().right() + 1, program->columnTitle(0).y());
        program->drag(border, border + QPoint(-40, 0), {1});
        COMPARE_SOON(selectionIn(program->picture()).width(), program->firstCell().width() - 40);
        for (int i = 0; i < 2; ++i) {
            const QRect before = program->firstCell();
            restart();
            QVERIFY(program->findCells());
            QCOMPARE(program->firstCell().width(), before.width() - (i == 0 ? 40 : 0));
        }
    }

    void sizeAndPlace()
    {
        const QString id = QString::number(program->window());
        const QRect before = program->geometry();
        Desktop::touch({"windowmove", id, "100", "80", "windowsize", id, "851", "685"});
        COMPARE_SOON(program->geometry().size(), QSize(851, 685));
        VERIFY_SOON(program->geometry().left() < before.left() - 50);
        const QRect after = program->geometry();
        for (int i = 0; i < 2; ++i) {
            restart();
            COMPARE_SOON(program->geometry(), after);
        }
    }

    void theWholeScreen_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("withFrame");
        QTest::newRow("maximised") << "alt+F10" << true;
        QTest::newRow("full screen") << "alt+F11" << false;
    }

    void theWholeScreen()
    {
        QFETCH(QString, key);
        QFETCH(bool, withFrame);
        RunningProgram::paste(textOf(distinctRows()));
        const QRect before = program->geometry();
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const auto isWhole = [&] {
            const QRect now = program->geometry();
            return withFrame ? now.width() >= screen.width() - 4 && now.height() > screen.height() - 40 &&
                                   now.height() < screen.height()
                             : now == screen;
        };
        RunningProgram::press({key});
        VERIFY_SOON(isWhole());
        restart();
        VERIFY_SOON(isWhole());
        QVERIFY(program->findCells());
        program->click(program->cell(4, 1));
        COMPARE_SOON(shownBy(*program), 4); // which says that the picture fits the view

        RunningProgram::press({key});
        COMPARE_SOON(program->geometry(), before);
        program->click(program->cell(5, 1));
        COMPARE_SOON(shownBy(*program), 5);
    }

    void theSmallestWindow()
    {
        Desktop::touch({"windowsize", QString::number(program->window()), "1", "1"});
        VERIFY_SOON(program->geometry().width() < 400);
        const QSize smallest = program->geometry().size();
        QVERIFY(smallest.width() > 50 && smallest.height() > 50);
        QCOMPARE(RunningProgram::copy(), presetText());
    }

    void manySizesInARow()
    {
        RunningProgram::paste(textOf(distinctRows()));
        for (const QSize size :
             {QSize(400, 900), QSize(1200, 300), QSize(1270, 990), QSize(500, 400), QSize(900, 700)}) {
            Desktop::touch({"windowsize", QString::number(program->window()), QString::number(size.width()),
                            QString::number(size.height())});
            COMPARE_SOON(program->geometry().size(), size);
        }
        QVERIFY(program->findCells());
        program->click(program->cell(4, 1));
        COMPARE_SOON(shownBy(*program), 4); // which says that the picture fits the view
    }

    void twoAtOnce_data()
    {
        QTest::addColumn<bool>("firstClosesLast");
        QTest::newRow("the second closes last") << false;
        QTest::newRow("the first closes last") << true;
    }

    void twoAtOnce()
    {
        QFETCH(bool, firstClosesLast);
        RunningProgram second(program->settings());
        QVERIFY(second.start());
        QVERIFY(second.findCells()); // and the keys go there
        RunningProgram::paste("2\t2\t2\t2\t2\t2\n");
        QCOMPARE(RunningProgram::copy().left(12), QByteArray("2\t2\t2\t2\t2\t2\n"));
        Desktop::touch({"windowactivate", "--sync", QString::number(program->window())});
        QVERIFY(program->findCells());
        RunningProgram::paste("1\t1\t1\t1\t1\t1\n");
        QCOMPARE(RunningProgram::copy().left(12), QByteArray("1\t1\t1\t1\t1\t1\n"));

        QCOMPARE((firstClosesLast ? second : *program).close(), 0);
        QCOMPARE((firstClosesLast ? *program : second).close(), 0);
        QVERIFY(program->start());
        const QList<QByteArray> lines = presetText().split('\n');
        const QByteArray top = firstClosesLast ? "1\t1\t1\t1\t1\t1\n" : "2\t2\t2\t2\t2\t2\n";
        QCOMPARE(RunningProgram::copy(), top + lines.mid(1).join('\n'));
    }

    void editsSurvive()
    {
        QVERIFY(program->findCells());
        RunningProgram::type("12.5");
        QVERIFY(program->closeEditor("Return"));
        const QByteArray text = RunningProgram::copy();
        QVERIFY(text.startsWith("12.5\t2\t3\t"));
        for (int i = 0; i < 2; ++i) {
            restart();
            QCOMPARE(RunningProgram::copy(), text);
        }
    }
};

PENDRIX_END_TO_END_MAIN(WindowTest)
#include "WindowTest.moc"
