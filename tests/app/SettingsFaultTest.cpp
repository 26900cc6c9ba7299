// Failures of the file system, kills, special files and locks: the settings file is the old one or the new one.

#include "app/Settings.h"
#include "tests/app/FileFaults.h"
#include "tests/support/SampleSize.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/SettingsText.h"

#include <QElapsedTimer>
#include <QLockFile>
#include <QtTest>

#include <csignal>
#include <functional>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using FileFaults::Fault;

namespace {

/// Saves markedRows(`seed`) as the program does. Returns whether the settings could be opened.
bool save(int seed = 2)
{
    const auto settings = openSettings();
    if (settings && canSave(*settings))
        settings->setValue("paramList", QVariant::fromValue(markedRows(seed)));
    return settings != nullptr;
}

/// A settings folder whose file has markedRows(1) and a foreign entry. `newText` has markedRows(2).
class FilledFolder : public SettingsFolder
{
public:
    FilledFolder()
    {
        write("[General]\nforeign=1\n");
        save(1);
        oldText = read();
        save(2);
        newText = read();
        save(1);
    }

    QByteArray oldText;
    QByteArray newText;
};

QByteArray encodedPath(const SettingsFolder &folder, const QString &name = QStringLiteral("quillmoss/pdx3.conf"))
{
    return QFile::encodeName(folder.path(name));
}

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

/// Returns how many units of `size` bytes a file of 64 MiB has, with room for the rows of a save.
int unitsIn64Mebibytes(int size)
{
    return ((64 << 20) - 10000) / size;
}

/// Runs `action` in a child process. Returns the child's wait status.
int statusOfChild(const std::function<bool()> &action)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(action() ? 0 : 1);
    int status = -1;
    return waitpid(child, &status, 0) == child ? status : -1;
}

} // namespace

class SettingsFaultTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("HOME", "/nonexistent");
        qputenv("XDG_CONFIG_HOME", "/nonexistent");
        const FilledFolder folder;
        QVERIFY(folder.oldText.contains("foreign=1") && folder.newText != folder.oldText);
    }

    void cleanup() { FileFaults::inject(); }

    // ---- Failing calls ----

    void oldOrNewFileRemainsAfterFailingCall()
    {
        for (const int error : {ENOSPC, EIO, EDQUOT, EMFILE}) {
            int failures = 0;
            int oldFiles = 0;
            for (bool isReached = true; isReached; ++failures) {
                const FilledFolder folder;
                FileFaults::inject(Fault::Fail, failures, error, encodedPath(folder, ""));
                save();
                isReached = FileFaults::inject() > failures;
                const QByteArray text = folder.read();
                QVERIFY2(text == folder.oldText || text == folder.newText, QByteArray::number(failures));
                oldFiles += text == folder.oldText ? 1 : 0;
            }
            qInfo("errno %d: %d failures, the old file after %d, the new one after the others", error, failures - 1,
                  oldFiles);
            QVERIFY(failures > 15 && oldFiles > 8);
        }
    }

    void failingCallWhileLoadingYieldsOldRowsOrNone()
    {
        // The calls of openSettings: open, reads, close.
        const QByteArray text = FilledFolder().oldText;
        int failures = 0;
        int unreadable = 0;
        for (bool isReached = true; isReached; ++failures) {
            const SettingsFolder folder;
            QVERIFY(folder.write(text));
            FileFaults::inject(Fault::Fail, failures, failures % 2 == 0 ? EMFILE : EIO, encodedPath(folder, ""));
            const auto settings = openSettings();
            isReached = FileFaults::inject() > failures;
            QVERIFY(!settings || storedParamList(*settings) == markedRows(1));
            unreadable += settings ? 0 : 1;
        }
        QVERIFY(unreadable >= 2);
    }

    void linkToFileOnFullDiskKeepsOldRows()
    {
        for (const int room : {0, 1, 100, 4096}) {
            const FilledFolder folder;
            QVERIFY(QDir().mkpath(folder.path("full")));
            QVERIFY(QFile::rename(folder.path(), folder.path("full/target")));
            QVERIFY(QFile::link(folder.path("full/target"), folder.path()));
            FileFaults::inject(Fault::FullDisk, room, ENOSPC, encodedPath(folder, "full"));
            QVERIFY(save());
            FileFaults::inject();
            QCOMPARE(folder.read(), room < folder.newText.size() ? folder.oldText : folder.newText);
            QCOMPARE(QFileInfo(folder.path()).symLinkTarget(), folder.path("full/target"));
            QCOMPARE(filesIn(folder.path("full")), QStringList("target"));
        }
    }

    void oldOrNewFileRemainsAfterKill()
    {
        const int rounds = sampleSize(1, 10);
        for (int round = 0; round < 2 * rounds; ++round) {
            const Fault fault = round % 2 == 0 ? Fault::Kill : Fault::KillHalfway;
            int kills = 0;
            for (bool isKilled = true; isKilled; ++kills) {
                const FilledFolder folder;
                isKilled = WIFSIGNALED(statusOfChild([&] {
                    FileFaults::inject(fault, kills, 0, encodedPath(folder, ""));
                    return save();
                }));
                const QByteArray text = folder.read();
                QVERIFY2(text == folder.newText || (isKilled && text == folder.oldText), QByteArray::number(kills));
            }
            QVERIFY(kills > 15);
        }
    }

    // ---- Permissions and files of other kinds ----

    void unreadableFileAndReadOnlyFolderAreKept()
    {
        const QByteArray text = FilledFolder().oldText;
        for (const mode_t mode : {0000U, 0444U}) {
            const SettingsFolder folder;
            QVERIFY(folder.write(text) && chmod(encodedPath(folder), mode) == 0);
            QVERIFY(chmod(encodedPath(folder, ""), 0755) == 0 && chmod(encodedPath(folder, "quillmoss"), 0555) == 0);
            const int status = statusOfChild([mode] {
                return (getuid() != 0 || setuid(65534) == 0) && save() == (mode != 0); // root may do everything
            });
            QVERIFY(chmod(encodedPath(folder, "quillmoss"), 0755) == 0 && chmod(encodedPath(folder), 0644) == 0);
            QCOMPARE(status, 0);
            QCOMPARE(folder.read(), text);
        }
    }

    void specialFileIsNeitherOpenedNorReplaced()
    {
        for (const char *target : {"fifo", "folder", "/dev/zero", "/dev/full", "pdx3.conf"}) {
            const SettingsFolder folder;
            QVERIFY(mkfifo(encodedPath(folder, "quillmoss/fifo"), 0600) == 0);
            QVERIFY(QDir().mkpath(folder.path("quillmoss/folder")));
            QVERIFY(symlink(target, encodedPath(folder)) == 0);
            QVERIFY2(!openSettings(), target);
            QCOMPARE(filesIn(folder.path("quillmoss")), QStringList({"fifo", "folder", "pdx3.conf"}));
            QVERIFY(QFileInfo(folder.path()).isSymLink());
        }
    }

    void specialFileThatReplacesOpenFileIsNeitherOpenedNorReplaced()
    {
        for (const bool isLink : {false, true}) {
            const FilledFolder folder;
            const int status = statusOfChild([&] {
                alarm(5);
                const auto settings = openSettings();
                const QByteArray fifo = encodedPath(folder, isLink ? "fifo" : "quillmoss/pdx3.conf");
                QFile::remove(folder.path());
                if (mkfifo(fifo, 0600) != 0 || (isLink && symlink(fifo, encodedPath(folder)) != 0))
                    return false;
                return !canSave(*settings);
            });
            QCOMPARE(status, 0);
        }
    }

    void fifoAsFallbackFileIsNotOpened()
    {
        const FilledFolder folder;
        QVERIFY(mkfifo(encodedPath(folder, "quillmoss.conf"), 0600) == 0);
        QVERIFY(save() && folder.read() == folder.newText);
    }

    void missingFolderOrTargetOfLinkIsCreated()
    {
        const SettingsFolder folder;
        QVERIFY(QDir(folder.path("quillmoss")).removeRecursively());
        QVERIFY(save() && folder.read().contains("paramList"));
        const SettingsFolder other;
        QVERIFY(QFile::link(other.path("target"), other.path()));
        QVERIFY(save() && QFileInfo(other.path()).isSymLink() && other.read().contains("paramList"));
    }

    void saveKeepsModeAndDetachesHardLink()
    {
        for (const mode_t mode : {0600U, 0644U, 0640U}) {
            const FilledFolder folder;
            const QByteArray text = folder.oldText + variantLine("geometry", streamed(9U) + streamed(0x7FFFFFFFU));
            QVERIFY(folder.write(text) && chmod(encodedPath(folder), mode) == 0);
            QVERIFY(link(encodedPath(folder), encodedPath(folder, "other")) == 0);
            QVERIFY(save());
            struct stat status = {};
            QVERIFY(stat(encodedPath(folder), &status) == 0);
            QCOMPARE(status.st_mode & 07777U, mode);
            QCOMPARE(filesIn(folder.path("quillmoss")), QStringList("pdx3.conf"));
            QVERIFY(folder.read() != text);
            QFile other(folder.path("other"));
            QVERIFY(other.open(QIODevice::ReadOnly));
            QCOMPARE(other.readAll(), text);
        }
    }

    // ---- Large files ----

    void largestFileIsLoadedAndSavedInLittleMemory_data()
    {
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<QByteArray>("unit"); // fills the rest of the file
        QTest::addColumn<int>("mebibytes");   // of address space
        const QByteArray list = userValue("QVector<QVector<float> >", streamed(unitsIn64Mebibytes(8)));
        QTest::newRow("empty rows") << variantLine("paramList", list).chopped(2) << QByteArray("\\0\\0\\0\\0") << 300;
        if (sampleSize(0, 1) == 0)
            return;
        QTest::newRow("byte array") << QByteArray("geometry=@ByteArray(") << QByteArray("a") << 512;
        QTest::newRow("empty entries") << QByteArray() << QByteArray("paramList=\n") << 512;
        QTest::newRow("sections") << QByteArray() << QByteArray("[General]\n") << 512;
        QTest::newRow("short sections") << QByteArray() << QByteArray("[\n") << 512;
        QTest::newRow("empty lines") << QByteArray() << QByteArray("\n") << 512;
    }

    void largestFileIsLoadedAndSavedInLittleMemory()
    {
        QFETCH(QByteArray, start);
        QFETCH(QByteArray, unit);
        QFETCH(int, mebibytes);
#ifdef PENDRIX_ADDRESS_SANITIZER
        QSKIP("AddressSanitizer reserves terabytes of address space");
#endif
        const QByteArray end = start.isEmpty() ? "" : ")\n";
        const FilledFolder folder;
        QVERIFY(folder.write(start + unit.repeated(unitsIn64Mebibytes(static_cast<int>(unit.size()))) + end));
        QCOMPARE(statusOfChild([mebibytes] {
                     const rlimit limit = {static_cast<rlim_t>(mebibytes) << 20U, RLIM_INFINITY};
                     return setrlimit(RLIMIT_AS, &limit) == 0 && save(2);
                 }),
                 0);
        QVERIFY(folder.read().contains(folder.newText.split('\n').at(1)));
    }

    // ---- Locks ----

    void locksDelaySaveBySecondsAtMost_data()
    {
        QTest::addColumn<int>("least"); // milliseconds
        QTest::addColumn<int>("most");
        QTest::addColumn<bool>("isSaved");
        QTest::newRow("of killed process") << 0 << 1000 << true;
        QTest::newRow("of other host") << 0 << 4500 << true;
        QTest::newRow("empty") << 0 << 4500 << true;
        QTest::newRow("held") << 3000 << 4500 << false; // as for a lock of another user
        QTest::newRow("folder") << 0 << 1000 << false;
        QTest::newRow("FIFO") << 0 << 1000 << false;
    }

    void locksDelaySaveBySecondsAtMost()
    {
        QFETCH(int, least);
        QFETCH(int, most);
        const QByteArray kind = QTest::currentDataTag();
        const FilledFolder folder;
        const QString name = "quillmoss/pdx3.conf.lock";
        QLockFile held(folder.path(name));
        if (kind == "of killed process") {
            QCOMPARE(statusOfChild([&] { return (new QLockFile(folder.path(name)))->lock(); }), 0);
            QVERIFY(QFile::exists(folder.path(name)));
        } else if (kind == "of other host")
            QVERIFY(folder.write("1\nprogram\nother-host\nother-id\nother-boot\n", name));
        else if (kind == "empty")
            QVERIFY(folder.write({}, name));
        else if (kind == "held")
            QVERIFY(held.lock());
        else if (kind == "folder")
            QVERIFY(QDir().mkpath(folder.path(name)));
        else
            QVERIFY(mkfifo(encodedPath(folder, name), 0600) == 0);
        QElapsedTimer time;
        time.start();
        QVERIFY(save());
        QVERIFY2(time.elapsed() >= least && time.elapsed() < most, QByteArray::number(time.elapsed()));
        QTEST(folder.read() == folder.newText, "isSaved");
        QVERIFY(folder.read() == folder.newText || folder.read() == folder.oldText);
    }
};

QTEST_GUILESS_MAIN(SettingsFaultTest)
#include "SettingsFaultTest.moc"
