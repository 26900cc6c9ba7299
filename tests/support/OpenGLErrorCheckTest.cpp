// What the preloaded OpenGLErrorCheck finds. Each case runs in a process of its own, for a finding ends it.

#include "tests/support/OffscreenOpenGL.h"

#include <QOpenGLFunctions>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

namespace {

void drawTriangle(GLenum mode)
{
    glBegin(mode);
    glVertex2f(0.0F, 0.0F);
    glVertex2f(1.0F, 0.0F);
    glVertex2f(0.0F, 1.0F);
    glEnd();
}

/// Makes the calls of a case; false if there is no such case.
bool makeCalls(const QByteArray &what)
{
    constexpr GLenum nothing = 0xFFFF;
    if (what == "none") {
        glEnable(GL_DEPTH_TEST);
        drawTriangle(GL_TRIANGLES);
    } else if (what == "enum") {
        glEnable(nothing);
    } else if (what == "value") {
        glViewport(0, 0, -1, 1);
    } else if (what == "between") {
        glBegin(GL_TRIANGLES);
        glLoadIdentity();
        glEnd();
    } else if (what == "end") {
        glEnd();
    } else if (what == "others") {
        QOpenGLContext::currentContext()->functions()->glDisable(nothing); // not through our entry points
        glFlush();
    } else {
        return false;
    }
    return true;
}

} // namespace

class OpenGLErrorCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void finds_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("none") << QByteArray();
        QTest::newRow("enum") << QByteArray("OpenGL error 0x0500 in glEnable\n");
        QTest::newRow("value") << QByteArray("OpenGL error 0x0501 in glViewport\n");
        QTest::newRow("between") << QByteArray("OpenGL error 0x0502 in glEnd\n");
        QTest::newRow("end") << QByteArray("OpenGL error 0x0502 in glEnd\n");
        QTest::newRow("others") << QByteArray("OpenGL error 0x0500 before glFlush\n");
    }

    void finds()
    {
        QFETCH(QByteArray, message);
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {"--calls", QTest::currentDataTag()});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.readAllStandardError(), message);
        QCOMPARE(process.exitStatus(), message.isEmpty() ? QProcess::NormalExit : QProcess::CrashExit);
        QCOMPARE(process.readAllStandardOutput(), message.isEmpty() ? QByteArray("done\n") : QByteArray());
    }

    void countsTheCalls()
    {
        const QTemporaryDir folder;
        QFile report(folder.filePath("report"));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("PENDRIX_OPENGL_REPORT", report.fileName());
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), {"--calls", "none"});
        QVERIFY(process.waitForFinished());
        QVERIFY(report.open(QIODevice::ReadOnly));
        // glViewport of the set-up, glEnable and five for the triangle; not asked are the three corners, after glBegin
        // and before glEnd.
        QCOMPARE(report.readAll(), QByteArray("7 calls, 6 checks\n"));
    }
};

int main(int argc, char *argv[])
{
    const QTemporaryDir home;
    if (!home.isValid())
        return 1;
    qputenv("HOME", QFile::encodeName(home.path()));
    QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments.at(1) == QLatin1String("--calls")) {
        const OffscreenOpenGL openGL(16);
        if (!openGL.isValid() || !makeCalls(arguments.at(2).toLatin1()))
            return 1;
        return std::fputs("done\n", stdout) < 0 ? 1 : 0;
    }
    OpenGLErrorCheckTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "OpenGLErrorCheckTest.moc"
