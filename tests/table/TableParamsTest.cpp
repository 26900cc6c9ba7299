#include "table/TableParams.h"

#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/FloatBits.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QSignalSpy>

#include <cmath>
#include <limits>
#include <utility>

namespace {

/// The current parameters of the engine, as a row.
QVector<float> onScreen()
{
    return {pdx3.freq1, pdx3.freq2, pdx3.freq3, pdx3.phase1, pdx3.phase2, static_cast<float>(pdx3.colorMode)};
}

} // namespace

class TableParamsTest : public QObject
{
    Q_OBJECT

    QVector<QVector<float>> presetRows;
    TableParams *table = nullptr;

    QPoint cell(int row, int column) const { return table->visualRect(table->model->index(row, column)).center(); }

    void click(int row, int column, Qt::KeyboardModifiers modifiers = {}) const
    {
        table->scrollTo(table->model->index(row, column));
        QTest::mouseClick(table->viewport(), Qt::LeftButton, modifiers, cell(row, column));
    }

    void doubleClick(int row, int column) const
    {
        click(row, column);
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, cell(row, column));
    }

    QLineEdit *editor() const { return table->viewport()->findChild<QLineEdit *>(); }

    /// Types `text` over the open editor's and ends the edit with `key`.
    void enter(const QString &text, Qt::Key key = Qt::Key_Return) const
    {
        QVERIFY(editor());
        editor()->selectAll();
        QTest::keyClick(editor(), Qt::Key_Delete);
        QTest::keyClicks(editor(), text);
        QTest::keyClick(editor(), key);
        QTRY_VERIFY(!editor()); // the toolkit takes the value over in a later event
    }

private slots:
    void initTestCase() { presetRows = pdx3.paramList; }

    void init()
    {
        pdx3.paramList = presetRows;
        // Every row with values of its own, so that each can be told on the screen.
        for (int row = 12; row < 64; ++row)
            pdx3.paramList[row] = {float(row), 2.0F, 3.0F, 0.5F, 0.25F, float(row % 5)};
        pdx3.set(0);

        table = new TableParams;
        table->resize(700, 500);
        table->show();
        table->activateWindow(); // there is no window manager to do it
        QVERIFY(QTest::qWaitForWindowActive(table));
    }

    void cleanup()
    {
        delete table;
        table = nullptr;
    }

    void metaObject()
    {
        const QMetaObject &meta = TableParams::staticMetaObject;
        QCOMPARE(QByteArray(meta.className()), QByteArray("TableParams"));
        QCOMPARE(meta.superClass(), &QTableView::staticMetaObject);
        QCOMPARE(meta.methodCount(), QTableView::staticMetaObject.methodCount());
        QCOMPARE(meta.propertyCount(), QTableView::staticMetaObject.propertyCount());
    }

    void ownsItsModel()
    {
        QVERIFY(table->model);
        QCOMPARE(table->QTableView::model(), table->model);
        QCOMPARE(table->model->parent(), table);
    }

    void keepsTheDefaultsOfATable()
    {
        const QTableView plain;
        QCOMPARE(table->selectionMode(), plain.selectionMode());
        QCOMPARE(table->selectionBehavior(), plain.selectionBehavior());
        QCOMPARE(table->editTriggers(), plain.editTriggers());
        QCOMPARE(table->showGrid(), plain.showGrid());
        QCOMPARE(table->alternatingRowColors(), plain.alternatingRowColors());
        QCOMPARE(table->horizontalHeader()->sectionsClickable(), plain.horizontalHeader()->sectionsClickable());
        QCOMPARE(table->verticalHeader()->sectionResizeMode(0), QHeaderView::Interactive);
    }

    void selectsNothingByItself()
    {
        QVERIFY(!table->selectionModel()->hasSelection());
        pdx3.paramList[0][0] = 42.0F;
        table->model->refresh();
        QTest::qWait(50);
        QCOMPARE(onScreen(), presetRows.at(0));
    }

    void aClickShowsItsRow()
    {
        for (int column = 0; column < 6; ++column) {
            click(1, column);
            QCOMPARE(onScreen(), presetRows.at(1));
            click(4, column);
            QCOMPARE(onScreen(), presetRows.at(4));
        }
        click(63, 0);
        QCOMPARE(onScreen(), pdx3.paramList.at(63));
    }

    void blankRows()
    {
        pdx3.paramList = presetRows;
        click(20, 2);
        QCOMPARE(onScreen(), QVector<float>(6, 0.0F));
        QCOMPARE(pdx3.points.size(), 16666);
    }

    void theHandlerRunsInsideTheSelectionChange()
    {
        table->selectionModel()->select(table->model->index(8, 1), QItemSelectionModel::ClearAndSelect);
        QCOMPARE(onScreen(), presetRows.at(8));
    }

    void aShiftClickShowsOneRowOfItsRange()
    {
        click(2, 1);
        const QSignalSpy changed(table->selectionModel(), &QItemSelectionModel::selectionChanged);
        click(6, 1, Qt::ShiftModifier);
        QCOMPARE(table->selectionModel()->selectedIndexes().size(), 5);
        const auto added = changed.at(0).at(0).value<QItemSelection>();
        QCOMPARE(added.indexes().size(), 4);
        QCOMPARE(onScreen(), pdx3.paramList.at(added.indexes().first().row()));
    }

    void aControlClickAddsItsRowAndTakesNoneAway()
    {
        click(3, 0);
        click(5, 2, Qt::ControlModifier);
        QCOMPARE(onScreen(), presetRows.at(5));
        QCOMPARE(table->selectionModel()->selectedIndexes().size(), 2);

        click(5, 2, Qt::ControlModifier);
        QCOMPARE(onScreen(), presetRows.at(5));
        click(3, 0, Qt::ControlModifier);
        QVERIFY(!table->selectionModel()->hasSelection());
        QCOMPARE(onScreen(), presetRows.at(5));
    }

    void aClickOnTheSelectedCellDoesNotApplyItAgain()
    {
        click(3, 0);
        pdx3.paramList[3][0] = 7.0F;
        click(3, 0);
        QCOMPARE(onScreen(), presetRows.at(3));
        click(4, 0);
        click(3, 0);
        QCOMPARE(onScreen(), pdx3.paramList.at(3));
        QCOMPARE(pdx3.freq1, 7.0F);
    }

    void theAnimationStartsAgainFromTheRow()
    {
        click(3, 0);
        pdx3.next();
        click(3, 1);
        QCOMPARE(onScreen(), presetRows.at(3));
    }

    void arrowKeysMoveThroughTheRows()
    {
        click(3, 0);
        QTest::keyClick(table, Qt::Key_Down);
        QCOMPARE(onScreen(), presetRows.at(4));
        QTest::keyClick(table, Qt::Key_Up);
        QTest::keyClick(table, Qt::Key_Up);
        QCOMPARE(onScreen(), presetRows.at(2));
        QTest::keyClick(table, Qt::Key_Right);
        QCOMPARE(onScreen(), presetRows.at(2));
        QTest::keyClick(table, Qt::Key_PageDown);
        QCOMPARE(onScreen(), pdx3.paramList.at(table->currentIndex().row()));
        QVERIFY(table->currentIndex().row() > 5);

        // With Control the current cell moves and the selection, and with it the curve, stays.
        const QVector<float> row = onScreen();
        QTest::keyClick(table, Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(table->currentIndex().row(), 63);
        QCOMPARE(onScreen(), row);
        QTest::keyClick(table, Qt::Key_Left);
        QCOMPARE(onScreen(), pdx3.paramList.at(63));
    }

    void aRowLabelSelectsTheWholeRow()
    {
        QHeaderView *labels = table->verticalHeader();
        const QPoint at(labels->width() / 2, labels->sectionViewportPosition(7) + labels->sectionSize(7) / 2);
        QTest::mouseClick(labels->viewport(), Qt::LeftButton, {}, at);
        QCOMPARE(table->selectionModel()->selectedIndexes().size(), 6);
        QCOMPARE(onScreen(), presetRows.at(7));
    }

    void aColumnTitleSelectsTheColumnAndShowsItsFirstRow()
    {
        click(7, 1);
        QHeaderView *titles = table->horizontalHeader();
        const QPoint at(titles->sectionViewportPosition(3) + titles->sectionSize(3) / 2, titles->height() / 2);
        QTest::mouseClick(titles->viewport(), Qt::LeftButton, {}, at);
        QCOMPARE(table->selectionModel()->selectedIndexes().size(), 64);
        QCOMPARE(onScreen(), presetRows.at(0));
    }

    void aDoubleClickEdits()
    {
        doubleClick(9, 3);
        enter("2.5");
        QCOMPARE(pdx3.paramList.at(9).at(3), 2.5F);
        // The row on screen is the copy from before the edit.
        QCOMPARE(onScreen(), presetRows.at(9));
        click(8, 3);
        click(9, 3);
        QCOMPARE(onScreen(), pdx3.paramList.at(9));
        QCOMPARE(pdx3.phase1, 2.5F);
    }

    void typingEdits()
    {
        click(2, 0);
        QTest::keyClick(table->viewport(), Qt::Key_7);
        QVERIFY(editor());
        QCOMPARE(editor()->text(), QString("7"));
        enter("7.25");
        QCOMPARE(pdx3.paramList.at(2).at(0), 7.25F);
    }

    void tabGoesOnToTheNextCell()
    {
        doubleClick(2, 0);
        editor()->setText("7.25");
        QTest::keyClick(editor(), Qt::Key_Tab);
        QTRY_COMPARE(pdx3.paramList.at(2).at(0), 7.25F);
        QTRY_COMPARE(table->currentIndex(), table->model->index(2, 1));
    }

    void escapeKeepsTheValue()
    {
        doubleClick(9, 3);
        enter("2.5", Qt::Key_Escape);
        QCOMPARE(pdx3.paramList.at(9), presetRows.at(9));
    }

    void rubbishKeepsTheValue_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text : {"abc", "", " ", "1,5", "1e39", "--1", "0x10", "1 2"})
            QTest::newRow(text) << QString(text);
    }

    void rubbishKeepsTheValue()
    {
        QFETCH(QString, text);
        doubleClick(9, 3);
        enter(text);
        QCOMPARE(pdx3.paramList.at(9), presetRows.at(9));
        QCOMPARE(table->model->data(table->model->index(9, 3)).toFloat(), 0.21F);
    }

    void strangeNumbersCanBeTypedAndShown()
    {
        const float inf = std::numeric_limits<float>::infinity();
        const std::pair<const char *, float> typed[] = {{"inf", inf},  {"-inf", -inf},    {"1e38", 1e38F},
                                                        {"-0", -0.0F}, {"1e-44", 1e-44F}, {"nan", std::nanf("")}};
        for (const auto &[text, value] : typed) {
            for (int column = 0; column < 6; ++column) {
                doubleClick(9, column);
                enter(text);
                const float stored = pdx3.paramList.at(9).at(column);
                QVERIFY2(sameFloat(value, stored), text);
                click(8, column);
                click(9, column);
                QCOMPARE(pdx3.points.size(), 16666);
                QVERIFY(!table->grab().isNull());
            }
        }
    }

    void refreshShowsWhatOthersWrote()
    {
        doubleClick(1, 1);
        QVERIFY(editor());
        pdx3.paramList[1][1] = 77.0F;
        QCOMPARE(editor()->text(), QString("3"));
        table->model->refresh();
        QCOMPARE(editor()->text(), QString("77"));
    }

    void refreshRepaintsEveryVisibleCell()
    {
        QTest::qWait(100);
        QRegion painted;
        struct Watch : QObject
        {
            explicit Watch(QRegion *region) : painted(region) {}
            bool eventFilter(QObject * /*object*/, QEvent *event) override
            {
                if (event->type() == QEvent::Paint)
                    *painted += static_cast<QPaintEvent *>(event)->region();
                return false;
            }
            QRegion *painted;
        } watch(&painted);
        table->viewport()->installEventFilter(&watch);
        pdx3.paramList[0][0] = 88.0F;
        QTest::qWait(100);
        QVERIFY(painted.isEmpty()); // nothing tells the view of a write beside the model
        table->model->refresh();
        QTRY_COMPARE(painted.boundingRect(), table->viewport()->rect());
    }

    void aShorterListIsSurvived()
    {
        click(5, 0);
        pdx3.paramList.resize(3);
        table->selectionModel()->select(table->QTableView::model()->index(1, 0), QItemSelectionModel::ClearAndSelect);
        QCOMPARE(onScreen(), presetRows.at(1));
        QVERIFY(!table->grab().isNull());
        QTest::keyClick(table, Qt::Key_Down);
        pdx3.paramList = presetRows;
    }
};

PENDRIX_APPLICATION_TEST_MAIN(TableParamsTest)
#include "TableParamsTest.moc"
