#include "tests/e2e/RunningProgram.h"

#include <QStyleHints>

#include <algorithm>

RunningProgram::~RunningProgram()
{
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished();
    }
}

void RunningProgram::launch(const Environment &environment, const QStringList &arguments)
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"QT_SCALE_FACTOR", "LC_ALL", "LC_NUMERIC", "LANG", "LANGUAGE"})
        variables.remove(name);
    variables.insert("XDG_CONFIG_HOME", settings.path());
    variables.insert("HOME", settings.path());
    variables.insert("LD_PRELOAD", variables.value("LD_PRELOAD") + ':' + PENDRIX_WINDOW_REPORT);
    for (auto variable = environment.cbegin(); variable != environment.cend(); ++variable)
        variables.insert(variable.key(), variable.value());
    process.setProcessEnvironment(variables);
    process.start(PENDRIX_INSTALLED_PROGRAM, arguments);
}

bool RunningProgram::start(const Environment &environment, const QStringList &arguments)
{
    launch(environment, arguments);
    return isAlone() && QTest::qWaitFor([this] { return !curveIn(view()).isEmpty(); }, Desktop::timeout);
}

int RunningProgram::close()
{
    Desktop::close(window());
    return exitCode();
}

int RunningProgram::exitCode()
{
    if (!QTest::qWaitFor([this] { return process.state() == QProcess::NotRunning; }, Desktop::timeout) ||
        process.exitStatus() != QProcess::NormalExit)
        return -1;
    QByteArray messages;
    // Qt 6 prints this if the encoding is not UTF-8, for example because the system lacks the locale.
    static const QRegularExpression otherEncoding(QStringLiteral("^Detected locale (?s:.*)\nfor more information\\.$"),
                                                  QRegularExpression::MultilineOption);
    // Qt 6.11 prints this for the range of Model::refresh, which ends at an invalid index on purpose.
    static const QRegularExpression invalidRange(
        QStringLiteral("^dataChanged\\(\\) called with an invalid index range:\\n.*\\n.*$"),
        QRegularExpression::MultilineOption);
    const QString output = QString::fromUtf8(process.readAllStandardError() + process.readAllStandardOutput());
    const QList<QByteArray> lines = QString(output).remove(otherEncoding).remove(invalidRange).toUtf8().split('\n');
    for (const QByteArray &line : lines) {
        // Qt prints this if the window manager reports the position of a dialog that is already closed.
        if (!line.startsWith("qt.qpa.xcb: QXcbConnection: XCB error: 3 (BadWindow)") ||
            !line.contains("(TranslateCoords)"))
            messages += line;
    }
    if (!messages.isEmpty())
        qWarning() << messages;
    return messages.isEmpty() ? process.exitCode() : -1;
}

QVector<int> RunningProgram::ask(const QByteArray &question)
{
    process.write(question + '\n');
    if (!QTest::qWaitFor([this] { return process.canReadLine() || process.state() == QProcess::NotRunning; },
                         Desktop::timeout))
        return {};
    QVector<int> numbers;
    const QByteArray line = process.readLine().trimmed();
    const QList<QByteArray> words = line.isEmpty() ? QList<QByteArray>() : line.split(' ');
    for (const QByteArray &word : words)
        numbers << word.toInt();
    return numbers;
}

QRect RunningProgram::geometryOf(const QByteArray &question)
{
    QVector<int> numbers;
    if (!QTest::qWaitFor([&] { return (numbers = ask(question)).size() == 4; }, Desktop::timeout))
        return {};
    return {numbers.at(0), numbers.at(1), numbers.at(2), numbers.at(3)};
}

QPoint RunningProgram::cell(int row, int column)
{
    return geometryOf(QStringLiteral("cell %1 %2").arg(row).arg(column).toLatin1()).center();
}

Cells RunningProgram::selection()
{
    const QVector<int> numbers = ask("selection");
    Cells cells;
    for (int i = 0; i + 1 < numbers.size(); i += 2)
        cells << QPoint(numbers.at(i + 1), numbers.at(i));
    return cells;
}

QImage RunningProgram::view()
{
    // Without the outermost pixels, which a fractional scale blends with the frame around the view.
    const QRect area = geometryOf("view").adjusted(1, 1, -1, -1);
    return Desktop::picture({onScreen(area.topLeft()), area.size()});
}

bool RunningProgram::paintsFrames(int count)
{
    const int before = ask("frames").value(0);
    return QTest::qWaitFor([&] { return ask("frames").value(0) >= before + count; }, Desktop::timeout);
}

bool RunningProgram::isAlone()
{
    return QTest::qWaitFor([this] { return ask("focus") == QVector<int>({1, 1}); }, Desktop::timeout);
}

bool RunningProgram::hasBox()
{
    return QTest::qWaitFor([this] { return ask("focus") == QVector<int>({2, 2}); }, Desktop::timeout);
}

void RunningProgram::click(QPoint point, int count, int button)
{
    // Two clicks at one place within this time would be a double click.
    const int pause = 2 * QGuiApplication::styleHints()->mouseDoubleClickInterval();
    if (sincePress.isValid() && point == lastPress && sincePress.elapsed() < pause)
        QTest::qWait(pause - static_cast<int>(sincePress.elapsed()));
    lastPress = point;
    Desktop::xdotool(Desktop::moveTo(onScreen(point)) + QStringList({"click", "--repeat", QString::number(count),
                                                                     "--delay", "50", QString::number(button)}));
    sincePress.start();
}

void RunningProgram::drag(QPoint from, QPoint to, const QVector<int> &buttons)
{
    QStringList arguments = Desktop::moveTo(onScreen(from));
    for (const int button : buttons)
        arguments << "mousedown" << QString::number(button);
    arguments << Desktop::moveTo(onScreen((from + to) / 2)) << Desktop::moveTo(onScreen(to));
    for (const int button : buttons)
        arguments << "mouseup" << QString::number(button);
    Desktop::xdotool(arguments);
}

void RunningProgram::press(const QStringList &keys)
{
    Desktop::xdotool(QStringList({"key", "--delay", "10"}) + keys);
}

bool RunningProgram::edit(const QString &text, const QString &key)
{
    Desktop::xdotool({"type", "--delay", "10", "--", text});
    if (!QTest::qWaitFor([this] { return isEditing(); }, Desktop::timeout))
        return false;
    press({key});
    return QTest::qWaitFor([this] { return !isEditing(); }, Desktop::timeout);
}

QByteArray RunningProgram::copy()
{
    Desktop::putOnClipboard("nothing has been copied");
    press({"ctrl+c"});
    return QTest::qWaitFor(Desktop::isNewOnClipboard, Desktop::timeout) ? Desktop::clipboard() : QByteArray();
}

void RunningProgram::paste(const QByteArray &text)
{
    Desktop::putOnClipboard(text);
    press({"ctrl+v"});
    if (!QTest::qWaitFor(Desktop::isTakenFromClipboard, Desktop::timeout))
        QTest::qFail("The program does not read the clipboard.", __FILE__, __LINE__);
}

QRect curveIn(const QImage &view)
{
    constexpr int lit = 40; // of 255
    QRect outline;
    for (int y = 0; y < view.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(view.constScanLine(y));
        for (int x = 0; x < view.width(); ++x) {
            if (std::max({qRed(line[x]), qGreen(line[x]), qBlue(line[x])}) > lit)
                outline |= QRect(x, y, 1, 1);
        }
    }
    return outline;
}
