#include "export/Process.h"

#include <QTextCodec>

#include <algorithm>
#include <csignal>
#include <cstdio>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#endif

namespace {

void ignoreMessage(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString & /*message*/) {}

bool isPrintable(QChar character)
{
    return character.isSurrogate() || character == QLatin1Char(' ') ||
           (character.isPrint() && !character.isSpace() && character != QChar::ReplacementCharacter);
}

} // namespace

void prepareProcess()
{
#ifdef Q_OS_UNIX
    for (int stream = 0; stream <= 2; ++stream) {
        // open returns the lowest free descriptor, which is `stream`. The mode makes the stream unusable.
        if (fcntl(stream, F_GETFD) < 0)
            (void)open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY);
    }
    (void)std::signal(SIGPIPE, SIG_IGN);
    (void)std::signal(SIGXFSZ, SIG_IGN);
#endif
    qInstallMessageHandler(ignoreMessage);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
}

QStringList argumentsOf(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLatin1(argv[i]));
    return arguments;
}

void printMessage(const QString &message)
{
    const QByteArray bytes = message.toLatin1();
    if (std::fputs(bytes.constData(), stdout) < 0 || std::fflush(stdout) != 0)
        throw ExportError{ExportError::failure, QStringLiteral("cannot write"), QStringLiteral("standard output")};
}

void printError(const ExportError &error)
{
    const QString line = QStringLiteral("pendrix3d-export: ") + error.problem + QStringLiteral(": ") + error.detail;
    QString text = QString::fromUtf8(line.toLatin1());
    std::replace_if(
        text.begin(), text.end(), [](QChar character) { return !isPrintable(character); }, QLatin1Char('?'));
    (void)std::fputs((text + QLatin1Char('\n')).toUtf8().constData(), stderr);
}
