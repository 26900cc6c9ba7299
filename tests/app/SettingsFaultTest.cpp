// Failures of the file system, kills, special files and locks: the settings file is the old one or the new one.

#include "app/Settings.h"
#include "tests/app/FileFaults.h"
#include "tests/support/SampleSize.h"
#include "tests/support/SettingsText.h"

#include <QElapsedTimer>
#include <QLockFile>
#include <QtTest>

#include <csignal>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using FileFaults::Fault;

namespace {

/// Saves `rows` as the program does. Returns whether there was anything to save to.
bool save(const Rows &rows)
{
    const auto settings = openSettings();
    if (settings && canSave(*settings))
        settings->setValue("paramList", QVariant::fromValue(rows));
    return settings != nullptr;
}

/// A settings folder whose file has markedRows(1) and a foreign entry.
class FilledFolder : public SettingsFolder
{
public:
    FilledFolder()
    {
        write("[General]\nforeign=1\n");
        save(markedRows(1));
        oldText = read();
        save(markedRows(2));
        newText = read();
        save(markedRows(1));
    }

    QByteArray encodedPath() const { return QFile::encodeName(path(QString())); }

    QByteArray oldText;
    QByteArray newText;
};

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
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
        QVERIFY(folder.oldText.contains("foreign=1") && folder.oldText.contains("paramList="));
        QVERIFY(folder.newText != folder.oldText && folder.read() == folder.oldText);
    }

    void cleanup() { FileFaults::inject(); }

    // ---- Failing calls ----

    void failureOfAnyCallKeepsTheOldOrTheNewFile_data()
    {
        QTest::addColumn<int>("error");
        QTest::newRow("ENOSPC") << ENOSPC;
        QTest::newRow("EIO") << EIO;
        QTest::newRow("EDQUOT") << EDQUOT;
        QTest::newRow("EMFILE") << EMFILE;
    }

    void failureOfAnyCallKeepsTheOldOrTheNewFile()
    {
        QFETCH(int, error);
        int failures = 0;
        int oldFiles = 0;
        for (bool isReached = true; isReached; ++failures) {
            const FilledFolder folder;
            FileFaults::inject(Fault::Fail, failures, error, folder.encodedPath());
            save(markedRows(2));
            isReached = FileFaults::inject() > failures;
            const QByteArray text = folder.read();
            QVERIFY2(text == folder.oldText || (text == folder.newText), QByteArray::number(failures));
            oldFiles += text == folder.oldText ? 1 : 0;
        }
        qInfo("%d failures: the old file after %d of them, the new one after the others", failures - 1, oldFiles);
        QVERIFY(failures > 15 && oldFiles > 8);
    }

    void failureWhileLoadingKeepsTheFile()
    {
        // The calls of openSettings alone: open, reads, close.
        int failures = 0;
        int unreadable = 0;
        for (bool isReached = true; isReached; ++failures) {
            const FilledFolder folder;
            const SettingsFolder other; // whose path Qt has not cached
            QVERIFY(other.write(folder.oldText));
            FileFaults::inject(Fault::Fail, failures, failures % 2 == 0 ? EMFILE : EIO,
                               QFile::encodeName(other.path(QString())));
            const auto settings = openSettings();
            isReached = FileFaults::inject() > failures;
            QVERIFY(!settings || storedParamList(*settings) == markedRows(1));
            unreadable += settings ? 0 : 1;
        }
        QVERIFY(unreadable >= 2);
    }

    void fullDiskBehindASymbolicLinkKeepsTheOldRows()
    {
        for (const int room : {0, 1, 100, 4096}) {
            FilledFolder folder;
            QVERIFY(QDir().mkpath(folder.path("full")));
            QVERIFY(QFile::rename(folder.path(), folder.path("full/target")));
            QVERIFY(QFile::link(folder.path("full/target"), folder.path()));
            FileFaults::inject(Fault::FullDisk, room, ENOSPC, QFile::encodeName(folder.path("full")));
            QVERIFY(save(markedRows(2)));
            FileFaults::inject();
            QCOMPARE(folder.read(), room < folder.newText.size() ? folder.oldText : folder.newText);
            QCOMPARE(QFileInfo(folder.path()).symLinkTarget(), folder.path("full/target"));
            QCOMPARE(filesIn(folder.path("full")), QStringList("target"));
        }
    }

    void killAtAnyCallKeepsTheOldOrTheNewFile_data()
    {
        QTest::addColumn<bool>("isHalfway");
        QTest::newRow("before the call") << false;
        QTest::newRow("amid a write") << true;
    }

    void killAtAnyCallKeepsTheOldOrTheNewFile()
    {
        QFETCH(bool, isHalfway);
        const int rounds = sampleSize(1, 10);
        for (int round = 0; round < rounds; ++round) {
            int kills = 0;
            for (bool isKilled = true; isKilled; ++kills) {
                const FilledFolder folder;
                const pid_t child = fork();
                if (child == 0) {
                    FileFaults::inject(isHalfway ? Fault::KillHalfway : Fault::Kill, kills, 0, folder.encodedPath());
                    save(markedRows(2));
                    _exit(0);
                }
                int status = 0;
                QCOMPARE(waitpid(child, &status, 0), child);
                isKilled = WIFSIGNALED(status);
                const QByteArray text = folder.read();
                QVERIFY2(text == folder.oldText || text == folder.newText, QByteArray::number(kills));
                QVERIFY2(isKilled || text == folder.newText, QByteArray::number(kills));
            }
            QVERIFY(kills > 15);
        }
    }

    void aSaveAfterAKillIsNotDelayed()
    {
        const FilledFolder folder;
        const pid_t child = fork();
        if (child == 0) {
            const QLockFile *lock = new QLockFile(folder.path() + ".lock");
            _exit(const_cast<QLockFile *>(lock)->lock() ? 0 : 1);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(status == 0 && QFile::exists(folder.path() + ".lock"));
        QElapsedTimer time;
        time.start();
        QVERIFY(save(markedRows(2)));
        QVERIFY(time.elapsed() < 1000);
        QCOMPARE(folder.read(), folder.newText);
    }

    // ---- Files of other kinds ----

    void aSpecialFileIsNeitherOpenedNorReplaced_data()
    {
        QTest::addColumn<QByteArray>("target"); // of a symbolic link
        QTest::newRow("FIFO") << QByteArray("fifo");
        QTest::newRow("folder") << QByteArray("folder");
        QTest::newRow("endless device") << QByteArray("/dev/zero");
        QTest::newRow("full device") << QByteArray("/dev/full");
        QTest::newRow("link to itself") << QByteArray("pdx3.conf");
    }

    void aSpecialFileIsNeitherOpenedNorReplaced()
    {
        QFETCH(QByteArray, target);
        const SettingsFolder folder;
        QVERIFY(mkfifo(QFile::encodeName(folder.path("quillmoss/fifo")).constData(), 0600) == 0);
        QVERIFY(QDir().mkpath(folder.path("quillmoss/folder")));
        QVERIFY(symlink(target.constData(), QFile::encodeName(folder.path()).constData()) == 0);
        QVERIFY(!openSettings());
        QCOMPARE(filesIn(folder.path("quillmoss")), QStringList({"fifo", "folder", "pdx3.conf"}));
        QVERIFY(QFileInfo(folder.path()).isSymLink());
    }

    void aFifoAsFallbackFileIsNotOpened()
    {
        const FilledFolder folder;
        QVERIFY(mkfifo(QFile::encodeName(folder.path("quillmoss.conf")).constData(), 0600) == 0);
        QVERIFY(save(markedRows(2)));
        QCOMPARE(folder.read(), folder.newText);
    }

    void aLinkToAMissingFileIsKept()
    {
        const SettingsFolder folder;
        QVERIFY(QFile::link(folder.path("target"), folder.path()));
        QVERIFY(save(markedRows(2)));
        QVERIFY(QFileInfo(folder.path()).isSymLink() && QFileInfo(folder.path("target")).size() > 1000);
    }

    void aMissingFolderIsMade()
    {
        const SettingsFolder folder;
        QVERIFY(QDir(folder.path("quillmoss")).removeRecursively());
        QVERIFY(save(markedRows(2)));
        QVERIFY(folder.read().contains("paramList"));
    }

    void theModeIsKeptAndNothingIsLeftBehind()
    {
        for (const mode_t mode : {0600, 0644, 0640}) {
            const FilledFolder folder;
            const QByteArray damaged = variantLine("geometry", streamed(9U) + streamed(0x7FFFFFFFU));
            QVERIFY(folder.write("[General]\n" + damaged + rowsLine(markedRows(1))));
            const QByteArray path = QFile::encodeName(folder.path());
            QVERIFY(chmod(path.constData(), mode) == 0);
            QVERIFY(save(markedRows(2)));
            struct stat status = {};
            QVERIFY(stat(path.constData(), &status) == 0);
            QCOMPARE(status.st_mode & 07777U, mode);
            QCOMPARE(filesIn(folder.path("quillmoss")), QStringList("pdx3.conf"));
        }
    }

    void aHardLinkIsDetached()
    {
        const FilledFolder folder;
        const QByteArray other = QFile::encodeName(folder.path("other"));
        QVERIFY(link(QFile::encodeName(folder.path()).constData(), other.constData()) == 0);
        QVERIFY(save(markedRows(2)));
        QFile file(folder.path("other"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), folder.oldText);
    }

    // ---- Locks ----

    void aStaleLockIsRemoved_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("of another host") << QByteArray("1\nprogram\nother-host\nother-id\nother-boot\n");
        QTest::newRow("without content") << QByteArray();
    }

    void aStaleLockIsRemoved()
    {
        QFETCH(QByteArray, content);
        const FilledFolder folder;
        QVERIFY(folder.write(content, "quillmoss/pdx3.conf.lock"));
        QElapsedTimer time;
        time.start();
        QVERIFY(save(markedRows(2)));
        QVERIFY(time.elapsed() < 4500);
        QCOMPARE(folder.read(), folder.newText);
    }

    void aLockThatCannotBeRemovedDelaysTheExitBySeconds()
    {
        const FilledFolder folder;
        QLockFile held(folder.path() + ".lock"); // removing another user's lock fails just as well
        QVERIFY(held.lock());
        QElapsedTimer time;
        time.start();
        QVERIFY(save(markedRows(2)));
        QVERIFY(time.elapsed() > 3000 && time.elapsed() < 4500);
        QCOMPARE(folder.read(), folder.oldText);
    }

    void aLockThatIsNoFileCausesNoDelay()
    {
        for (const bool isFolder : {true, false}) {
            const FilledFolder folder;
            const QString path = folder.path() + ".lock";
            QVERIFY(isFolder ? QDir().mkpath(path) : mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
            QElapsedTimer time;
            time.start();
            QVERIFY(save(markedRows(2)));
            QVERIFY(time.elapsed() < 1000);
            QCOMPARE(folder.read(), folder.oldText);
        }
    }
};

QTEST_GUILESS_MAIN(SettingsFaultTest)
#include "SettingsFaultTest.moc"
