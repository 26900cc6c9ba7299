// The two boxes of the File menu.

#include "tests/e2e/Rows.h"

#include <QPixmap>
#include <QScreen>

#include <functional>

Q_DECLARE_METATYPE(std::function<void(WId)>)

class FileMenuTest : public QObject
{
    Q_OBJECT

    using Answer = std::function<void(WId)>;

    std::unique_ptr<RunningProgram> program;

    const QByteArray changed = withTop(presetText(), distinctRows());

    /// Opens an entry of the File menu, counted from 1, and gives its box.
    WId choose(int entry) const
    {
        program->click({20, 11});
        for (int i = 0; i < entry; ++i)
            RunningProgram::press({"Down"});
        RunningProgram::press({"Return"});
        return program->box();
    }

    /// Clicks at `point`, counted from the lower right corner, where the buttons are.
    static void clickNearTheEnd(WId box, QPoint point)
    {
        Desktop::click(box,
                       Desktop::geometryOf(box).translated(-Desktop::geometryOf(box).topLeft()).bottomRight() - point);
    }

private slots:
    void init()
    {
        program = std::make_unique<RunningProgram>();
        QVERIFY(program->start());
        RunningProgram::paste(textOf(distinctRows()));
        QCOMPARE(RunningProgram::copy(), changed);
    }

    void cleanup() { QCOMPARE(program->close(), 0); }

    void resets_data()
    {
        QTest::addColumn<std::function<void(WId)>>("answer");
        QTest::addColumn<bool>("resets");
        const auto press = [](const QStringList &keys) { return Answer([keys](WId) { RunningProgram::press(keys); }); };
        const auto clickAt = [](QPoint point) { return Answer([point](WId box) { clickNearTheEnd(box, point); }); };
        QTest::newRow("Escape") << press({"Escape"}) << false;
        QTest::newRow("Enter, for Cancel is the default") << press({"Return"}) << false;
        QTest::newRow("a click on Cancel") << clickAt({52, 24}) << false;
        QTest::newRow("the frame's close button") << Answer(Desktop::close) << false;
        QTest::newRow("a click on OK") << clickAt({136, 24}) << true;
        QTest::newRow("Tab to OK, and the space bar") << press({"Tab", "space"}) << true;
    }

    void resets()
    {
        QFETCH(std::function<void(WId)>, answer);
        QFETCH(bool, resets);
        const WId box = choose(1);
        QVERIFY(box);
        answer(box);
        QVERIFY(program->isAlone());
        QCOMPARE(RunningProgram::copy(), resets ? presetText() : changed);
    }

    void theResetIsWhatARestartFinds()
    {
        QVERIFY(choose(1));
        RunningProgram::press({"Tab", "space"});
        QVERIFY(program->isAlone());
        QCOMPARE(program->close(), 0);
        QVERIFY(program->start());
        QCOMPARE(RunningProgram::copy(), presetText());
    }

    void theAboutBox()
    {
        const auto colours = [](WId box, const std::function<bool(QRgb)> &isWanted) {
            const QRect place = Desktop::geometryOf(box);
            const QImage picture = QGuiApplication::primaryScreen()
                                       ->grabWindow(0, place.x(), place.y(), place.width(), place.height())
                                       .toImage();
            int count = 0;
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x)
                    count += isWanted(picture.pixel(x, y) & 0xFFFFFFU) ? 1 : 0;
            }
            return count;
        };
        const WId box = choose(2);
        QVERIFY(box);
        // Red headings and green text: the page has been rendered.
        VERIFY_SOON(colours(box, [](QRgb pixel) { return pixel == 0xFF0000; }) > 100);
        QVERIFY(colours(box, [](QRgb pixel) { return pixel == 0x008000; }) > 1000);
        RunningProgram::press({"Return"});
        QVERIFY(program->isAlone());

        QVERIFY(choose(2));
        RunningProgram::press({"Escape"});
        QVERIFY(program->isAlone());
        QCOMPARE(RunningProgram::copy(), changed);
    }

    void behindABoxTheCurveMovesAndTheTableDoesNot()
    {
        QVERIFY(program->findCells());
        QVERIFY(choose(1));
        QVERIFY(program->showsFrames(3));
        const QRect selection = selectionIn(program->picture());
        program->click(program->cell(3, 0)); // above the box
        QVERIFY(program->showsFrames(3));
        QCOMPARE(selectionIn(program->picture()), selection);
        RunningProgram::press({"Escape"});
        QVERIFY(program->isAlone());
        program->click(program->cell(3, 0));
        COMPARE_SOON(shownBy(*program), 3);
    }
};

PENDRIX_END_TO_END_MAIN(FileMenuTest)
#include "FileMenuTest.moc"
