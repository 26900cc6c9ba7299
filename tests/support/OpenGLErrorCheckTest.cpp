// Tests the preloaded OpenGLErrorCheck. Each case runs in a separate process, which an error aborts.

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

/// Makes the calls of the case `name`; returns false if there is no such case.
bool makeCalls(const QByteArray &name)
{
    constexpr GLenum nothing = 0xFFFF;
    if (name == "none") {
        glEnable(GL_DEPTH_TEST);
        drawTriangle(GL_TRIANGLES);
    } else if (name == "enum") {
        glEnable(nothing);
    } else if (name == "between") {
        glBegin(GL_TRIANGLES);
        glLoadIdentity();
        glEnd();
    } else if (name == "others") {
        QOpenGLContext::currentContext()->functions()->glDisable(nothing); // bypasses the checked entry points
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
    void abortsAtFirstError_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("none") << QByteArray();
        QTest::newRow("enum") << QByteArray("OpenGL error 0x0500 in glEnable\n");
        QTest::newRow("between") << QByteArray("OpenGL error 0x0502 in glEnd\n");
        QTest::newRow("others") << QByteArray("OpenGL error 0x0500 before glFlush\n");
    }

    void abortsAtFirstError()
    {
        QFETCH(QByteArray, message);
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {"--calls", QTest::currentDataTag()});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.readAllStandardError(), message);
        QCOMPARE(process.exitStatus(), message.isEmpty() ? QProcess::NormalExit : QProcess::CrashExit);
        QCOMPARE(process.readAllStandardOutput(), message.isEmpty() ? QByteArray("done\n") : QByteArray());
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
