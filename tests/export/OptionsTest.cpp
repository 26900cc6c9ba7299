// Parsing of the command line.

#include "export/Options.h"
#include "export/ExportError.h"

#include <QtTest>

namespace {

Options parse(const QStringList &arguments)
{
    return parseOptions(QStringList("pendrix3d-export") + arguments);
}

QVector<int> angles(const Turn &turn)
{
    return {turn.x, turn.y, turn.z};
}

} // namespace

class OptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void missingOptionsHaveDefaults()
    {
        const Options options = parse({"curve.png"});
        QCOMPARE(options.file, QString("curve.png"));
        QCOMPARE(options.message, QString());
        QCOMPARE(int(options.row.kind), int(RowSource::Preset));
        QCOMPARE(options.row.number, 1);
        QCOMPARE(options.firstFrame, 0);
        QCOMPARE(options.frameCount, 0);
        QVERIFY(!options.color.isValid());
        QCOMPARE(angles(options.page.turn), QVector<int>({0, 0, 0}));
        QCOMPARE(options.page.width, 1600.0);
        QCOMPARE(options.page.height, 1600.0);
        QCOMPARE(options.page.lineWidth, 3.2);
        QCOMPARE(options.page.background, QColor(Qt::black));
        for (const char *file : {"curve.svg", "curve.pdf"}) {
            const Options vector = parse({file});
            QCOMPARE(vector.page.width, 200.0);
            QCOMPARE(vector.page.height, 200.0);
            QCOMPARE(vector.page.lineWidth, 0.2);
            QVERIFY(!vector.page.background.isValid());
        }
    }

    void formatFollowsExtensionOrOption_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("format");
        QTest::newRow("png") << QStringList("a.png") << int(Format::Png);
        QTest::newRow("svg") << QStringList("a.svg") << int(Format::Svg);
        QTest::newRow("pdf") << QStringList("a.pdf") << int(Format::Pdf);
        QTest::newRow("ply") << QStringList("a.ply") << int(Format::Ply);
        QTest::newRow("csv") << QStringList("a.csv") << int(Format::Csv);
        QTest::newRow("upper case") << QStringList("A.PnG") << int(Format::Png);
        QTest::newRow("last extension") << QStringList("a.svg.pdf") << int(Format::Pdf);
        QTest::newRow("in a folder") << QStringList("b.svg/a.ply") << int(Format::Ply);
        QTest::newRow("option without extension") << QStringList({"--format", "csv", "a"}) << int(Format::Csv);
        QTest::newRow("option and extension") << QStringList({"--format=SVG", "a.png"}) << int(Format::Svg);
    }

    void formatFollowsExtensionOrOption()
    {
        QFETCH(QStringList, arguments);
        QTEST(int(parse(arguments).format), "format");
    }

    void acceptsRows()
    {
        const RowSource preset = parse({"--preset=12", "a.csv"}).row;
        QCOMPARE(int(preset.kind), int(RowSource::Preset));
        QCOMPARE(preset.number, 12);

        const RowSource settings = parse({"--row", "64", "a.csv"}).row;
        QCOMPARE(int(settings.kind), int(RowSource::Settings));
        QCOMPARE(settings.number, 64);

        const RowSource text = parse({"--rows", "-", "a.csv"}).row;
        QCOMPARE(int(text.kind), int(RowSource::Text));
        QCOMPARE(text.number, 1);
        QCOMPARE(text.file, QString("-"));
        QCOMPARE(parse({"--rows=r.txt", "--row=7", "a.csv"}).row.number, 7);

        const RowSource values = parse({"--values", "-1,2.5,3e-2,0,1e38,-7.9", "a.csv"}).row;
        QCOMPARE(int(values.kind), int(RowSource::Values));
        QCOMPARE(values.values, QVector<float>({-1.0F, 2.5F, 3e-2F, 0.0F, 1e38F, -7.9F}));
    }

    void acceptsLimits()
    {
        QCOMPARE(parse({"--frame=1000000", "--frames=99999", "a.csv"}).firstFrame, 1000000);
        QCOMPARE(parse({"--frame=1000000", "--frames=99999", "a.csv"}).frameCount, 99999);
        QCOMPARE(parse({"--size=1x16384", "a.png"}).page.height, 16384.0);
        QCOMPARE(parse({"--size=16384x1", "a.png"}).page.width, 16384.0);
        QCOMPARE(parse({"--size=5000x1.25", "a.svg"}).page.height, 1.25);
        QCOMPARE(parse({"--line-width=1e-3", "a.svg"}).page.lineWidth, 0.001);
    }

    void lineWidthFollowsImageHeight()
    {
        QCOMPARE(parse({"--size=9000x500", "a.png"}).page.lineWidth, 1.0);
        QCOMPARE(parse({"--size=100x100", "a.png"}).page.lineWidth, 1.0);
        QCOMPARE(parse({"--size=100x2000", "a.png"}).page.lineWidth, 4.0);
        QCOMPARE(parse({"--size=100x2000", "a.pdf"}).page.lineWidth, 0.2);
    }

    void turnIsRoundedToSixteenthsOfDegree_data()
    {
        QTest::addColumn<QString>("turn");
        QTest::addColumn<QVector<int>>("units");
        QTest::newRow("whole degrees") << "1,2,359" << QVector<int>({16, 32, 5744});
        QTest::newRow("full turns") << "360,-360,720" << QVector<int>({0, 0, 0});
        QTest::newRow("negative") << "-1,-0.0625,-361" << QVector<int>({5744, 5759, 5744});
        QTest::newRow("rounded") << "0.03,0.04,359.99" << QVector<int>({0, 1, 0});
        QTest::newRow("exponents") << "1e1,.5,5.e-1" << QVector<int>({160, 8, 8});
        // 1e22 is 280 modulo 360.
        QTest::newRow("huge") << "1e22,-1e22,123456789012345.6" << QVector<int>({4480, 1280, 1690});
    }

    void turnIsRoundedToSixteenthsOfDegree()
    {
        QFETCH(QString, turn);
        QTEST(angles(parse({"--turn", turn, "a.png"}).page.turn), "units");
    }

    void acceptsColors()
    {
        QCOMPARE(parse({"--color=#12aBcD", "a.png"}).color, QColor(0x12, 0xAB, 0xCD));
        QCOMPARE(parse({"--color=rebeccapurple", "--color=LightGoldenrodYellow", "a.png"}).color,
                 QColor(0xFA, 0xFA, 0xD2));
        QCOMPARE(parse({"--background=white", "a.svg"}).page.background, QColor(Qt::white));
        QVERIFY(!parse({"--background=none", "a.png"}).page.background.isValid());
    }

    void rejectsMalformedValues_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("value");
        const auto rows = [](const QString &option, const QStringList &values) {
            for (const QString &value : values)
                QTest::newRow(qPrintable(option + QLatin1Char('=') + value)) << option << value;
        };
        rows("--format", {"", "gif", "png ", ".png", "none"});
        const QStringList notWhole = {"",   "0x1", "1.0", "1e0",    " 1",  "1 ",
                                      "+1", "-1",  "one", "\u0661", "nan", "99999999999999999999"};
        rows("--preset", notWhole + QStringList({"0", "13"}));
        rows("--row", notWhole + QStringList({"0", "65"}));
        rows("--frame", notWhole + QStringList({"1000001"}));
        rows("--frames", notWhole + QStringList({"0", "100000"}));
        rows("--rows", {""});
        rows("--values", {"", "1,2,3,4,5", "1,2,3,4,5,6,7", "1,2,3,4,5,", "1,,3,4,5,6", "nan,2,3,4,5,6",
                          "1,inf,3,4,5,6", "1,2,1e39,4,5,6", "1,2,3,x,5,6", "1;2;3;4;5;6", "1,2,3,4,5,nan"});
        rows("--turn",
             {"", "1", "1,2", "1,2,3,4", "1,2,", "nan,0,0", "0,inf,0", "0,0,1e400", "0,0,x", "0x10,0,0", "1 ,2,3"});
        rows("--size", {"", "100", "100x", "x100", "0x100", "100x0", "100x100x100", "16385x1", "1x16385", "100X100",
                        "1.5x2", "-1x5", "1e2x5", "nanx5"});
        rows("--line-width", {"", "0", "-1", "nan", "inf", "1e400", "16385", "1px", "0x1"});
        rows("--color",
             {"", "none", "transparent", "#123", "#1234567", "#12345g", "#12345678", "nocolour", "dark blue", "red;"});
        rows("--background", {"", "transparent", "#123", "##12345", "nothing"});
    }

    void rejectsMalformedValues()
    {
        QFETCH(QString, option);
        QFETCH(QString, value);
        try {
            parse({option, value, "a.png"});
            QFAIL("accepted");
        } catch (const ExportError &error) {
            QCOMPARE(error.exitStatus, 2);
            QCOMPARE(error.problem, "invalid value of " + option);
            QCOMPARE(error.detail, value);
        }
    }

    void rejectsWrongCommandLines_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const auto row = [](const QStringList &arguments, const char *message) {
            QTest::newRow(qPrintable(arguments.join(' '))) << arguments << message;
        };
        row({}, "missing argument: FILE");
        row({""}, "missing argument: FILE");
        row({"a.png", "b.png"}, "unexpected argument: b.png");
        row({"a"}, "unknown format: a");
        row({"a.gif"}, "unknown format: a.gif");
        row({"a.png/b"}, "unknown format: a.png/b");
        row({"a.png."}, "unknown format: a.png.");
        row({"--frobnicate", "a.png"}, "unknown option: frobnicate");
        row({"-x", "a.png"}, "unknown option: x");
        row({"a.png", "--preset"}, "invalid option: Missing value after '--preset'.");
        row({"--help=1", "a.png"}, "invalid option: Unexpected value after '--help'.");
        for (const QStringList &pair : {QStringList({"--preset=1", "--row=1"}),
                                        {"--preset=1", "--rows=-"},
                                        {"--preset=1", "--values=1,2,3,4,5,6"},
                                        {"--values=1,2,3,4,5,6", "--row=1"},
                                        {"--values=1,2,3,4,5,6", "--rows=-"}})
            row(pair + QStringList("a.png"),
                "conflicting options: use only one of --preset, --values, and --row or --rows");
        row({"--size=1x1", "a.csv"}, "invalid option: PLY and CSV have no --size");
        row({"--size=1x1", "a.ply"}, "invalid option: PLY and CSV have no --size");
        row({"--size=0.9x100", "a.svg"}, "invalid value of --size: 0.9x100");
        row({"--size=5000.1x100", "a.pdf"}, "invalid value of --size: 5000.1x100");
        row({"--line-width=5001", "a.pdf"}, "invalid value of --line-width: 5001");
    }

    void rejectsWrongCommandLines()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        try {
            parse(arguments);
            QFAIL("accepted");
        } catch (const ExportError &error) {
            QCOMPARE(error.exitStatus, 2);
            QCOMPARE(error.problem + ": " + error.detail, message);
        }
    }

    void helpAndVersionNeedNoFile()
    {
        QVERIFY(parse({"--help"}).message.contains("--line-width"));
        QVERIFY(parse({"--version"}).message.startsWith("pendrix3d-export 0."));
    }

    void numbersFileNamesBeforeExtension()
    {
        QCOMPARE(numberedPath("a.png", 1), QString("a-00001.png"));
        QCOMPARE(numberedPath("b.c/a.tar.png", 99999), QString("b.c/a.tar-99999.png"));
        QCOMPARE(numberedPath("b.c/a", 42), QString("b.c/a-00042"));
        QCOMPARE(numberedPath("100%1.svg", 7), QString("100%1-00007.svg"));
    }
};

QTEST_GUILESS_MAIN(OptionsTest)
#include "OptionsTest.moc"
