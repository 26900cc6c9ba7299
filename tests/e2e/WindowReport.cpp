// Preloaded into the program by the end-to-end tests: reports the positions and states of its widgets.
//
// Reads one question per line from standard input and writes one line of numbers to standard output; an empty line if
// the object does not exist. Places are x, y, width and height in device pixels, relative to the window.
//
//   view, table, close-button   geometry of the curve, of the table, of the close button of the table's dock
//   cell ROW COLUMN             geometry of a cell, counted from 0
//   label ROW, title COLUMN     geometry of a row's label, of a column's title
//   editor                      geometry of the open editor
//   menu TITLE                  geometry of a title in the menu bar
//   button TEXT                 geometry of a button in the open dialog, on the screen
//   geometry                    geometry of the main window on the screen
//   selection                   row and column of each selected cell
//   window                      X window of the main window
//   focus                       number of open windows; 1 if the main window, 2 if the open dialog has the keyboard
//   focus frames                      number of frames painted since the start pointer                     position of
//   the pointer in the main window

#include <QAbstractButton>
#include <QApplication>
#include <QCursor>
#include <QDialog>
#include <QDockWidget>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QOpenGLWidget>
#include <QSocketNotifier>
#include <QTableView>
#include <QWindow>

#include <iostream>
#include <string>

namespace {

int frames = 0;

class FrameCounter : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<QOpenGLWidget *>(object))
            ++frames;
        return false;
    }
};

/// Returns the only open window of the class Window, null if there is none.
template <class Window>
Window *openWindow()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (auto *const window = qobject_cast<Window *>(widget); window && window->isVisible())
            return window;
    }
    return nullptr;
}

/// Returns the geometry of `area`, in the coordinates of `widget`; nothing if the widget is null or hidden.
QVector<int> geometryOf(const QWidget *widget, QRect area)
{
    if (!widget || !widget->isVisible() || area.isEmpty())
        return {};
    area.moveTopLeft(widget->mapTo(widget->window(), area.topLeft()));
    const double ratio = widget->devicePixelRatioF();
    return {qRound(area.x() * ratio), qRound(area.y() * ratio), qRound(area.width() * ratio),
            qRound(area.height() * ratio)};
}

QVector<int> geometryOf(const QWidget *widget)
{
    return widget ? geometryOf(widget, widget->rect()) : QVector<int>();
}

/// Returns the section `number` of a table's header.
QRect sectionOf(const QHeaderView &header, int number)
{
    const int start = header.sectionViewportPosition(number);
    const int size = header.sectionSize(number);
    return header.orientation() == Qt::Vertical ? QRect(0, start, header.width(), size)
                                                : QRect(start, 0, size, header.height());
}

/// Returns the geometry of `widget` on the screen.
QVector<int> geometryOnScreen(const QWidget *widget)
{
    QVector<int> geometry = geometryOf(widget);
    if (!geometry.isEmpty()) {
        const QPointF corner = QPointF(widget->window()->geometry().topLeft()) * widget->devicePixelRatioF();
        geometry[0] += qRound(corner.x());
        geometry[1] += qRound(corner.y());
    }
    return geometry;
}

QVector<int> answerTo(const QString &question)
{
    const QString what = question.section(' ', 0, 0);
    const QString argument = question.section(' ', 1);
    const int number = question.section(' ', 1, 1).toInt();
    const auto *const main = openWindow<QMainWindow>();
    const auto *const dialog = openWindow<QDialog>();
    const auto *const table = main ? main->findChild<QTableView *>() : nullptr;
    if (!table)
        return {};

    QVector<int> numbers;
    if (what == "view")
        return geometryOf(main->findChild<QOpenGLWidget *>());
    if (what == "table")
        return geometryOf(table);
    if (what == "close-button")
        return geometryOf(
            main->findChild<QDockWidget *>("dockParams")->findChild<QWidget *>("qt_dockwidget_closebutton"));
    if (what == "cell")
        return geometryOf(table->viewport(),
                          table->visualRect(table->model()->index(number, question.section(' ', 2).toInt())));
    if (what == "label")
        return geometryOf(table->verticalHeader()->viewport(), sectionOf(*table->verticalHeader(), number));
    if (what == "title")
        return geometryOf(table->horizontalHeader()->viewport(), sectionOf(*table->horizontalHeader(), number));
    if (what == "editor")
        return geometryOf(table->viewport()->findChild<QLineEdit *>());
    if (what == "menu") {
        const QList<QAction *> menus = main->menuBar()->actions();
        for (QAction *menu : menus) {
            if (menu->text() == argument)
                return geometryOf(main->menuBar(), main->menuBar()->actionGeometry(menu));
        }
    } else if (what == "button" && dialog) {
        const auto buttons = dialog->findChildren<QAbstractButton *>();
        for (const QAbstractButton *button : buttons) {
            if (button->text().remove('&') == argument)
                return geometryOnScreen(button);
        }
    } else if (what == "geometry") {
        return geometryOnScreen(main);
    } else if (what == "selection") {
        const QModelIndexList selected = table->selectionModel()->selectedIndexes();
        for (const QModelIndex &cell : selected)
            numbers << cell.row() << cell.column();
    } else if (what == "window") {
        numbers << static_cast<int>(main->winId());
    } else if (what == "focus") {
        const QWindow *const focus = QGuiApplication::focusWindow();
        numbers << (dialog ? 2 : 1)
                << (focus == main->windowHandle()               ? 1
                    : dialog && focus == dialog->windowHandle() ? 2
                                                                : 0);
    } else if (what == "frames") {
        numbers << frames;
    } else if (what == "pointer") {
        const QPointF pointer = QPointF(main->mapFromGlobal(QCursor::pos())) * main->devicePixelRatioF();
        numbers << qRound(pointer.x()) << qRound(pointer.y());
    }
    return numbers;
}

void answerQuestion()
{
    std::string question;
    std::getline(std::cin, question);
    const QVector<int> numbers = answerTo(QString::fromStdString(question));
    for (int i = 0; i < numbers.size(); ++i)
        std::cout << (i > 0 ? " " : "") << numbers.at(i);
    std::cout << std::endl;
}

void start()
{
    auto *const questions = new QSocketNotifier(0, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(questions, &QSocketNotifier::activated, answerQuestion);
    QCoreApplication::instance()->installEventFilter(new FrameCounter(QCoreApplication::instance()));
}

/// Starts once the event loop runs: the routine is called while the application object is being constructed.
void startLater()
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), start, Qt::QueuedConnection);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(startLater)
