#include "table/Model.h"

#include "engine/Pendrix3D.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <limits>

class ModelTest : public QObject
{
    Q_OBJECT

    const QVector<QVector<float>> rows = pdx3.paramList;
    QObject parent;
    Model *const model = new Model(&parent);

private slots:
    void cleanup() { pdx3.paramList = rows; }

    void belongsToParentWithoutMetaObject()
    {
        QCOMPARE(model->parent(), &parent);
        QCOMPARE(model->metaObject(), &QAbstractTableModel::staticMetaObject);
    }

    void countsRowsAndColumnsForAnyParent()
    {
        QCOMPARE(model->rowCount(), 64);
        QCOMPARE(model->columnCount(), 6);
        QCOMPARE(model->rowCount(model->index(3, 3)), 64);
        QCOMPARE(model->columnCount(model->index(3, 3)), 6);
        pdx3.paramList.resize(5);
        QCOMPARE(model->rowCount(), 5);
    }

    void showsRightAlignedFloatsInEditableCells()
    {
        for (int row = 0; row < 64; ++row) {
            for (int column = 0; column < 6; ++column) {
                const QModelIndex index = model->index(row, column);
                for (const int role : {int(Qt::DisplayRole), int(Qt::EditRole)}) {
                    const QVariant value = model->data(index, role);
                    QCOMPARE(value.userType(), int(QMetaType::Float));
                    QCOMPARE(value.value<float>(), pdx3.paramList.at(row).at(column));
                }
                QCOMPARE(model->data(index, Qt::TextAlignmentRole).userType(), int(QMetaType::Int));
                QCOMPARE(model->data(index, Qt::TextAlignmentRole).toInt(), 2);
                QCOMPARE(model->flags(index),
                         Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable | Qt::ItemNeverHasChildren);
            }
        }
        for (const int role : {int(Qt::DecorationRole), int(Qt::ToolTipRole), int(Qt::FontRole),
                               int(Qt::BackgroundRole), int(Qt::CheckStateRole), int(Qt::UserRole), -1})
            QVERIFY(!model->data(model->index(1, 1), role).isValid());
    }

    void namesColumnsAndNumbersRows()
    {
        const QStringList titles = {"freq1", "freq2", "freq3", "phase1", "phase2", "color"};
        for (int column = 0; column < 6; ++column)
            QCOMPARE(model->headerData(column, Qt::Horizontal), QVariant(titles.at(column)));
        QCOMPARE(model->headerData(0, Qt::Vertical), QVariant("1"));
        QCOMPARE(model->headerData(63, Qt::Vertical), QVariant("64"));
        for (const int role : {int(Qt::EditRole), int(Qt::ToolTipRole), int(Qt::TextAlignmentRole)}) {
            QVERIFY(!model->headerData(0, Qt::Horizontal, role).isValid());
            QVERIFY(!model->headerData(0, Qt::Vertical, role).isValid());
        }
    }

    void editStoresConvertibleValues_data()
    {
        const float inf = std::numeric_limits<float>::infinity();
        const float unchanged = std::numeric_limits<float>::lowest();
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<float>("stored");
        QTest::newRow("2.5") << QVariant("2.5") << 2.5F;
        QTest::newRow("blanks around") << QVariant("  -3e-2 ") << -3e-2F;
        QTest::newRow("double") << QVariant(0.1) << 0.1F;
        QTest::newRow("int") << QVariant(7) << 7.0F;
        QTest::newRow("largest") << QVariant("3.4028234e38") << 3.4028234e38F;
        QTest::newRow("infinite") << QVariant("inf") << inf;
        QTest::newRow("minus infinite") << QVariant("-inf") << -inf;
        QTest::newRow("minus zero") << QVariant("-0") << -0.0F;
        QTest::newRow("letters") << QVariant("abc") << unchanged;
        QTest::newRow("empty") << QVariant("") << unchanged;
        QTest::newRow("decimal comma") << QVariant("2,5") << unchanged;
        QTest::newRow("trailing letter") << QVariant("2.5x") << unchanged;
        QTest::newRow("beyond a float") << QVariant("1e39") << unchanged;
        QTest::newRow("closer to zero than any float") << QVariant("1e-50") << unchanged;
        QTest::newRow("beyond a double") << QVariant("1e400") << unchanged;
        QTest::newRow("invalid") << QVariant() << unchanged;
        QTest::newRow("list") << QVariant(QVariantList{1, 2}) << unchanged;
        QTest::newRow("megabytes") << QVariant(QString(5000000, '7')) << unchanged;
    }

    void editStoresConvertibleValues()
    {
        QFETCH(QVariant, value);
        QFETCH(float, stored);
        const QSignalSpy changed(model, &Model::dataChanged);
        pdx3.set(9);
        pdx3.paramList[9][3] = std::numeric_limits<float>::lowest();
        QVector<QVector<float>> expected = pdx3.paramList;
        expected[9][3] = stored;

        QCOMPARE(model->setData(model->index(9, 3), value), true);
        QCOMPARE(pdx3.paramList, expected);
        QCOMPARE(std::signbit(pdx3.paramList.at(9).at(3)), std::signbit(stored));
        QCOMPARE(changed.count(), 0);
        QCOMPARE(pdx3.phase1, 0.21F); // the current curve is a copy of the row
    }

    void editStoresNaN()
    {
        QCOMPARE(model->setData(model->index(9, 3), "nan"), true);
        QVERIFY(std::isnan(pdx3.paramList.at(9).at(3)));
    }

    void otherRolesStoreNothing()
    {
        for (const int role : {int(Qt::DisplayRole), int(Qt::UserRole), int(Qt::CheckStateRole)})
            QCOMPARE(model->setData(model->index(0, 0), 5.0F, role), true);
        QCOMPARE(pdx3.paramList, rows);
    }

    void editChangesOneBlankRow()
    {
        // The blank rows are implicitly shared copies.
        model->setData(model->index(40, 2), 1.0F);
        for (int row = 12; row < 64; ++row)
            QCOMPARE(pdx3.paramList.at(row).at(2), row == 40 ? 1.0F : 0.0F);
        QCOMPARE(pdx3.blankRow, QVector<float>(6, 0.0F));
    }

    void refreshSignalsChangeFromFirstCellToInvalidIndex()
    {
        const QSignalSpy changed(model, &Model::dataChanged);
        model->refresh();
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().at(0).toModelIndex(), model->index(0, 0));
        QVERIFY(!changed.first().at(1).toModelIndex().isValid());
        QVERIFY(changed.first().at(2).value<QVector<int>>().isEmpty());
    }

    void indexesWithoutValueAreHarmless()
    {
        const QModelIndex last = model->index(63, 5);
        pdx3.paramList.resize(10);
        pdx3.paramList[2].resize(3);
        const QVector<QVector<float>> before = pdx3.paramList;
        for (const QModelIndex &index : {QModelIndex(), last, model->index(2, 3), model->index(2, 4)}) {
            QVERIFY(!model->data(index, Qt::DisplayRole).isValid());
            QCOMPARE(model->data(index, Qt::TextAlignmentRole).toInt(), 2);
            QCOMPARE(model->setData(index, 1.0F), true);
        }
        QCOMPARE(pdx3.paramList, before);
        QVERIFY(!model->headerData(-1, Qt::Horizontal).isValid());
        QVERIFY(!model->headerData(6, Qt::Horizontal).isValid());
        QCOMPARE(model->flags(QModelIndex()), Qt::ItemFlags(Qt::ItemIsEditable));
    }
};

QTEST_GUILESS_MAIN(ModelTest)
#include "ModelTest.moc"
