#include "export/Process.h"

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif

#include <algorithm>
#include <cerrno>
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

/// Prints `message` after the name of the program on standard error.
void printLine(const QString &message)
{
    QString text = QString::fromUtf8((QStringLiteral("pendrix3d-export: ") + message).toLocal8Bit());
    std::replace_if(
        text.begin(), text.end(), [](QChar character) { return !isPrintable(character); }, QLatin1Char('?'));
    (void)std::fputs((text + QLatin1Char('\n')).toUtf8().constData(), stderr);
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
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    // One byte per character. Qt 6 has no other 8-bit encoding than UTF-8.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
#endif
}

QStringList argumentsOf(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
        if (i > 0 && arguments.last().toLocal8Bit() != argv[i])
            throw ExportError{ExportError::wrongUsage, QStringLiteral("argument is not UTF-8"), arguments.last()};
    }
    return arguments;
}

void printMessage(const QString &message)
{
    printContent(message.toLocal8Bit());
}

void printContent(const QByteArray &content)
{
    const auto size = static_cast<std::size_t>(content.size());
    if (std::fwrite(content.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0)
        throw ExportError{ExportError::failure, QStringLiteral("cannot write"),
                          QStringLiteral("standard output: ") + qt_error_string(errno)};
}

void printWarning(const QString &text)
{
    printLine(QStringLiteral("warning: ") + text);
}

void printError(const ExportError &error)
{
    printLine(error.problem + QStringLiteral(": ") + error.detail);
}
