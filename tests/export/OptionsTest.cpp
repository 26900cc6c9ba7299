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
        QTest::addColumn<QString>("format");
        QTest::newRow("png") << QStringList("a.png") << "png";
        QTest::newRow("svg") << QStringList("a.svg") << "svg";
        QTest::newRow("pdf") << QStringList("a.pdf") << "pdf";
        QTest::newRow("ply") << QStringList("a.ply") << "ply";
        QTest::newRow("csv") << QStringList("a.csv") << "csv";
        QTest::newRow("glb") << QStringList("a.glb") << "glb";
        QTest::newRow("upper case") << QStringList("A.PnG") << "png";
        QTest::newRow("last extension") << QStringList("a.svg.pdf") << "pdf";
        QTest::newRow("in a folder") << QStringList("b.svg/a.ply") << "ply";
        QTest::newRow("option without extension") << QStringList({"--format", "csv", "a"}) << "csv";
        QTest::newRow("option and extension") << QStringList({"--format=SVG", "a.png"}) << "svg";
    }

    void formatFollowsExtensionOrOption()
    {
        QFETCH(QStringList, arguments);
        QTEST(QString(parse(arguments).format->name), "format");
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

    void acceptsPaperSizes()
    {
        const QVector<QSizeF> sizes = {{841, 1189}, {594, 841}, {420, 594}, {297, 420},
                                       {210, 297},  {148, 210}, {105, 148}};
        for (int i = 0; i < sizes.size(); ++i) {
            for (const char *letter : {"a", "A"}) {
                for (const char *file : {"a.svg", "a.pdf"}) {
                    const Page page = parse({QString("--size=%1%2").arg(letter).arg(i), file}).page;
                    QCOMPARE(QSizeF(page.width, page.height), sizes.at(i));
                }
                const Page image = parse({QString("--size=%1%2").arg(letter).arg(i), "--dpi=254", "a.png"}).page;
                QCOMPARE(QSizeF(image.width, image.height), sizes.at(i) * 10.0);
            }
        }
    }

    void imageInMillimetresHasPixelsOfResolution()
    {
        const Page defaults = parse({"--size=100x50.5mm", "a.png"}).page;
        QCOMPARE(defaults.width, 1181.0); // 100 / 25.4 * 300 = 1181.1
        QCOMPARE(defaults.height, 596.0); // 596.5, rounded down from 596.46
        QCOMPARE(defaults.lineWidth, 0.2 / 25.4 * 300.0);
        QCOMPARE(defaults.dotsPerMillimetre, 300.0 / 25.4);
        const Options fine = parse({"--size=20x10mm", "--dpi=2400", "--line-width=1", "--margin=2", "a.png"});
        QCOMPARE(fine.page.width, 1890.0);
        QCOMPARE(fine.page.lineWidth, 2400.0 / 25.4);
        QCOMPARE(*fine.margin, 2.0 * 2400.0 / 25.4);
        QCOMPARE(parse({"--size=20x10", "a.png"}).page.dotsPerMillimetre, 0.0);
        QCOMPARE(parse({"--size=20x10mm", "a.svg"}).page.width, 20.0);
        QCOMPARE(parse({"--size=1x1mm", "--dpi=10", "a.png"}).page.width, 1.0);
        QCOMPARE(parse({"--size=1387x1mm", "a.png"}).page.width, 16382.0);
    }

    void imagesHaveNoThinnerLineThanQuarterOfPixel()
    {
        QCOMPARE(parse({"--line-width=0.01", "a.png"}).page.lineWidth, 0.25);
        QCOMPARE(parse({"--line-width=0.01", "a.svg"}).page.lineWidth, 0.01);
        QCOMPARE(parse({"--size=a4", "--dpi=10", "a.png"}).page.lineWidth, 0.25);
    }

    void acceptsMarginOrderAndSmooth()
    {
        for (const char *file : {"a.png", "a.svg", "a.pdf"}) {
            QVERIFY(!parse({file}).margin);
            QVERIFY(!parse({file}).page.isSmooth);
            QCOMPARE(*parse({"--margin=0", file}).margin, 0.0);
            QCOMPARE(*parse({"--margin=2.5", file}).margin, 2.5);
            QVERIFY(parse({"--smooth", file}).page.isSmooth);
        }
        for (const char *file : {"a.svg", "a.pdf"}) {
            QVERIFY(!parse({file}).page.isInDepthOrder);
            QVERIFY(!parse({"--order=curve", file}).page.isInDepthOrder);
            QVERIFY(parse({"--order=depth", file}).page.isInDepthOrder);
        }
        QVERIFY(parse({"--margin=99.89", "a.svg"}).margin);
    }

    void turnStepIsAddedToTurn()
    {
        const Options options = parse({"--frames=9", "--turn=350,0,1", "--turn-step=5.03,-90,1e22", "a.svg"});
        QCOMPARE(angles(options.turnOfFrame(0)), QVector<int>({350 * 16, 0, 16}));
        QCOMPARE(angles(options.turnOfFrame(1)), QVector<int>({355 * 16, 270 * 16, 281 * 16}));
        QCOMPARE(angles(options.turnOfFrame(4)), QVector<int>({10 * 16 + 2, 0, 41 * 16})); // 20.12 and 4 * 280 degrees
        QCOMPARE(options.frameStep, 1);
        QCOMPARE(parse({"--frames=9", "--frame-step=0", "a.csv"}).frameStep, 0);
        QCOMPARE(parse({"--frames=9", "--frame-step=1000", "a.csv"}).frameStep, 1000);
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
        rows("--margin", {"", "-1", "800", "1e3", "nan", "x", "799"}); // with a line of 3.2 pixels
        rows("--order", {"", "near", "Depth"});
        const QStringList notWhole = {"",   "0x1", "1.0", "1e0",    " 1",  "1 ",
                                      "+1", "-1",  "one", "\u0661", "nan", "99999999999999999999"};
        rows("--preset", notWhole + QStringList({"0", "13"}));
        rows("--row", notWhole + QStringList({"0", "65"}));
        rows("--frame", notWhole + QStringList({"1000001"}));
        rows("--frames", notWhole + QStringList({"0", "100000"}));
        rows("--frame-step", notWhole + QStringList({"1001"}));
        rows("--dpi", notWhole + QStringList({"9", "2401"}));
        rows("--rows", {""});
        rows("--values", {"", "1,2,3,4,5", "1,2,3,4,5,6,7", "1,2,3,4,5,", "1,,3,4,5,6", "nan,2,3,4,5,6",
                          "1,inf,3,4,5,6", "1,2,1e39,4,5,6", "1,2,3,x,5,6", "1;2;3;4;5;6", "1,2,3,4,5,nan"});
        for (const char *option : {"--turn", "--turn-step"})
            rows(option,
                 {"", "1", "1,2", "1,2,3,4", "1,2,", "nan,0,0", "0,inf,0", "0,0,1e400", "0,0,x", "0x10,0,0", "1 ,2,3"});
        rows("--size",
             {"",        "100",     "100x",     "x100",   "0x100",   "100x0", "100x100x100", "16385x1", "1x16385",
              "100X100", "1.5x2",   "-1x5",     "1e2x5",  "nanx5",   "a7",    "a",           "a4 ",     "mm",
              "4mm",     "0.9x5mm", "5001x5mm", "5x5 mm", "5mmx5mm", "5x5MM", "1400x1400mm"});
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
            QStringList arguments = {option, value, option == "--order" ? "a.svg" : "a.png"};
            if (option.endsWith("-step"))
                arguments.append("--frames=2");
            if (option == "--dpi")
                arguments.append("--size=a4");
            parse(arguments);
            QFAIL("accepted");
        } catch (const ExportError &error) {
            QCOMPARE(error.exitStatus, 2);
            QCOMPARE(error.problem, "invalid value of " + option);
            QVERIFY2(error.detail.startsWith(value + ": expected "), qPrintable(error.detail));
        }
    }

    void rejectsWrongCommandLines_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const auto row = [](const QStringList &arguments, const QByteArray &message) {
            QTest::newRow(qPrintable(arguments.join(' '))) << arguments << QString(message);
        };
        row({}, "missing argument: FILE");
        row({""}, "missing argument: FILE");
        row({"a.png", "b.png"}, "unexpected argument: b.png");
        row({"a"}, "unknown format: a: use --format or a name that ends in .png, .svg, .pdf, .ply, .csv or .glb");
        row({"a.gif"},
            "unknown format: a.gif: use --format or a name that ends in .png, .svg, .pdf, .ply, .csv or .glb");
        row({"a.png/b"},
            "unknown format: a.png/b: use --format or a name that ends in .png, .svg, .pdf, .ply, .csv or .glb");
        row({"a.png."},
            "unknown format: a.png.: use --format or a name that ends in .png, .svg, .pdf, .ply, .csv or .glb");
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
        for (const char *file : {"a.ply", "a.csv", "a.glb"}) {
            for (const char *option : {"--size=1x1", "--turn=1,2,3", "--line-width=1", "--background=red", "--margin=1",
                                       "--smooth", "--turn-step=1,2,3"})
                row({option, "--frames=1", file},
                    "invalid option: " + QByteArray(option).split('=').first() + ": only for png, svg or pdf");
        }
        for (const char *file : {"a.png", "a.ply", "a.csv", "a.glb"})
            row({"--order=depth", file}, "invalid option: --order: only for svg or pdf");
        for (const char *file : {"a.svg", "a.pdf", "a.ply", "a.csv", "a.glb"})
            row({"--dpi=300", file}, "invalid option: --dpi: only for png");
        row({"--dpi=300", "a.png"}, "invalid option: --dpi: only for a --size in millimetres");
        row({"--dpi=300", "--size=100x100", "a.png"}, "invalid option: --dpi: only for a --size in millimetres");
        row({"--frame-step=1", "a.csv"}, "invalid option: --frame-step: only for --frames");
        row({"--turn-step=1,2,3", "a.png"}, "invalid option: --turn-step: only for --frames");
        row({"-"}, "missing option: --format: needed for standard output, or use ./- for a file");
        row({"-", "--format=csv", "--frames=2"}, "invalid option: --frames: not for standard output");
        row({"--row=70", "a.csv"}, "invalid value of --row: 70: expected 1 to 64");
        row({"--preset=13", "a.csv"}, "invalid value of --preset: 13: expected 1 to 12");
        row({"--format=gif", "a.csv"}, "invalid value of --format: gif: expected png, svg, pdf, ply, csv or glb");
        row({"--order=near", "a.svg"},
            "invalid value of --order: near: expected curve, or depth so that near ones hide far ones");
        row({"--size=a0", "--dpi=400", "a.png"},
            "invalid value of --size: a0: expected at most 16384 pixels, not 13244x18724 at --dpi 400");
    }

    void rejectsLengthsOutOfRange_data()
    {
        QTest::addColumn<QStringList>("arguments");
        const auto row = [](const QStringList &arguments) {
            QTest::newRow(qPrintable(arguments.join(' '))) << arguments;
        };
        row({"--size=0.9x100", "a.svg"});
        row({"--size=5000.1x100", "a.pdf"});
        row({"--line-width=5001", "a.pdf"});
        row({"--line-width=5001", "--size=a4", "a.png"});
        row({"--margin=100", "a.svg"});
        row({"--margin=50", "--size=300x100", "a.svg"});
        row({"--margin=49.9", "--size=100x300", "a.svg"}); // no room for the line of 0.2 mm
        row({"--margin=105", "--size=a4", "a.png"});
    }

    void rejectsLengthsOutOfRange()
    {
        QFETCH(QStringList, arguments);
        QVERIFY_EXCEPTION_THROWN(parse(arguments), ExportError);
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
        const QString help = parse({"--help"}).message;
        for (const char *text : {"--line-width", "1 to 64", "png, svg, pdf, ply, csv or glb"})
            QVERIFY(help.simplified().contains(text));
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
