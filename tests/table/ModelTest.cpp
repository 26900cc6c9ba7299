#include "table/Model.h"

#include "engine/Pendrix3D.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <functional>
#include <limits>

namespace {

QStringList *complaints = nullptr;

void collectComplaints(QtMsgType /*type*/, const QMessageLogContext &context, const QString &message)
{
    // The complaint without the values that differ from run to run and the line in the tester's source.
    if (qstrcmp(context.category, "qt.modeltest") == 0)
        complaints->append(QString(message).remove('\n').section(" QModelIndex", 0, 0).section(" (qabstract", 0, 0));
}

/// What the toolkit's model tester complains about while `use` runs, and while it looks at the model first.
QStringList complaintsAbout(Model &model, const std::function<void()> &use)
{
    QStringList collected;
    complaints = &collected;
    const QtMessageHandler before = qInstallMessageHandler(collectComplaints);
    {
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Warning);
        use();
    }
    qInstallMessageHandler(before);
    complaints = nullptr;
    return collected;
}

} // namespace

class ModelTest : public QObject
{
    Q_OBJECT

    QVector<QVector<float>> rows;

private slots:
    void initTestCase() { rows = pdx3.paramList; }
    void cleanup() { pdx3.paramList = rows; }

    void holdsNoMetaObjectOfItsOwn()
    {
        const Model model(nullptr);
        QCOMPARE(model.metaObject(), &QAbstractTableModel::staticMetaObject);
    }

    void belongsToItsParent()
    {
        QObject parent;
        const auto *model = new Model(&parent);
        QCOMPARE(model->parent(), &parent);
    }

    void counts()
    {
        Model model(nullptr);
        QCOMPARE(model.rowCount(), 64);
        QCOMPARE(model.columnCount(), 6);
        QCOMPARE(model.rowCount(model.index(3, 3)), 64);
        QCOMPARE(model.columnCount(model.index(3, 3)), 6);

        pdx3.paramList.resize(5);
        QCOMPARE(model.rowCount(), 5);
    }

    void showsEveryValueAsAFloat()
    {
        Model model(nullptr);
        for (int row = 0; row < 64; ++row) {
            for (int column = 0; column < 6; ++column) {
                for (const int role : {int(Qt::DisplayRole), int(Qt::EditRole)}) {
                    const QVariant value = model.data(model.index(row, column), role);
                    QCOMPARE(value.userType(), int(QMetaType::Float));
                    QCOMPARE(value.value<float>(), pdx3.paramList.at(row).at(column));
                }
            }
        }
    }

    void alignsToTheRight()
    {
        Model model(nullptr);
        for (int row = 0; row < 64; ++row) {
            for (int column = 0; column < 6; ++column) {
                const QVariant alignment = model.data(model.index(row, column), Qt::TextAlignmentRole);
                QCOMPARE(alignment.userType(), int(QMetaType::Int));
                QCOMPARE(alignment.toInt(), 2);
            }
        }
    }

    void hasNothingForOtherRoles()
    {
        Model model(nullptr);
        for (const int role : {int(Qt::DecorationRole), int(Qt::ToolTipRole), int(Qt::FontRole),
                               int(Qt::BackgroundRole), int(Qt::CheckStateRole), int(Qt::UserRole), -1})
            QVERIFY(!model.data(model.index(1, 1), role).isValid());
    }

    void headers()
    {
        const Model model(nullptr);
        const QStringList titles = {"freq1", "freq2", "freq3", "phase1", "phase2", "color"};
        for (int column = 0; column < 6; ++column) {
            const QVariant title = model.headerData(column, Qt::Horizontal, Qt::DisplayRole);
            QCOMPARE(title.userType(), int(QMetaType::QString));
            QCOMPARE(title.toString(), titles.at(column));
        }
        for (int row = 0; row < 64; ++row) {
            const QVariant number = model.headerData(row, Qt::Vertical, Qt::DisplayRole);
            QCOMPARE(number.userType(), int(QMetaType::QString));
            QCOMPARE(number.toString(), QString::number(row + 1));
        }
        for (const int role :
             {int(Qt::EditRole), int(Qt::ToolTipRole), int(Qt::TextAlignmentRole), int(Qt::FontRole)}) {
            QVERIFY(!model.headerData(0, Qt::Horizontal, role).isValid());
            QVERIFY(!model.headerData(0, Qt::Vertical, role).isValid());
        }
    }

    void cellsCanBeEdited()
    {
        Model model(nullptr);
        for (int row = 0; row < 64; ++row) {
            for (int column = 0; column < 6; ++column)
                QCOMPARE(model.flags(model.index(row, column)),
                         Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable | Qt::ItemNeverHasChildren);
        }
    }

    void edits_data()
    {
        const float inf = std::numeric_limits<float>::infinity();
        const float unchanged = std::numeric_limits<float>::lowest();
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<float>("stored");
        QTest::newRow("2.5") << QVariant("2.5") << 2.5F;
        QTest::newRow("blanks around") << QVariant("  -3e-2 ") << -3e-2F;
        QTest::newRow("a double") << QVariant(0.1) << 0.1F;
        QTest::newRow("an int") << QVariant(7) << 7.0F;
        QTest::newRow("largest") << QVariant("3.4028234e38") << 3.4028234e38F;
        QTest::newRow("infinite") << QVariant("inf") << inf;
        QTest::newRow("minus infinite") << QVariant("-inf") << -inf;
        QTest::newRow("minus zero") << QVariant("-0") << -0.0F;
        QTest::newRow("letters") << QVariant("abc") << unchanged;
        QTest::newRow("empty") << QVariant("") << unchanged;
        QTest::newRow("decimal comma") << QVariant("2,5") << unchanged;
        QTest::newRow("trailing rubbish") << QVariant("2.5x") << unchanged;
        QTest::newRow("beyond a float") << QVariant("1e39") << unchanged;
        QTest::newRow("beyond a double") << QVariant("1e400") << unchanged;
        QTest::newRow("invalid") << QVariant() << unchanged;
        QTest::newRow("a list") << QVariant(QVariantList{1, 2}) << unchanged;
        QTest::newRow("megabytes") << QVariant(QString(5000000, '7')) << unchanged;
    }

    void edits()
    {
        QFETCH(QVariant, value);
        QFETCH(float, stored);
        Model model(nullptr);
        QSignalSpy changed(&model, &Model::dataChanged);
        pdx3.set(9);
        const float unchanged = std::numeric_limits<float>::lowest();
        pdx3.paramList[9][3] = unchanged;
        QVector<QVector<float>> expected = pdx3.paramList;
        expected[9][3] = stored;

        QCOMPARE(model.setData(model.index(9, 3), value), true);
        QCOMPARE(pdx3.paramList, expected);
        QCOMPARE(std::signbit(pdx3.paramList.at(9).at(3)), std::signbit(stored));
        QCOMPARE(changed.count(), 0);
        // The curve on screen is the copy that was selected.
        QCOMPARE(pdx3.phase1, 0.21F);
        QCOMPARE(pdx3.getParams()[3], 0.21F);
    }

    void editsWithNaN()
    {
        Model model(nullptr);
        QCOMPARE(model.setData(model.index(9, 3), "nan"), true);
        QVERIFY(std::isnan(pdx3.paramList.at(9).at(3)));
    }

    void otherRolesEditNothing()
    {
        Model model(nullptr);
        for (const int role : {int(Qt::DisplayRole), int(Qt::UserRole), int(Qt::CheckStateRole)})
            QCOMPARE(model.setData(model.index(0, 0), 5.0F, role), true);
        QCOMPARE(pdx3.paramList, rows);
    }

    void editsOneRowOfEqualOnes()
    {
        // The blank rows are copies of one another and share their storage until one is written to.
        Model model(nullptr);
        model.setData(model.index(40, 2), 1.0F);
        for (int row = 12; row < 64; ++row)
            QCOMPARE(pdx3.paramList.at(row).at(2), row == 40 ? 1.0F : 0.0F);
        QCOMPARE(pdx3.blankRow, QVector<float>(6, 0.0F));
    }

    void refreshNamesAllFromTheFirstCellOn()
    {
        Model model(nullptr);
        QSignalSpy changed(&model, &Model::dataChanged);
        model.refresh();
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().at(0).toModelIndex(), model.index(0, 0));
        // One past the last cell on purpose: no index.
        QVERIFY(!changed.first().at(1).toModelIndex().isValid());
        QVERIFY(changed.first().at(2).value<QVector<int>>().isEmpty());
    }

    void indexesWithoutACellAreHarmless()
    {
        Model model(nullptr);
        const QModelIndex last = model.index(63, 5);
        pdx3.paramList.resize(10);
        pdx3.paramList[2].resize(3);
        for (const QModelIndex &index : {QModelIndex(), last, model.index(2, 4)}) {
            QVERIFY(!model.data(index, Qt::DisplayRole).isValid());
            QCOMPARE(model.data(index, Qt::TextAlignmentRole).toInt(), 2);
            QCOMPARE(model.setData(index, 1.0F), true);
        }
        QCOMPARE(pdx3.paramList.size(), 10);
        QVERIFY(!model.headerData(-1, Qt::Horizontal).isValid());
        QVERIFY(!model.headerData(6, Qt::Horizontal).isValid());
        QCOMPARE(model.flags(QModelIndex()), Qt::ItemFlags());
    }

    void theModelTesterWatches()
    {
        // The counts do not ask for the parent, so the tester finds 64 rows below a cell that says it has no children,
        // and children whose parent is none. A view of a table never looks there.
        const QStringList countsIgnoreTheParent = {
            "FAIL! model->hasChildren(topIndex) () returned FALSE",
            "FAIL! Compared values are not the same:   Actual (model->parent(childIndex))",
        };
        Model model(nullptr);
        const auto edit = [&model] {
            QVERIFY(model.setData(model.index(1, 1), 3.0F));
            QVERIFY(model.setData(model.index(1, 1), "abc"));
        };
        QCOMPARE(complaintsAbout(model, edit), countsIgnoreTheParent);

        // The tester looks at everything again after the change, and at its corners.
        const QString noLastCell = "FAIL! bottomRight.isValid() () returned FALSE";
        QCOMPARE(complaintsAbout(model, [&model] { model.refresh(); }),
                 countsIgnoreTheParent + countsIgnoreTheParent + QStringList{noLastCell});
    }
};

QTEST_GUILESS_MAIN(ModelTest)
#include "ModelTest.moc"
