// Parameter rows as text.

#include "engine/RowText.h"

#include "tests/support/SampleSize.h"

#include <QLocale>
#include <QtTest>

#include <limits>

namespace {

using Rows = QVector<QVector<float>>;

int hugeSize()
{
    return sampleSize(1000000, 100000000);
}

/// Returns the rows of `text`, each as six values separated by blanks, with "-" for a field without a value.
QStringList rowsOf(const QString &text)
{
    QStringList rows;
    QStringView rest(text);
    RowFields fields;
    while (takeRow(rest, fields)) {
        QStringList values;
        for (const QStringView field : fields) {
            const auto value = valueOfField(field);
            values << (value ? QString::number(double(*value)) : "-");
        }
        rows << values.join(' ');
    }
    return rows;
}

} // namespace

class RowTextTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    // ---- Writing ----

    void writesSixSignificantDigits()
    {
        const float inf = std::numeric_limits<float>::infinity();
        const QStringList lines =
            textOfRows({{1.0F, 0.25F, 0.00003F, 1234567.0F, 123456.0F, -0.1F},
                        {1e38F, 1e-45F, 3.4028235e38F, 0.000123456789F, 100000.0F, 1000000.0F},
                        {inf, -inf, std::numeric_limits<float>::quiet_NaN(), 0.0F, 2.0F / 3.0F, 1.0F / 3.0F}})
                .split('\n');
        QCOMPARE(lines.at(0), QString("1\t0.25\t3e-05\t1.23457e+06\t123456\t-0.1"));
        QCOMPARE(lines.at(1), QString("1e+38\t1.4013e-45\t3.40282e+38\t0.000123457\t100000\t1e+06"));
        QCOMPARE(lines.at(2), QString("inf\t-inf\tnan\t0\t0.666667\t0.333333"));
        QCOMPARE(lines.at(3), QString("0\t0\t0\t0\t0\t0"));
    }

    void writesSixtyFourLinesForEveryList()
    {
        const QVector<float> row(6, 2.0F);
        for (const Rows &rows : {Rows(), Rows(3, row), Rows(64), Rows(128, row), Rows(64, QVector<float>(9, 2.0F))}) {
            const QStringList lines = textOfRows(rows).split('\n');
            QCOMPARE(lines.size(), 65);
            QCOMPARE(lines.last(), QString());
            for (int r = 0; r < 64; ++r)
                QCOMPARE(lines.at(r).count('\t'), 5);
        }
    }

    void roundTripsInEveryLocale_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::newRow("C") << QLocale::c();
        QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany);
        QTest::newRow("Arabic") << QLocale(QLocale::Arabic, QLocale::Egypt);
    }

    void roundTripsInEveryLocale()
    {
        QFETCH(QLocale, locale);
        QLocale::setDefault(locale);
        const QStringList rows = rowsOf(textOfRows({{-39505.9F, 1.23456e-33F, 1e38F, -0.5F, 1234.56F, 3.0F}}));
        QCOMPARE(rows.size(), 64);
        QCOMPARE(rows.first(), QString("-39505.9 1.23456e-33 1e+38 -0.5 1234.56 3"));
    }

    // ---- Reading ----

    void readsRows_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("rows");
        const auto row = [](const char *name, const char *text, const QStringList &rows) {
            QTest::newRow(name) << QString::fromUtf8(text) << rows;
        };
        row("nothing", "", {});
        row("one row", "1\t2\t3\t4\t5\t6\n", {"1 2 3 4 5 6"});
        row("no line end", "1\t2\t3\t4\t5\t6", {"1 2 3 4 5 6"});
        row("carriage returns and line feeds", "1\t2\t3\t4\t5\t6\r\n7\t8\t9\t10\t11\t12\r\n",
            {"1 2 3 4 5 6", "7 8 9 10 11 12"});
        row("carriage returns", "1\t2\t3\t4\t5\t6\r7\t8\t9\t10\t11\t12\r", {"1 2 3 4 5 6", "7 8 9 10 11 12"});
        row("blank lines", "\n\n\r\n1\t2\t3\t4\t5\t6\n\n\n7\t8\t9\t10\t11\t12\n\n", {"1 2 3 4 5 6", "7 8 9 10 11 12"});
        row("titles", "freq1\tfreq2\tfreq3\tphase1\tphase2\tcolor\n1\t2\t3\t4\t5\t6\n", {"- - - - - -", "1 2 3 4 5 6"});
        row("titles of another width", "one\ttwo\n1\t2\t3\t4\t5\t6\n", {"1 2 3 4 5 6"});
        row("two tabs between fields", "1\t\t2\t3\t4\t5\t6\n", {"1 2 3 4 5 6"});
        row("seven fields, one of them empty", "1\t2\t\t4\t5\t6\t7\n", {"1 2 4 5 6 7"});
        row("six fields, one of them empty", "1\t2\t\t4\t5\t6\n7\t8\t9\t10\t11\t12\n", {"7 8 9 10 11 12"});
        row("tabs at both ends", "\t1\t2\t3\t4\t5\t6\t\n", {"1 2 3 4 5 6"});
        row("only tabs", "\t\t\t\t\t\t\n\t\n", {});
        row("five columns", "1\t2\t3\t4\t5\n", {});
        row("seven columns", "1\t2\t3\t4\t5\t6\t7\n", {});
        row("malformed lines between rows", "x\n1\t2\t3\t4\t5\t6\ny\tz\n7\t8\t9\t10\t11\t12\n",
            {"1 2 3 4 5 6", "7 8 9 10 11 12"});
        row("letters", "1\tabc\t3\t4\t5\t6\n", {"1 - 3 4 5 6"});
        row("decimal commas", "1,5\t2\t3\t0,46\t5\t6\n", {"- 2 3 - 5 6"});
        row("digit groups", "1,000\t1.000,5\t1 000\t4\t5\t6\n", {"- - - 4 5 6"});
        row("quotes", "\"1\"\t'2'\t3\t4\t5\t6\n", {"- - 3 4 5 6"});
        row("white space", " 1\t2 \t  3  \t\v4\t5\f\t6\n", {"1 2 3 4 5 6"});
        row("no-break spaces", "\u00A01\t2\u00A0\t3\t4\t5\t6\n", {"1 2 3 4 5 6"});
        row("out of the range of a float", "1e39\t-1e39\t1e400\t1e-50\t5\t6\n", {"- - - - 5 6"});
        row("exponents and signs", "+1\t-2e1\t3E-1\t.5\t5.\t6e+0\n", {"1 -20 0.3 0.5 5 6"});
        row("infinities and NaN", "inf\t-inf\tnan\t4\t5\t6\n", {"inf -inf nan 4 5 6"});
        row("hexadecimal", "0x10\t2\t3\t4\t5\t6\n", {"- 2 3 4 5 6"});
        row("Arabic digits", "\u0661\t2\t3\t4\t5\t6\n", {"- 2 3 4 5 6"});
        row("commas between the fields", "1,2,3,4,5,6\n", {});
        row("other line ends", "1\t2\t3\t4\t5\t6\u2028\v7\t8\t9\t10\t11\t12\n", {});
        row("one column", "1\n2\n3\n4\n5\n6\n", {});
    }

    void readsRows()
    {
        QFETCH(QString, text);
        QTEST(rowsOf(text), "rows");
    }

    void readsHugeTexts_data()
    {
        QTest::addColumn<QString>("piece"); // repeated to `hugeSize` characters
        QTest::addColumn<QString>("first"); // the first field found
        QTest::newRow("lines without fields") << QString("123456789\n") << QString();
        QTest::newRow("rows") << QString("7\t2\t3\t4\t5\t6\n") << QString("7");
        QTest::newRow("blank lines") << QString("\r\n") << QString();
        QTest::newRow("one line") << QString("1234567890") << QString();
        QTest::newRow("one line of tabs") << QString("\t") << QString();
        QTest::newRow("one line of fields") << QString("1\t") << QString();
    }

    void readsHugeTexts()
    {
        QFETCH(QString, piece);
        const QString text = piece.repeated(hugeSize() / piece.size());
        QStringView rest(text);
        RowFields fields;
        const bool found = takeRow(rest, fields);
        QTEST(found ? fields.front().toString() : QString(), "first");
    }

    void rejectsNumberOfManyDigits()
    {
        const QString number(hugeSize(), '5');
        QVERIFY(!valueOfField(number));
    }
};

QTEST_APPLESS_MAIN(RowTextTest)
#include "RowTextTest.moc"
