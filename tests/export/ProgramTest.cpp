// The program pendrix3d-export from outside.

#include "app/Settings.h"
#include "tests/support/SampleSize.h"
#include "tests/support/Sanitizer.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Result
{
    int status;
    QByteArray out;
    QByteArray errors;

    /// Returns whether the program succeeded and printed nothing.
    bool isSilentSuccess() const { return status == 0 && out.isEmpty() && errors.isEmpty(); }

    /// Returns whether the program exited with the status `expected` and one line on standard error.
    bool isFailure(int expected) const
    {
        const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 32 || c == 127; };
        return status == expected && out.isEmpty() && errors.startsWith("pendrix3d-export: ") &&
               errors.endsWith('\n') && errors.count(": ") >= 2 &&
               std::none_of(errors.begin(), errors.end() - 1, isControl) &&
               QString::fromUtf8(errors).toUtf8() == errors;
    }
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void save(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

} // namespace

class ProgramTest : public QObject
{
    Q_OBJECT

    QTemporaryDir folder;
    QProcessEnvironment environment;

    QString path(const QString &name) const { return folder.filePath(name); }

    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System); }

    /// Runs the program in `folder`.
    Result run(const QStringList &arguments, const QByteArray &input = QByteArray()) const
    {
        return runShell("exec \"$0\" \"$@\"", arguments, input);
    }

    /// Runs the shell command `command`, in which $0 is the program and $@ are `arguments`.
    Result runShell(const QString &command, const QStringList &arguments = {},
                    const QByteArray &input = QByteArray()) const
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(folder.path());
        process.start("/bin/sh", QStringList({"-c", command, PENDRIX_EXPORT_PROGRAM}) + arguments);
        process.write(input);
        process.closeWriteChannel();
        const bool finished = process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit;
        return {finished ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
    }

private slots:
    void init()
    {
        QVERIFY(folder.isValid());
        QDir(folder.path()).removeRecursively();
        QVERIFY(QDir().mkpath(folder.path()));
        environment = QProcessEnvironment();
        environment.insert("PATH", qEnvironmentVariable("PATH"));
        environment.insert("HOME", path("home"));
        for (const char *sanitizer : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"})
            environment.insert(sanitizer, qEnvironmentVariable(sanitizer));
    }

    // ---- Success ----

    void exportsEveryFormat_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("start");
        QTest::newRow("PNG") << "a.png" << QByteArray("\x89PNG");
        QTest::newRow("SVG") << "a.svg" << QByteArray("<?xml");
        QTest::newRow("PDF") << "a.pdf" << QByteArray("%PDF-");
        QTest::newRow("PLY") << "a.ply" << QByteArray("ply\n");
        QTest::newRow("GLB") << "a.glb" << QByteArray("glTF\x02");
        QTest::newRow("CSV") << "a.csv" << QByteArray("t,x,y,z,red,green,blue\n0.0199999996,");
    }

    void exportsEveryFormat()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, start);
        QVERIFY(run({name}).isSilentSuccess());
        QVERIFY(contentOf(path(name)).startsWith(start));
        QCOMPARE(files(), QStringList(name)); // nothing else is left

        // Standard output has the same content, but for the time in a PDF file.
        const Result result = run({"--format", name.mid(2), "-"});
        QVERIFY(result.status == 0 && result.errors.isEmpty());
        QCOMPARE(result.out.size(), contentOf(path(name)).size());
        QVERIFY(name == "a.pdf" || result.out == contentOf(path(name)));
        QCOMPARE(files(), QStringList(name));
        QVERIFY(run({"--format", name.mid(2), "./-"}).isSilentSuccess());
        QVERIFY(contentOf(path("-")).startsWith(start));
    }

    void imageHasResolutionOnlyInMillimetres()
    {
        QVERIFY(run({"--size=30x20", "a.png"}).isSilentSuccess());
        QVERIFY(!contentOf(path("a.png")).contains("pHYs"));
        QVERIFY(run({"--size=30x20mm", "--dpi=150", "b.png"}).isSilentSuccess());
        const QImage image(path("b.png"));
        QCOMPARE(image.size(), QSize(177, 118));
        QCOMPARE(image.dotsPerMeterX(), 5906); // 150 / 0.0254
        QCOMPARE(image.dotsPerMeterY(), 5906);
        QVERIFY(contentOf(path("b.png")).contains("pHYs"));
    }

    void imageHasRequestedSizeAndBackground()
    {
        QVERIFY(run({"--size=30x20", "--background=#102030", "a.png"}).isSilentSuccess());
        QVERIFY(run({"--size=30x20", "--background=none", "b.png"}).isSilentSuccess());
        const QImage image(path("a.png"));
        QCOMPARE(image.size(), QSize(30, 20));
        QCOMPARE(image.pixel(0, 0), qRgb(0x10, 0x20, 0x30));
        QCOMPARE(QImage(path("b.png")).pixel(0, 0), 0U);
    }

    void rowSourcesAreEquivalent()
    {
        QVERIFY(run({"preset.csv", "--preset=2"}).isSilentSuccess());
        QVERIFY(run({"values.csv", "--values=2,3,4,.25,0,2.9"}).isSilentSuccess());
        QVERIFY(run({"settings.csv", "--row=2"}).isSilentSuccess()); // without a settings file
        QVERIFY(run({"stdin.csv", "--rows=-"}, "2\t3\t4\t0.25\t0\t2").isSilentSuccess());
        save(path("rows.txt"), "\xEF\xBB\xBFnotes\r\n1\t1\t1\t1\t1\tx\r\n\r\n 2 \t\t3\t4\t0.25\t0\t2\r\n");
        QVERIFY(run({"rows.csv", "--rows=rows.txt", "--row=2"}).isSilentSuccess());
        const QByteArray expected = contentOf(path("preset.csv"));
        for (const char *name : {"values.csv", "settings.csv", "stdin.csv", "rows.csv"})
            QCOMPARE(contentOf(path(name)), expected);
        QVERIFY(!QFile::exists(path("home")));
    }

    void readsStandardInputToItsEnd()
    {
        // Pauses of the pipe between rows, and within a value.
        for (const char *input : {"printf '1\\t2\\t3\\t0\\t0\\t1\\n'; sleep .2; printf '2\\t3\\t4\\t.25\\t0\\t2\\n'",
                                  "printf '1\\t2\\t3\\t0\\t0\\t1\\n2\\t3\\t4\\t.2'; sleep .2; printf '5\\t0\\t2\\n'"}) {
            const Result result = runShell(QString("(%1) | \"$0\" --rows - --row 2 a.csv").arg(input));
            QVERIFY2(result.isSilentSuccess(), result.errors);
            QVERIFY(run({"--preset=2", "b.csv"}).isSilentSuccess());
            QCOMPARE(contentOf(path("a.csv")), contentOf(path("b.csv")));
        }
        // A pipe that another program, dd, has made non-blocking.
        const Result result = runShell("(sleep .3; printf '2\\t3\\t4\\t.25\\t0\\t2\\n') | "
                                       "{ dd iflag=nonblock count=0 status=none; \"$0\" --rows - c.csv; }");
        QVERIFY2(result.isSilentSuccess(), result.errors);
        QCOMPARE(contentOf(path("c.csv")), contentOf(path("b.csv")));
    }

    void readsRowsBehindNulBytes()
    {
        save(path("rows.txt"), QByteArray("a\0b\n\0\n1\t2\t3\t0\t0\t1\n2\t3\t4\t0.25\t0\t2\n", 33));
        QVERIFY(run({"--rows=rows.txt", "--row=2", "a.csv"}).isSilentSuccess());
        QVERIFY(run({"--preset=2", "b.csv"}).isSilentSuccess());
        QCOMPARE(contentOf(path("a.csv")), contentOf(path("b.csv")));
        // In a field, a NUL byte is an invalid character.
        save(path("rows.txt"), QByteArray("1\t2\0\t3\t0\t0\t1\n", 13));
        const Result result = run({"--rows=rows.txt", "c.csv"});
        QVERIFY2(result.isFailure(1) && result.errors.contains("row 1 has a field"), result.errors);
    }

    void warnsIfCurveLeavesPage()
    {
        const QStringList beyond = {"--size=20x100", "--turn=90,0,0"};
        for (const char *format : {"png", "svg", "pdf"}) {
            const QString name = QString("a.") + format;
            for (const QStringList &frames : {QStringList(), QStringList("--frames=3")}) {
                const Result result = run(beyond + frames + QStringList(name));
                QCOMPARE(result.status, 0);
                QVERIFY(result.out.isEmpty() && result.errors.startsWith("pendrix3d-export: warning: "));
                QVERIFY(result.errors.contains("--margin"));
                QCOMPARE(result.errors.count('\n'), 1);
                QVERIFY(run(beyond + frames + QStringList({"--margin=0", name})).isSilentSuccess());
            }
        }
    }

    void allFramesHaveSameScaleAndCentre()
    {
        // The bounds of all frames together fill the page, and those of single frames do not.
        const QStringList options = {"--frames=4",  "--frame-step=50", "--turn-step=30,10,0", "--size=200x200",
                                     "--margin=20", "--preset=9",      "--color=white"};
        QVERIFY(run(options + QStringList("a.png")).isSilentSuccess());
        QRect all;
        int touching = 0;
        for (int frame = 1; frame <= 4; ++frame) {
            const QImage image(path(QString("a-%1.png").arg(frame, 5, 10, QLatin1Char('0'))));
            QRect bounds;
            for (int y = 0; y < 200; ++y) {
                for (int x = 0; x < 200; ++x) {
                    if (image.pixel(x, y) != 0xFF000000U)
                        bounds |= QRect(x, y, 1, 1);
                }
            }
            all |= bounds;
            touching += bounds.width() >= 159 || bounds.height() >= 159 ? 1 : 0;
        }
        QVERIFY(touching < 4);
        QVERIFY(std::max(all.width(), all.height()) >= 159 && std::max(all.width(), all.height()) <= 161);
        QVERIFY(std::abs(all.left() - (199 - all.right())) <= 2 && std::abs(all.top() - (199 - all.bottom())) <= 2);
    }

    void stepsSelectFrames()
    {
        // Every file equals a single export of its frame and turn.
        QVERIFY(run({"--frames=3", "--frame=5", "--frame-step=70", "--turn=10,350,0", "--turn-step=1.5,20,-4", "a.svg"})
                    .isSilentSuccess());
        QVERIFY(run({"--frame=145", "--turn=13,30,-8", "b.svg"}).isSilentSuccess());
        QCOMPARE(contentOf(path("a-00003.svg")), contentOf(path("b.svg")));
        // A step of 0 holds the figure.
        QVERIFY(run({"--frames=3", "--frame-step=0", "c.csv"}).isSilentSuccess());
        QVERIFY(run({"d.csv"}).isSilentSuccess());
        QCOMPARE(contentOf(path("c-00003.csv")), contentOf(path("d.csv")));
    }

    void framesAreIndependentOfProcessors()
    {
        const QStringList options = {"--frames=6", "--frame-step=9", "--size=150x150", "--turn-step=0,20,0"};
        for (const char *format : {"png", "svg", "glb"}) {
            const QStringList shape =
                qstrcmp(format, "glb") == 0 ? QStringList({"--frames=6", "--frame-step=9"}) : options;
            QVERIFY(run(shape + QStringList(QString("all.") + format)).isSilentSuccess());
            QVERIFY(runShell("exec taskset -c 0 \"$0\" \"$@\"", shape + QStringList(QString("one.") + format))
                        .isSilentSuccess());
            for (int frame = 1; frame <= 6; ++frame) {
                const QString end = QString("-0000%1.%2").arg(frame).arg(format);
                QCOMPARE(contentOf(path("all" + end)), contentOf(path("one" + end)));
            }
        }
    }

    void smoothExportsNeedSlowOscillators()
    {
        for (const char *format : {"png", "svg", "pdf"}) {
            const QString name = QString("a.") + format;
            QVERIFY(run({"--smooth", "--values=78.5,-78.5,78.5,0,0,0", name}).isSilentSuccess());
            QVERIFY(QFile::remove(path(name)));
            for (const char *values : {"78.6,1,1,0,0,0", "1,-78.6,1,0,0,0", "1,1,1e30,0,0,0"}) {
                const Result result = run({"--smooth", "--values", values, name});
                QVERIFY2(result.isFailure(1) && result.errors.contains("straight lines"), result.errors);
                QVERIFY(!QFile::exists(path(name)));
            }
        }
    }

    void writesNumberedFrames()
    {
        QVERIFY(run({"--frames=3", "--frame=10", "a.b.csv"}).isSilentSuccess());
        QCOMPARE(files(), QStringList({"a.b-00001.csv", "a.b-00002.csv", "a.b-00003.csv"}));
        QVERIFY(run({"--frame=12", "single.csv"}).isSilentSuccess());
        QCOMPARE(contentOf(path("a.b-00003.csv")), contentOf(path("single.csv")));
        QVERIFY(contentOf(path("a.b-00002.csv")) != contentOf(path("single.csv")));
    }

    void oneColorReplacesEngineColors()
    {
        QVERIFY(run({"--color=#010203", "a.csv"}).isSilentSuccess());
        QVERIFY(run({"--color=#010203", "a.svg"}).isSilentSuccess());
        QCOMPARE(contentOf(path("a.csv")).count(",1,2,3\n"), 16666);
        QCOMPARE(contentOf(path("a.svg")).count("<path "), 1);
    }

    void resultsAreIndependentOfEnvironment()
    {
        const QStringList options = {"--row=3", "--size=120x80", "--turn=1.5,2.5,3.5"};
        const QStringList formats = {"png", "svg"};
        for (const QString &format : formats)
            QVERIFY(run(options + QStringList("a." + format)).isSilentSuccess());
        const QProcessEnvironment usual = environment;
        for (const char *setting :
             {"QT_QPA_PLATFORM=nonsense", "QT_QPA_PLATFORM=xcb", "LC_ALL=de_DE.UTF-8", "LC_ALL=xx_YY",
              "HOME=", "HOME=/nonexistent/home", "HOME=/dev/null", "QT_LOGGING_RULES=*=true"}) {
            environment = usual;
            environment.insert(QString(setting).section('=', 0, 0), QString(setting).section('=', 1));
            for (const QString &format : formats) {
                const Result result = run(options + QStringList("b." + format));
                QVERIFY2(result.isSilentSuccess(), setting + result.errors);
                QVERIFY2(contentOf(path("b." + format)) == contentOf(path("a." + format)), setting);
            }
        }
    }

    void acceptsFileNamesOfAnyBytes()
    {
        for (const char *locale : {"C", "C.UTF-8"}) {
            environment.insert("LC_ALL", locale);
            // Bytes that are not UTF-8, in the name and in an error message.
            const Result written = runShell("name=$(printf 'a\\344\\303\\244.csv'); "
                                            "\"$0\" \"$name\" && mv \"$name\" b.csv");
            const Result failed = runShell("\"$0\" \"$(printf 'folder\\033\\344\\302\\233/\\303\\244.csv')\"");
            QVERIFY2(failed.errors.contains("folder?"
                                            "?"
                                            "?/\xC3\xA4.csv"),
                     failed.errors);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
            QVERIFY(written.isSilentSuccess());
            QVERIFY(failed.isFailure(1));
            QVERIFY(QFile::remove(path("b.csv")));
#else
            for (const Result &result : {written, failed}) {
                QVERIFY(result.isFailure(2));
                QVERIFY(result.errors.startsWith("pendrix3d-export: argument is not UTF-8: "));
            }
            QVERIFY(runShell("ln -s \"$(printf 'a\\344.csv')\" link.csv; \"$0\" link.csv").isFailure(1));
            QVERIFY(QFile::remove(path("link.csv")));
#endif
            const Result utf8 = runShell("name=$(printf '\\303\\244\\346\\227\\245.csv'); "
                                         "\"$0\" \"$name\" && mv \"$name\" c.csv");
            QVERIFY(utf8.isSilentSuccess());
            QVERIFY(QFile::remove(path("c.csv")));
            QCOMPARE(files(), QStringList());
        }
    }

    void followsLinks()
    {
        QVERIFY(QDir(folder.path()).mkdir("target"));
        QVERIFY(QFile::link("target/new.csv", path("dangling.csv")));
        save(path("target/old.csv"), "old");
        QVERIFY(QFile::link("target/old.csv", path("link.csv")));
        for (const char *name : {"dangling.csv", "link.csv"}) {
            QVERIFY(run({name}).isSilentSuccess());
            QVERIFY(QFileInfo(path(name)).isSymLink());
            QVERIFY(contentOf(path(name)).startsWith("t,x"));
        }
        QCOMPARE(QDir(path("target")).entryList(QDir::Files), QStringList({"new.csv", "old.csv"}));
    }

    void showsProgressOnTerminalsOnly()
    {
        const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
        QVERIFY(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
        const Result result = runShell(QString("\"$0\" --frames=2 a.csv 2> %1").arg(ptsname(terminal)));
        QByteArray shown;
        char text[256];
        ssize_t length = 0;
        while ((length = read(terminal, text, sizeof text)) > 0) // fails once all has been read
            shown.append(text, int(length));
        close(terminal);
        QCOMPARE(result.status, 0);
        QVERIFY(shown.contains("[####################                    ] 1/2"));
        QVERIFY(shown.endsWith("\r\033[K"));
    }

    void helpAndVersionFailOnUnwritableOutput()
    {
        for (const char *option : {"--help", "--version", "-h", "-v"}) {
            const Result result = run({option});
            QVERIFY(result.status == 0 && result.errors.isEmpty() && result.out.contains("pendrix3d-export"));
            for (const char *output : {"> /dev/full", ">&-", "| true"}) {
                // A pipeline would have the exit status of its last program.
                const Result failed =
                    runShell(QString("{ sleep .02; \"$0\" %1; echo $? > status; } %2").arg(option, output));
                QCOMPARE(contentOf(path("status")), QByteArray("1\n"));
                QVERIFY2(failed.errors.startsWith("pendrix3d-export: cannot write: "), failed.errors);
            }
        }
    }

    // ---- Failure ----

    void failuresKeepFiles_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::newRow("usage") << QStringList({"--preset=0", "a.csv"}) << 2;
        QTest::newRow("unknown option with control characters") << QStringList({"--x\n\033[2J\u009B", "a.csv"}) << 2;
        QTest::newRow("too fast for smooth curves")
            << QStringList({"--values=79,1,1,0,0,0", "--smooth", "--format=svg", "a.csv"}) << 1;
        QTest::newRow("no finite curve") << QStringList({"--values=1,3e38,1,0,0,0", "a.csv"}) << 1;
        QTest::newRow("no such rows") << QStringList({"--rows=none.txt", "a.csv"}) << 1;
        QTest::newRow("rows that are a folder") << QStringList({"--rows=.", "a.csv"}) << 1;
        QTest::newRow("rows that are unlimited") << QStringList({"--rows=/dev/zero", "a.csv"}) << 1;
        QTest::newRow("row not reached") << QStringList({"--rows=rows.txt", "--row=5", "a.csv"}) << 1;
        QTest::newRow("no number") << QStringList({"--rows=rows.txt", "--row=2", "a.csv"}) << 1;
        QTest::newRow("infinity") << QStringList({"--rows=rows.txt", "--row=3", "a.csv"}) << 1;
        QTest::newRow("out of range") << QStringList({"--rows=rows.txt", "--row=4", "a.csv"}) << 1;
        QTest::newRow("folder") << QStringList({"--format=csv", "folder"}) << 1;
        QTest::newRow("missing folder") << QStringList({"none/a.csv"}) << 1;
        QTest::newRow("device") << QStringList({"--format=csv", "/dev/null"}) << 1;
        QTest::newRow("full device") << QStringList({"--format=csv", "/dev/full"}) << 1;
        QTest::newRow("standard output") << QStringList({"--format=csv", "/dev/stdout"}) << 1;
        QTest::newRow("pipe") << QStringList({"pipe.csv"}) << 1;
        QTest::newRow("link to a pipe") << QStringList({"link.csv"}) << 1;
        QTest::newRow("links in a circle") << QStringList({"circle.csv"}) << 1;
        QTest::newRow("name too long") << QStringList({QString(300, 'a') + ".csv"}) << 1;
    }

    void failuresKeepFiles()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        save(path("a.csv"), "kept");
        save(path("rows.txt"), "1\t2\t3\t4\t5\t6\n1\t2\tx\t4\t5\t6\n1\t2\t3\tinf\t5\t6\n1\t2\t3\t1e39\t5\t6\n");
        QVERIFY(QDir(folder.path()).mkdir("folder"));
        QCOMPARE(mkfifo(QFile::encodeName(path("pipe.csv")).constData(), 0600), 0);
        QVERIFY(QFile::link("pipe.csv", path("link.csv")) && QFile::link("circle.csv", path("circle.csv")));
        const QStringList before = files();
        const Result result = run(arguments);
        QVERIFY2(result.isFailure(status), result.errors);
        QCOMPARE(files(), before);
        QCOMPARE(contentOf(path("a.csv")), QByteArray("kept"));
    }

    void fullDisksLeaveNoPartialFile_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"a.png", "a.svg", "a.pdf", "a.ply", "a.csv", "a.glb"})
            QTest::newRow(name) << name;
    }

    void fullDisksLeaveNoPartialFile()
    {
        QFETCH(QString, name);
        save(path(name), "kept");
        for (const int blocks : {0, 1, 64}) { // of 512 bytes
            // A coverage build must not write its counts, which would exceed the limit.
            const Result result =
                runShell(QString("ulimit -f %1; export GCOV_PREFIX=/dev/null GCOV_ERROR_FILE=/dev/null; \"$0\" %2")
                             .arg(blocks)
                             .arg(name));
            QVERIFY2(result.isFailure(1) && result.errors.endsWith(": File too large\n"), result.errors);
            QCOMPARE(files(), QStringList(name));
            QCOMPARE(contentOf(path(name)), QByteArray("kept"));
        }
    }

    void failingStandardOutputIsReported()
    {
        for (const char *format : {"png", "svg", "pdf", "ply", "csv", "glb"}) {
            const Result full = runShell(QString("\"$0\" --format %1 - > /dev/full").arg(format));
            QCOMPARE(full.status, 1);
            QCOMPARE(full.errors,
                     QByteArray("pendrix3d-export: cannot write: standard output: No space left on device\n"));
            QVERIFY(runShell(QString("\"$0\" --format %1 --values=1,3e38,1,0,0,0 -").arg(format)).isFailure(1));
        }
    }

    void finishedFramesStayIfLaterOneFails()
    {
        // The frames before the failing one, and no more after it than other processors have begun.
        QVERIFY(QDir(folder.path()).mkdir("a-00003.csv"));
        QVERIFY(run({"--frames=90", "a.csv"}).isFailure(1));
        const QStringList left = files();
        QVERIFY(left.mid(0, 2) == QStringList({"a-00001.csv", "a-00002.csv"}) && left.size() <= 45);
        for (const QString &name : left)
            QCOMPARE(contentOf(path(name)).count('\n'), 16667);
    }

    void closedStreamsAreNotReused()
    {
        for (const char *streams : {"<&-", ">&-", "2>&-", "<&- >&- 2>&-"}) {
            QCOMPARE(runShell(QString("\"$0\" a.csv %1").arg(streams)).status, 0);
            QVERIFY(contentOf(path("a.csv")).startsWith("t,x"));
            QVERIFY(QFile::remove(path("a.csv")));
        }
        // The error message must not go to a file that has the descriptor of the closed stream.
        QCOMPARE(runShell("\"$0\" --values=1,3e38,1,0,0,0 a.csv 2>&-").status, 1);
        QCOMPARE(files(), QStringList());
        QVERIFY(runShell("\"$0\" --rows=- a.csv <&-").isFailure(1));
    }

    void reportsLackOfMemory()
    {
#ifdef PENDRIX_ADDRESS_SANITIZER
        QSKIP("AddressSanitizer needs more memory than the limit");
#endif
        QVERIFY(runShell("ulimit -v 500000; \"$0\" --size=16384x16384 a.png").isFailure(1));
        QCOMPARE(files(), QStringList());
    }

    // ---- Corpora ----

    void clipboardCorpusIsExportedOrRejected()
    {
        const QDir corpus(PENDRIX_CORPUS "/clipboard");
        int exported = 0;
        const QFileInfoList files = corpus.entryInfoList(QDir::Files);
        for (const QFileInfo &file : files) {
            for (int row = 1; row <= 64; row += sampleSize(32, 1)) {
                const Result result = run({"--rows", file.filePath(), QString("--row=%1").arg(row), "a.csv"});
                QVERIFY2(result.isSilentSuccess() || result.isFailure(1), qPrintable(file.fileName()) + result.errors);
                QCOMPARE(QFile::remove(path("a.csv")), result.status == 0);
                exported += result.status == 0 ? 1 : 0;
            }
        }
        QVERIFY(exported > 0);
    }

    void rowOfSettingsIsExported()
    {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(path("settings")));
        QVector<QVector<float>> rows(64, QVector<float>(6, 1.0F));
        rows[6] = {1.5F, 2.25F, -3.0F, 0.1F, 0.2F, 4.0F};
        const auto settings = openSettings();
        settings->setValue("paramList", QVariant::fromValue(rows));
        settings->sync();
        environment.insert("XDG_CONFIG_HOME", path("settings"));
        QVERIFY(run({"--row=7", "a.csv"}).isSilentSuccess());
        QVERIFY(run({"--values=1.5,2.25,-3,.1,.2,4", "b.csv"}).isSilentSuccess());
        QCOMPARE(contentOf(path("a.csv")), contentOf(path("b.csv")));
    }

    void settingsCorpusIsExportedOrRejectedAndNeverWritten()
    {
        const QDir corpus(PENDRIX_CORPUS "/settings");
        environment.insert("XDG_CONFIG_HOME", path("settings"));
        const QString settings = path("settings/quillmoss/pdx3.conf");
        const QFileInfoList files = corpus.entryInfoList(QDir::Files);
        for (const QFileInfo &file : files) {
            const QByteArray content = contentOf(file.filePath());
            save(settings, content);
            const Result result = run({"--row=1", "a.csv"});
            QVERIFY2(result.isSilentSuccess() || result.isFailure(1), qPrintable(file.fileName()) + result.errors);
            QCOMPARE(contentOf(settings), content);
            QCOMPARE(QDir(path("settings/quillmoss")).entryList(QDir::Files | QDir::Hidden), QStringList("pdx3.conf"));
        }
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "ProgramTest.moc"
