#include "app/MainWindow.h"

#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "tests/support/ApplicationTest.h"
#include "ui_MainWindow.h"

#include <QAbstractButton>
#include <QMetaMethod>
#include <QSettings>
#include <QSignalSpy>

#include <cstring>
#include <memory>

namespace {

/// The object and those below it that the form names, in order of creation, a line each: "  Class name".
QStringList treeOf(const QObject *object, int depth = 0)
{
    QStringList lines;
    const QString name = object->objectName();
    const bool ofTheToolkit = name.isEmpty() || name.startsWith("qt_") || name.startsWith('_');
    if (!ofTheToolkit)
        lines << QString(2 * depth, ' ') + object->metaObject()->className() + ' ' + name;
    for (const QObject *child : object->children())
        lines << treeOf(child, depth + 1);
    return lines;
}

QStringList textsOf(const QList<QAction *> &actions)
{
    QStringList texts;
    for (const QAction *action : actions)
        texts << action->text();
    return texts;
}

QImage imageOf(const QIcon &icon)
{
    return icon.pixmap(32, 32).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

class MainWindowTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<MainWindow> window;
    Ui_MainWindow *ui = nullptr;

    void show() const
    {
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }

private slots:
    void init()
    {
        pdx3.set(0);
        QFile::remove(QSettings("quillmoss", "pdx3").fileName()); // what another window has left
        pdx3.resetParamList();
        window = std::make_unique<MainWindow>();
        ui = window->ui;
    }

    void cleanup() { window.reset(); }

    void metaObject()
    {
        const QMetaObject &meta = MainWindow::staticMetaObject;
        QCOMPARE(QByteArray(meta.className()), QByteArray("MainWindow"));
        QCOMPARE(meta.superClass(), &QMainWindow::staticMetaObject);
        QCOMPARE(meta.propertyCount(), QMainWindow::staticMetaObject.propertyCount());
        QStringList slotNames;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
            QCOMPARE(meta.method(i).access(), QMetaMethod::Private);
            slotNames << QString(meta.method(i).methodSignature());
        }
        const QStringList expected = {"on_actioncopy_triggered()", "on_actionpaste_triggered()",
                                      "on_actionreset_triggered()", "on_actionabout_triggered()"};
        QCOMPARE(slotNames, expected);
    }

    void objectTree()
    {
        const QStringList expected = {
            "MainWindow MainWindow",
            "  QAction actioncopy",
            "  QAction actionpaste",
            "  QAction actionreset",
            "  QAction actionabout",
            "  QWidget centralWidget",
            "  QMenuBar menuBar",
            "    QMenu menuFile",
            "    QMenu menuEdit",
            "  QToolBar mainToolBar",
            "  QStatusBar statusBar",
            "  QDockWidget dockWidget",
            "    QWidget dockWidgetContents",
            "      QVBoxLayout verticalLayout",
            "      PendrixWidget pdx3",
            "  QDockWidget dockParams",
            "    QWidget dockWidgetContents_2",
            "      QVBoxLayout verticalLayout_2",
            "      TableParams tableParams",
        };
        QCOMPARE(treeOf(window.get()), expected);
    }

    void fieldsOfTheForm()
    {
        // In the order of their declaration.
        const QObject *const fields[] = {
            ui->actioncopy,       ui->actionpaste, ui->actionreset, ui->actionabout,
            ui->centralWidget,    ui->menuBar,     ui->menuFile,    ui->menuEdit,
            ui->mainToolBar,      ui->statusBar,   ui->dockWidget,  ui->dockWidgetContents,
            ui->verticalLayout,   ui->pdx3,        ui->dockParams,  ui->dockWidgetContents_2,
            ui->verticalLayout_2, ui->tableParams,
        };
        const QStringList names = {"actioncopy",       "actionpaste", "actionreset", "actionabout",
                                   "centralWidget",    "menuBar",     "menuFile",    "menuEdit",
                                   "mainToolBar",      "statusBar",   "dockWidget",  "dockWidgetContents",
                                   "verticalLayout",   "pdx3",        "dockParams",  "dockWidgetContents_2",
                                   "verticalLayout_2", "tableParams"};
        QCOMPARE(sizeof(Ui_MainWindow), sizeof fields);
        QCOMPARE(std::memcmp(ui, static_cast<const void *>(fields), sizeof fields), 0);
        for (int i = 0; i < names.size(); ++i) {
            QCOMPARE(fields[i]->objectName(), names.at(i));
            QCOMPARE(window->findChild<QObject *>(names.at(i)), fields[i]);
        }
    }

    void keepsANameThatItHas()
    {
        QMainWindow named;
        named.setObjectName("other");
        Ui_MainWindow form;
        form.setupUi(&named);
        QCOMPARE(named.objectName(), QString("other"));
    }

    void texts()
    {
        QCOMPARE(window->windowTitle(), QString("Pendrix 3D"));
        QCOMPARE(ui->menuFile->title(), QString("File"));
        QCOMPARE(ui->menuEdit->title(), QString("Edit"));
        QCOMPARE(ui->dockWidget->windowTitle(), QString());
        QCOMPARE(ui->dockParams->windowTitle(), QString("parameters"));
        QCOMPARE(ui->actioncopy->text(), QString("copy"));
        QCOMPARE(ui->actionpaste->text(), QString("paste"));
        QCOMPARE(ui->actionreset->text(), QString("reset"));
        QCOMPARE(ui->actionabout->text(), QString("about"));
    }

    void menusAndShortcuts()
    {
        QCOMPARE(ui->menuBar->actions(), QList<QAction *>({ui->menuFile->menuAction(), ui->menuEdit->menuAction()}));
        QCOMPARE(textsOf(ui->menuFile->actions()), QStringList({"reset", "about"}));
        QCOMPARE(textsOf(ui->menuEdit->actions()), QStringList({"copy", "paste"}));
        QCOMPARE(ui->actioncopy->shortcut(), QKeySequence("Ctrl+C", QKeySequence::PortableText));
        QCOMPARE(ui->actionpaste->shortcut(), QKeySequence("Ctrl+V", QKeySequence::PortableText));
        QVERIFY(ui->actionreset->shortcut().isEmpty());
        QVERIFY(ui->actionabout->shortcut().isEmpty());
        for (const QAction *action : {ui->actioncopy, ui->actionpaste})
            QCOMPARE(action->shortcutContext(), Qt::WindowShortcut);
    }

    void icons()
    {
        const auto bundled = [](const char *name) {
            return QImage(QString(":/Tessera/rsc/icons/") + name).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        };
        QCOMPARE(imageOf(ui->actioncopy->icon()), bundled("clipcopy01.png"));
        QCOMPARE(imageOf(ui->actionpaste->icon()), bundled("clippaste01.png"));
        QCOMPARE(imageOf(ui->actionreset->icon()), bundled("clear.png"));
        QVERIFY(ui->actionabout->icon().isNull());
    }

    void docks()
    {
        QCOMPARE(window->dockWidgetArea(ui->dockWidget), Qt::RightDockWidgetArea);
        QCOMPARE(ui->dockWidget->features(), QDockWidget::NoDockWidgetFeatures);
        QCOMPARE(ui->dockWidget->allowedAreas(), Qt::NoDockWidgetArea);
        QCOMPARE(ui->dockWidget->widget(), ui->dockWidgetContents);
        QCOMPARE(window->dockWidgetArea(ui->dockParams), Qt::LeftDockWidgetArea);
        QCOMPARE(ui->dockParams->features(), QDockWidget::DockWidgetClosable);
        QCOMPARE(ui->dockParams->allowedAreas(), Qt::NoDockWidgetArea);
        QCOMPARE(ui->dockParams->widget(), ui->dockWidgetContents_2);
    }

    void layouts()
    {
        for (const QVBoxLayout *layout : {ui->verticalLayout, ui->verticalLayout_2}) {
            QCOMPARE(layout->spacing(), 6);
            QCOMPARE(layout->contentsMargins(), QMargins(11, 11, 11, 11));
            QCOMPARE(layout->count(), 1);
            QCOMPARE(layout->stretch(0), 0);
            QCOMPARE(layout->itemAt(0)->alignment(), Qt::Alignment());
        }
        QCOMPARE(ui->dockWidgetContents->layout(), ui->verticalLayout);
        QCOMPARE(ui->dockWidgetContents_2->layout(), ui->verticalLayout_2);
        QCOMPARE(ui->verticalLayout->itemAt(0)->widget(), ui->pdx3);
        QCOMPARE(ui->verticalLayout_2->itemAt(0)->widget(), ui->tableParams);
        QCOMPARE(ui->tableParams->font().pointSize(), 10);
    }

    void bars()
    {
        QCOMPARE(window->menuBar(), ui->menuBar);
        QCOMPARE(window->statusBar(), ui->statusBar);
        QCOMPARE(window->toolBarArea(ui->mainToolBar), Qt::TopToolBarArea);
        QVERIFY(ui->mainToolBar->actions().isEmpty());
        QVERIFY(ui->statusBar->currentMessage().isEmpty());
        QCOMPARE(window->centralWidget(), ui->centralWidget);
    }

    void geometryOfTheForm()
    {
        QMainWindow bare;
        Ui_MainWindow form;
        form.setupUi(&bare);
        QCOMPARE(bare.size(), QSize(701, 605));
        QCOMPARE(form.menuBar->geometry(), QRect(0, 0, 701, 22));
    }

    void opensAtItsSizeWithTheTableOnTheLeft()
    {
        show();
        QCOMPARE(window->size(), QSize(701, 605));
        QVERIFY(!ui->centralWidget->isVisible());
        QVERIFY(ui->mainToolBar->isVisible());
        QVERIFY(ui->statusBar->isVisible());
        const QRect table = ui->dockParams->geometry();
        const QRect curve = ui->dockWidget->geometry();
        QVERIFY(table.left() == 0 && table.right() < curve.left() && curve.right() == window->width() - 1);
        QVERIFY(table.width() + curve.width() > 680);
        QVERIFY(curve.width() > 200 && table.width() > 200);
    }

    void neitherDockMovesAndOnlyTheTableCloses()
    {
        show();
        const auto button = [](const QDockWidget *dock, const char *name) {
            return dock->findChild<QAbstractButton *>(name);
        };
        QVERIFY(!button(ui->dockWidget, "qt_dockwidget_closebutton")->isVisible());
        QVERIFY(!button(ui->dockWidget, "qt_dockwidget_floatbutton")->isVisible());
        QVERIFY(!button(ui->dockParams, "qt_dockwidget_floatbutton")->isVisible());
        // Double-clicking a title would make a floatable dock float.
        for (QDockWidget *dock : {ui->dockWidget, ui->dockParams}) {
            QTest::mouseDClick(dock, Qt::LeftButton, {}, {20, 8});
            QVERIFY(!dock->isFloating());
        }
        QTest::mouseClick(button(ui->dockParams, "qt_dockwidget_closebutton"), Qt::LeftButton);
        QTRY_VERIFY(!ui->dockParams->isVisible());
        QTRY_COMPARE(ui->dockWidget->geometry().left(), 0);
    }

    void aClickInTheTableChangesTheMovingCurve()
    {
        show();
        QTRY_VERIFY(pdx3.freq1 > 1.001F);
        const QRect cell = ui->tableParams->visualRect(ui->tableParams->model->index(4, 1));
        QTest::mouseClick(ui->tableParams->viewport(), Qt::LeftButton, {}, cell.center());
        QVERIFY(pdx3.freq1 >= 2.0F && pdx3.freq1 < 2.1F && pdx3.freq2 == 2.0F);
        QTRY_VERIFY(pdx3.freq1 > 2.001F);
    }

    void aDragTurnsTheCurve()
    {
        show();
        QSignalSpy turned(ui->pdx3, &Renderer::yRotationChanged);
        QWindow *handle = window->windowHandle();
        const QPoint start = ui->pdx3->mapTo(window.get(), QPoint(50, 50));
        QTest::mousePress(handle, Qt::LeftButton, {}, start);
        QTest::mouseMove(handle, start + QPoint(10, 0));
        QTRY_COMPARE(turned.count(), 1);
        QCOMPARE(turned.first().first().toInt(), 80);
        QTest::mouseRelease(handle, Qt::LeftButton, {}, start);
    }

    void actionsAreWiredOnce()
    {
        // Each action calls its slot, once, and nothing else of the window.
        for (QAction *action : {ui->actioncopy, ui->actionpaste, ui->actionreset, ui->actionabout}) {
            const QByteArray slot = "on_" + action->objectName().toUtf8() + "_triggered()";
            QVERIFY(QObject::disconnect(action, SIGNAL(triggered()), window.get(), ("1" + slot).constData()));
            QVERIFY(!QObject::disconnect(action, SIGNAL(triggered()), window.get(), nullptr));
        }
    }

    void severalWindowsComeAndGo()
    {
        for (int i = 0; i < 5; ++i) {
            MainWindow other;
            other.show();
            QVERIFY(QTest::qWaitForWindowExposed(&other));
        }
    }
};

PENDRIX_APPLICATION_TEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
