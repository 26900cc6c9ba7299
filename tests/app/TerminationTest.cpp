// Termination signals and session managers: the window closes, and the settings are saved.

#include "app/MainWindow.h"
#include "app/Settings.h"
#include "app/TerminationSignals.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/app/FakeSessionManager.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/SampleSize.h"
#include "tests/support/SettingsText.h"
#include "ui_MainWindow.h"

#include <QLineEdit>
#include <QLockFile>
#include <QProcess>
#include <QSignalSpy>
#include <QThread>
#include <QTimer>

#include <csignal>
#include <random>
#include <utility>

namespace {

/// Runs the program with markedRows(7) and opens `state`: "about", "reset", "menu", "editor", "minimised" or none.
/// Prints "ready" when it is open.
int runProgram(int argc, char **argv, const QByteArray &state)
{
    QApplication application(argc, argv);
    closeOnTerminationSignals(&application);
    MainWindow window;
    window.show();
    window.activateWindow();
    pdx3.paramList = markedRows(7);
    const auto open = [&] {
        if (state == "about")
            window.ui->actionabout->trigger();
        else if (state == "reset")
            window.ui->actionreset->trigger();
        else if (state == "menu")
            window.ui->menuFile->exec(QPoint(50, 50));
        else if (state == "minimised")
            window.showMinimized();
        else if (state == "editor") {
            window.ui->tableParams->setFocus();
            window.ui->tableParams->edit(window.ui->tableParams->model->index(2, 1));
            QTest::keyClicks(QApplication::focusWidget(), "42.5");
        }
    };
    const auto isOpen = [&] {
        return state == "window" || state == "minimised" || QApplication::activePopupWidget() ||
               QApplication::activeModalWidget() || qobject_cast<QLineEdit *>(QApplication::focusWidget());
    };
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&, isOpening = false]() mutable {
        if (!isOpening && window.isActiveWindow()) {
            isOpening = true;
            QTimer::singleShot(0, &window, open); // modal ones would block this timer
        } else if (isOpening && isOpen()) {
            poll.stop();
            QTextStream(stdout) << "ready\n";
        }
    });
    poll.start(50);
    return QApplication::exec();
}

} // namespace

class TerminationTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<SettingsFolder> folder;
    QProcess process;

    /// Starts `command` with `folder` as its settings folder.
    void start(QStringList command, const QByteArray &session = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", folder->path(QString()));
        environment.remove("SESSION_MANAGER");
        if (!session.isEmpty())
            environment.insert("SESSION_MANAGER", session);
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(command.takeFirst(), command);
    }

    /// Starts this program as runProgram, by a command that has `prefix`, and waits until `state` is open.
    void startWith(const QString &state, const QStringList &prefix = {})
    {
        start(prefix + QStringList{QCoreApplication::applicationFilePath(), "--state", state});
        QVERIFY(process.waitForReadyRead(30000));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("ready\n"));
    }

    void send(int signal) const { ::kill(static_cast<pid_t>(process.processId()), signal); }

    void verifyExitWith(const Rows &rows)
    {
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(savedRows(), rows);
    }

    Rows savedRows() const
    {
        const SettingsFolder copy; // Qt caches files by path
        return copy.write(folder->read()) ? storedParamList(*openSettings()) : Rows();
    }

private slots:
    void init() { folder = std::make_unique<SettingsFolder>(); }

    void cleanup()
    {
        process.kill();
        process.waitForFinished();
    }

    void signalClosesAndSaves_data()
    {
        QTest::addColumn<QVector<int>>("sent");
        for (const char *state : {"window", "about", "reset", "menu", "editor", "minimised"})
            QTest::newRow(state) << QVector<int>{SIGTERM};
        QTest::newRow("window SIGHUP") << QVector<int>{SIGHUP};
        QTest::newRow("window SIGINT") << QVector<int>{SIGINT};
        QTest::newRow("window SIGTERM SIGHUP") << QVector<int>{SIGTERM, SIGHUP};
    }

    void signalClosesAndSaves()
    {
        QFETCH(QVector<int>, sent);
        const QByteArray state = QByteArray(QTest::currentDataTag()).split(' ').first();
        startWith(state);
        for (const int signal : std::as_const(sent))
            send(signal);
        Rows expected = markedRows(7);
        if (state == "editor")
            expected[2][1] = 42.5F;
        verifyExitWith(expected);
    }

    void signalsWhileClosingAreIgnored()
    {
        QLockFile delay(folder->path() + ".lock"); // delays the exit for seconds
        QVERIFY(delay.lock());
        startWith("window");
        for (const int signal : {SIGTERM, SIGTERM, SIGHUP, SIGHUP, SIGINT, SIGINT}) {
            send(signal);
            QVERIFY(!process.waitForFinished(100));
        }
        delay.unlock();
        verifyExitWith(markedRows(7));
    }

    void severalSignalsAtOnceCloseAndSave()
    {
        Rows expected = markedRows(7);
        expected[2][1] = 42.5F;
        std::mt19937 random(5);
        const int rounds = sampleSize(2, 60);
        for (int round = 0; round < rounds; ++round) {
            init();
            startWith("editor", {"timeout", "600"});
            send(SIGTERM); // timeout sends it to the program and to the process group
            verifyExitWith(expected);
            if (QTest::currentTestFailed())
                return;

            init();
            startWith("editor");
            for (auto count = 2 + random() % 4; count > 0; --count) {
                const int kinds[] = {SIGTERM, SIGHUP, SIGINT};
                send(kinds[random() % 3]);
                QThread::msleep(random() % 10);
            }
            verifyExitWith(expected);
            if (QTest::currentTestFailed())
                return;
        }
    }

    void ignoredSignalStaysIgnored()
    {
        startWith("window", {"nohup"});
        send(SIGHUP);
        QVERIFY(!process.waitForFinished(500));
        send(SIGTERM);
        verifyExitWith(markedRows(7));
    }

    // The program itself, because only its main configures sessions and signals.

    void checkpointKeepsProgramOpenAndLogoutSaves()
    {
        FakeSessionManager manager;
        QSignalSpy registered(&manager, &FakeSessionManager::registered);
        QSignalSpy saved(&manager, &FakeSessionManager::saved);
        start({PROGRAM}, manager.address());
        QVERIFY(registered.wait(30000));
        manager.save(false);
        QVERIFY(saved.wait());
        QVERIFY(!process.waitForFinished(300));
        QVERIFY(folder->read().isEmpty());

        manager.save(true);
        QVERIFY(saved.wait());
        QVERIFY(folder->read().isEmpty());
        manager.die();
        verifyExitWith(pdx3.paramList);
    }

    void signalClosesProgram()
    {
        FakeSessionManager manager;
        QSignalSpy registered(&manager, &FakeSessionManager::registered); // when the program has started
        start({PROGRAM}, manager.address());
        QVERIFY(registered.wait(30000));
        QTest::qWait(500);
        send(SIGTERM);
        verifyExitWith(pdx3.paramList);
    }
};

int main(int argc, char *argv[])
{
    if (argc > 2 && qstrcmp(argv[1], "--state") == 0)
        return runProgram(argc, argv, argv[2]);
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
    QApplication application(argc, argv);
    TerminationTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "TerminationTest.moc"
