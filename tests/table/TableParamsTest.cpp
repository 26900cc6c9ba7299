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
#include <memory>
#include <utility>

namespace {

/// Returns the engine's current parameters as a row.
QVector<float> currentRow()
{
    return {pdx3.freq1, pdx3.freq2, pdx3.freq3, pdx3.phase1, pdx3.phase2, static_cast<float>(pdx3.colorMode)};
}

/// Counts the paints of a widget's whole area.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget) : QObject(widget) { widget->installEventFilter(this); }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            ++all;
            if (static_cast<QPaintEvent *>(event)->region().boundingRect() == static_cast<QWidget *>(object)->rect())
                ++whole;
        }
        return false;
    }

    int all = 0;
    int whole = 0;
};

} // namespace

class TableParamsTest : public QObject
{
    Q_OBJECT

    const QVector<QVector<float>> presetRows = pdx3.paramList;
    std::unique_ptr<TableParams> table;

    void click(int row, int column, Qt::KeyboardModifiers modifiers = {}) const
    {
        const QModelIndex index = table->model->index(row, column);
        table->scrollTo(index);
        QTest::mouseClick(table->viewport(), Qt::LeftButton, modifiers, table->visualRect(index).center());
    }

    void doubleClick(int row, int column) const
    {
        click(row, column);
        const QPoint middle = table->visualRect(table->model->index(row, column)).center();
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, middle);
    }

    QLineEdit *editor() const { return table->viewport()->findChild<QLineEdit *>(); }

    /// Replaces the open editor's text by `text` and closes the editor with `key`.
    void enter(const QString &text, Qt::Key key = Qt::Key_Return) const
    {
        QVERIFY(editor());
        editor()->selectAll();
        QTest::keyClick(editor(), Qt::Key_Delete);
        QTest::keyClicks(editor(), text);
        QTest::keyClick(editor(), key);
        QTRY_VERIFY(!editor()); // Qt commits the value in a later event
    }

private slots:
    void init()
    {
        pdx3.paramList = presetRows;
        for (int row = 12; row < 64; ++row)
            pdx3.paramList[row] = {float(row), 2.0F, 3.0F, 0.5F, 0.25F, float(row % 5)};
        pdx3.set(0);

        table = std::make_unique<TableParams>();
        table->resize(700, 500);
        table->show();
        table->activateWindow(); // there is no window manager
        QVERIFY(QTest::qWaitForWindowActive(table.get()));
    }

    void cleanup() { table.reset(); }

    void isPlainTableViewOwningModel()
    {
        QCOMPARE(QByteArray(TableParams::staticMetaObject.className()), QByteArray("TableParams"));
        QVERIFY(table->model);
        QCOMPARE(table->QTableView::model(), table->model);
        QCOMPARE(table->model->parent(), table.get());

        const QTableView plain;
        QCOMPARE(table->selectionMode(), plain.selectionMode());
        QCOMPARE(table->selectionBehavior(), plain.selectionBehavior());
        QCOMPARE(table->editTriggers(), plain.editTriggers());
        QCOMPARE(table->showGrid(), plain.showGrid());
        QCOMPARE(table->alternatingRowColors(), plain.alternatingRowColors());
    }

    void startsWithoutSelection()
    {
        QVERIFY(!table->selectionModel()->hasSelection());
        pdx3.paramList[0][0] = 42.0F;
        table->model->refresh();
        QCOMPARE(currentRow(), presetRows.at(0));
    }

    void clickAppliesRow()
    {
        for (int column = 0; column < 6; ++column) {
            click(1, column);
            QCOMPARE(currentRow(), presetRows.at(1));
            click(4, column);
            QCOMPARE(currentRow(), presetRows.at(4));
        }
        click(63, 0);
        QCOMPARE(currentRow(), pdx3.paramList.at(63));
        pdx3.paramList[20] = QVector<float>(6, 0.0F);
        click(20, 2);
        QCOMPARE(currentRow(), QVector<float>(6, 0.0F));
        QCOMPARE(pdx3.points.size(), 16666);
    }

    void selectionAppliesRowSynchronously()
    {
        table->selectionModel()->select(table->model->index(8, 1), QItemSelectionModel::ClearAndSelect);
        QCOMPARE(currentRow(), presetRows.at(8));
    }

    void shiftClickAppliesFirstAddedRow()
    {
        click(2, 1);
        const QSignalSpy changed(table->selectionModel(), &QItemSelectionModel::selectionChanged);
        click(6, 1, Qt::ShiftModifier);
        QCOMPARE(table->selectionModel()->selectedIndexes().size(), 5);
        const auto added = changed.at(0).at(0).value<QItemSelection>();
        QCOMPARE(added.indexes().size(), 4);
        QCOMPARE(currentRow(), pdx3.paramList.at(added.indexes().first().row()));
    }

    void controlClickAddsRowAndDeselectingAppliesNone()
    {
        click(3, 0);
        click(5, 2, Qt::ControlModifier);
        QCOMPARE(currentRow(), presetRows.at(5));
        QCOMPARE(table->selectionModel()->selectedIndexes().size(), 2);
        click(5, 2, Qt::ControlModifier);
        click(3, 0, Qt::ControlModifier);
        QVERIFY(!table->selectionModel()->hasSelection());
        QCOMPARE(currentRow(), presetRows.at(5));
    }

    void clickOnSelectedCellAppliesNothing()
    {
        click(3, 0);
        pdx3.paramList[3][0] = 7.0F;
        click(3, 0);
        QCOMPARE(currentRow(), presetRows.at(3));
        click(3, 1); // another cell of the same row
        QCOMPARE(currentRow(), pdx3.paramList.at(3));
        QCOMPARE(pdx3.freq1, 7.0F);
    }

    void keysApplyRows()
    {
        click(3, 0);
        QTest::keyClick(table.get(), Qt::Key_Down);
        QCOMPARE(currentRow(), presetRows.at(4));
        QTest::keyClick(table.get(), Qt::Key_Up);
        QTest::keyClick(table.get(), Qt::Key_Up);
        QCOMPARE(currentRow(), presetRows.at(2));
        QTest::keyClick(table.get(), Qt::Key_PageDown);
        QVERIFY(table->currentIndex().row() > 5);
        QCOMPARE(currentRow(), pdx3.paramList.at(table->currentIndex().row()));

        // Ctrl moves the current cell and keeps the selection.
        const QVector<float> row = currentRow();
        QTest::keyClick(table.get(), Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(table->currentIndex().row(), 63);
        QCOMPARE(currentRow(), row);
    }

    void headersApplyRowAndFirstRow()
    {
        const QHeaderView *labels = table->verticalHeader();
        const QPoint label(labels->width() / 2, labels->sectionViewportPosition(7) + labels->sectionSize(7) / 2);
        QTest::mouseClick(labels->viewport(), Qt::LeftButton, {}, label);
        QCOMPARE(table->selectionModel()->selectedIndexes().size(), 6);
        QCOMPARE(currentRow(), presetRows.at(7));

        const QHeaderView *titles = table->horizontalHeader();
        const QPoint title(titles->sectionViewportPosition(3) + titles->sectionSize(3) / 2, titles->height() / 2);
        QTest::mouseClick(titles->viewport(), Qt::LeftButton, {}, title);
        QCOMPARE(table->selectionModel()->selectedIndexes().size(), 64);
        QCOMPARE(currentRow(), presetRows.at(0));
    }

    void editReachesCurveWhenRowIsSelectedAgain()
    {
        doubleClick(9, 3);
        enter("2.5");
        QCOMPARE(pdx3.paramList.at(9).at(3), 2.5F);
        QCOMPARE(currentRow(), presetRows.at(9));
        click(8, 3);
        click(9, 3);
        QCOMPARE(currentRow(), pdx3.paramList.at(9));
    }

    void typingReplacesValueAndTabContinues()
    {
        click(2, 0);
        QTest::keyClick(table->viewport(), Qt::Key_7);
        QVERIFY(editor());
        QCOMPARE(editor()->text(), QString("7"));
        QTest::keyClick(editor(), Qt::Key_Tab);
        QTRY_COMPARE(pdx3.paramList.at(2).at(0), 7.0F);
        QTRY_COMPARE(table->currentIndex(), table->model->index(2, 1));
    }

    void escapeAndInvalidTextKeepValue()
    {
        doubleClick(9, 3);
        enter("2.5", Qt::Key_Escape);
        QCOMPARE(pdx3.paramList.at(9), presetRows.at(9));
        for (const char *text : {"abc", "", " ", "1,5", "1e39", "--1", "0x10", "1 2"}) {
            doubleClick(9, 3);
            enter(text);
            QVERIFY2(pdx3.paramList.at(9) == presetRows.at(9), text);
        }
    }

    void unusualNumbersCanBeTypedAndShown()
    {
        const float inf = std::numeric_limits<float>::infinity();
        const std::pair<const char *, float> typed[] = {{"inf", inf},  {"-inf", -inf},    {"1e38", 1e38F},
                                                        {"-0", -0.0F}, {"1e-44", 1e-44F}, {"nan", std::nanf("")}};
        int column = 0;
        for (const auto &[text, value] : typed) {
            doubleClick(9, column);
            enter(text);
            QVERIFY2(sameFloat(value, pdx3.paramList.at(9).at(column)), text);
            click(8, column);
            click(9, column);
            QCOMPARE(pdx3.points.size(), 16666);
            QVERIFY(!table->grab().isNull());
            ++column;
        }
    }

    void refreshUpdatesEditorAndRepaintsAll()
    {
        doubleClick(1, 1);
        QVERIFY(editor());
        pdx3.paramList[1][1] = 77.0F;
        QCOMPARE(editor()->text(), QString("3"));
        table->model->refresh();
        QCOMPARE(editor()->text(), QString("77"));
        enter("77", Qt::Key_Escape);

        QCoreApplication::processEvents();
        PaintCounter paints(table->viewport());
        pdx3.paramList[0][0] = 88.0F;
        QTest::qWait(50);
        QCOMPARE(paints.all, 0); // the view does not notice
        table->model->refresh();
        QTRY_VERIFY(paints.whole > 0);
    }

    void survivesShortenedList()
    {
        click(5, 0);
        pdx3.paramList.resize(3);
        QVERIFY(!table->grab().isNull());
        table->selectionModel()->select(table->model->index(1, 0), QItemSelectionModel::ClearAndSelect);
        QCOMPARE(currentRow(), presetRows.at(1));
        QTest::keyClick(table.get(), Qt::Key_Down);
    }
};

PENDRIX_APPLICATION_TEST_MAIN(TableParamsTest)
#include "TableParamsTest.moc"
