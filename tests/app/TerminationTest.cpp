// Signals and session managers end the program: its window closes, and the settings are saved.

#include "app/MainWindow.h"
#include "app/Settings.h"
#include "app/TerminationSignals.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/app/FakeSessionManager.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/SettingsText.h"
#include "ui_MainWindow.h"

#include <QLineEdit>
#include <QLockFile>
#include <QMessageBox>
#include <QProcess>
#include <QSignalSpy>
#include <QTimer>

#include <csignal>

#include <sys/types.h>

namespace {

/// As main, with rows of its own and `state` open: "about", "reset", "menu", "editor" or "minimised". Prints "ready".
int runProgram(int argc, char **argv, const QByteArray &state)
{
    QApplication application(argc, argv);
    closeOnTerminationSignals(&application);
    MainWindow window;
    window.show();
    window.activateWindow();
    pdx3.paramList = markedRows(7);
    const auto openState = [&] {
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
        const QByteArray focused =
            QApplication::focusWidget() ? QApplication::focusWidget()->metaObject()->className() : "";
        return state == "menu"                        ? QApplication::activePopupWidget() != nullptr
               : state == "about" || state == "reset" ? QApplication::activeModalWidget() != nullptr
               : state == "editor"                    ? focused == "QExpandingLineEdit"
                                                      : true;
    };
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&, isAsked = false]() mutable {
        if (!isAsked && window.isActiveWindow()) {
            isAsked = true;
            QTimer::singleShot(0, &window, openState); // modal ones would block this timer
        } else if (isAsked && isOpen()) {
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

    /// Starts `program` with `folder` as its settings folder.
    std::unique_ptr<QProcess> start(const QString &program, const QStringList &arguments,
                                    const QByteArray &session = {})
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", folder->path(QString()));
        environment.remove("SESSION_MANAGER");
        if (!session.isEmpty())
            environment.insert("SESSION_MANAGER", session);
        process->setProcessEnvironment(environment);
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process->start(program, arguments);
        return process;
    }

    /// Starts this program as runProgram and waits until `state` is open.
    std::unique_ptr<QProcess> startWith(const QByteArray &state, const QString &wrapper = {})
    {
        QStringList arguments = {QCoreApplication::applicationFilePath(), "--state", state};
        if (!wrapper.isEmpty())
            arguments.prepend(wrapper);
        const QString program = arguments.takeFirst();
        auto process = start(program, arguments);
        return process->waitForReadyRead(30000) && process->readAllStandardOutput() == "ready\n" ? std::move(process)
                                                                                                 : nullptr;
    }

    static void send(const QProcess &process, int signal) { ::kill(static_cast<pid_t>(process.processId()), signal); }

    Rows savedRows() const
    {
        const SettingsFolder copy; // Qt caches files by path
        return copy.write(folder->read()) ? storedParamList(*openSettings()) : Rows();
    }

private slots:
    void init() { folder = std::make_unique<SettingsFolder>(); }

    void aSignalClosesAndSaves_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<QByteArray>("state");
        QTest::newRow("SIGTERM") << SIGTERM << QByteArray("window");
        QTest::newRow("SIGHUP") << SIGHUP << QByteArray("window");
        QTest::newRow("SIGINT") << SIGINT << QByteArray("window");
        for (const char *state : {"about", "reset", "menu", "editor", "minimised"})
            QTest::newRow(state) << SIGTERM << QByteArray(state);
    }

    void aSignalClosesAndSaves()
    {
        QFETCH(int, signal);
        QFETCH(QByteArray, state);
        const auto process = startWith(state);
        QVERIFY(process);
        send(*process, signal);
        QVERIFY(process->waitForFinished());
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 0);
        Rows expected = markedRows(7);
        if (state == "editor")
            expected[2][1] = 42.5F;
        QCOMPARE(savedRows(), expected);
    }

    void signalsOfAnEndingSessionTogetherCloseAndSave()
    {
        const auto process = startWith("window");
        QVERIFY(process);
        send(*process, SIGTERM);
        send(*process, SIGHUP);
        QVERIFY(process->waitForFinished());
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(savedRows(), markedRows(7));
    }

    void aSecondSignalHasItsDefaultAction()
    {
        QLockFile delay(folder->path() + ".lock"); // keeps the program from exiting for seconds
        QVERIFY(delay.lock());
        const auto process = startWith("window");
        QVERIFY(process);
        send(*process, SIGTERM);
        QVERIFY(!process->waitForFinished(1000));
        send(*process, SIGTERM);
        QVERIFY(process->waitForFinished(1000));
        QCOMPARE(process->exitStatus(), QProcess::CrashExit);
        QCOMPARE(process->exitCode(), SIGTERM);
    }

    void anIgnoredSignalStaysIgnored()
    {
        const auto process = startWith("window", "nohup");
        QVERIFY(process);
        send(*process, SIGHUP);
        QVERIFY(!process->waitForFinished(500));
        send(*process, SIGTERM);
        QVERIFY(process->waitForFinished());
        QCOMPARE(process->exitCode(), 0);
        QCOMPARE(savedRows(), markedRows(7));
    }

    // The installed program itself, for what only its main does.

    void aCheckpointKeepsTheProgramOpenAndALogoutSaves()
    {
        FakeSessionManager manager;
        QSignalSpy registered(&manager, &FakeSessionManager::registered);
        QSignalSpy saved(&manager, &FakeSessionManager::saved);
        const auto process = start(PROGRAM, {}, manager.address());
        QVERIFY(registered.wait(30000));
        manager.save(false);
        QVERIFY(saved.wait());
        QTest::qWait(300);
        QCOMPARE(process->state(), QProcess::Running);
        QVERIFY(folder->read().isEmpty());

        manager.save(true);
        QVERIFY(saved.wait());
        QVERIFY(folder->read().isEmpty());
        manager.die();
        QVERIFY(process->waitForFinished());
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 0);
        QCOMPARE(savedRows(), pdx3.paramList);
    }

    void theProgramHandlesSignals()
    {
        FakeSessionManager manager; // tells when the program has started
        QSignalSpy registered(&manager, &FakeSessionManager::registered);
        const auto process = start(PROGRAM, {}, manager.address());
        QVERIFY(registered.wait(30000));
        QTest::qWait(500);
        send(*process, SIGTERM);
        QVERIFY(process->waitForFinished());
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 0);
        QCOMPARE(savedRows(), pdx3.paramList);
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
