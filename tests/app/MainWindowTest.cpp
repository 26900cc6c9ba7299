// The form's objects and the wiring of its actions.

#include "app/MainWindow.h"

#include "table/TableParams.h"
#include "tests/support/ApplicationTest.h"
#include "ui_MainWindow.h"

#include <QMetaMethod>

namespace {

/// Returns "Class name" of the object, followed by its children in braces, in order of creation. Leaves out objects
/// that the form does not name.
QString treeOf(const QObject *object)
{
    QStringList children;
    for (const QObject *child : object->children()) {
        const QString name = child->objectName();
        if (!name.isEmpty() && !name.startsWith("qt_") && !name.startsWith('_'))
            children << treeOf(child);
    }
    const QString text = QString(object->metaObject()->className()) + ' ' + object->objectName();
    return children.isEmpty() ? text : text + '{' + children.join(", ") + '}';
}

QImage imageOf(const QIcon &icon)
{
    return icon.pixmap(32, 32).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

class MainWindowTest : public QObject
{
    Q_OBJECT

    MainWindow window;
    const Ui_MainWindow *ui = window.ui;

private slots:
    void objectsAreCreatedInOrder()
    {
        QCOMPARE(treeOf(&window),
                 QString("MainWindow MainWindow{QAction actioncopy, QAction actionpaste, QAction actionreset, QAction "
                         "actionabout, QWidget centralWidget, QMenuBar menuBar{QMenu menuFile, QMenu menuEdit}, "
                         "QToolBar mainToolBar, QStatusBar statusBar, QDockWidget dockWidget{QWidget "
                         "dockWidgetContents{QVBoxLayout verticalLayout, PendrixWidget pdx3}}, QDockWidget "
                         "dockParams{QWidget dockWidgetContents_2{QVBoxLayout verticalLayout_2, TableParams "
                         "tableParams}}}"));
    }

    void formKeepsNameAndSetsSize()
    {
        QMainWindow bare;
        bare.setObjectName("other");
        Ui_MainWindow form;
        form.setupUi(&bare);
        QCOMPARE(bare.objectName(), QString("other"));
        QCOMPARE(bare.size(), QSize(701, 605));
        QCOMPARE(form.menuBar->geometry(), QRect(0, 0, 701, 22));
    }

    void actionsHaveTextShortcutAndIcon()
    {
        const struct
        {
            const QAction *action;
            QString text, shortcut, icon;
        } rows[] = {
            {ui->actioncopy, "copy", "Ctrl+C", "clipcopy01.png"},
            {ui->actionpaste, "paste", "Ctrl+V", "clippaste01.png"},
            {ui->actionreset, "reset", "", "clear.png"},
            {ui->actionabout, "about", "", ""},
        };
        for (const auto &row : rows) {
            QCOMPARE(row.action->text(), row.text);
            QCOMPARE(row.action->shortcut().toString(QKeySequence::PortableText), row.shortcut);
            QCOMPARE(row.action->shortcutContext(), Qt::WindowShortcut);
            QCOMPARE(row.action->icon().isNull(), row.icon.isEmpty());
            const QImage image(":/Tessera/rsc/icons/" + row.icon);
            QCOMPARE(imageOf(row.action->icon()), image.convertToFormat(QImage::Format_ARGB32_Premultiplied));
        }
    }

    void menusListActionsInOrder()
    {
        using Actions = QList<QAction *>;
        QCOMPARE(ui->menuFile->title(), QString("File"));
        QCOMPARE(ui->menuEdit->title(), QString("Edit"));
        QCOMPARE(ui->menuBar->actions(), Actions({ui->menuFile->menuAction(), ui->menuEdit->menuAction()}));
        QCOMPARE(ui->menuFile->actions(), Actions({ui->actionreset, ui->actionabout}));
        QCOMPARE(ui->menuEdit->actions(), Actions({ui->actioncopy, ui->actionpaste}));
    }

    void slotsAreConnectedOnce()
    {
        const QMetaObject &meta = MainWindow::staticMetaObject;
        QCOMPARE(meta.methodCount() - meta.methodOffset(), 4);
        int method = meta.methodOffset();
        for (QAction *action : {ui->actioncopy, ui->actionpaste, ui->actionreset, ui->actionabout}) {
            const QByteArray slot = "on_" + action->objectName().toUtf8() + "_triggered()";
            QCOMPARE(meta.method(method).methodSignature(), slot);
            QCOMPARE(meta.method(method++).access(), QMetaMethod::Private);
            QVERIFY(QObject::disconnect(action, SIGNAL(triggered()), &window, ("1" + slot).constData()));
            QVERIFY(!QObject::disconnect(action, SIGNAL(triggered()), &window, nullptr));
        }
    }

    void docksHoldCurveAndTable()
    {
        const struct
        {
            QDockWidget *dock;
            QString title;
            Qt::DockWidgetArea area;
            QDockWidget::DockWidgetFeatures features;
            QWidget *contents;
            QVBoxLayout *layout;
            QWidget *widget;
        } rows[] = {
            {ui->dockWidget, "", Qt::RightDockWidgetArea, QDockWidget::NoDockWidgetFeatures, ui->dockWidgetContents,
             ui->verticalLayout, ui->pdx3},
            {ui->dockParams, "parameters", Qt::LeftDockWidgetArea, QDockWidget::DockWidgetClosable,
             ui->dockWidgetContents_2, ui->verticalLayout_2, ui->tableParams},
        };
        for (const auto &row : rows) {
            QCOMPARE(row.dock->windowTitle(), row.title);
            QCOMPARE(window.dockWidgetArea(row.dock), row.area);
            QCOMPARE(row.dock->features(), row.features);
            QCOMPARE(row.dock->allowedAreas(), Qt::NoDockWidgetArea);
            QCOMPARE(row.dock->widget(), row.contents);
            QCOMPARE(row.contents->layout(), row.layout);
            QCOMPARE(row.layout->spacing(), 6);
            QCOMPARE(row.layout->contentsMargins(), QMargins(11, 11, 11, 11));
            QCOMPARE(row.layout->count(), 1);
            QCOMPARE(row.layout->stretch(0), 0);
            QCOMPARE(row.layout->itemAt(0)->alignment(), Qt::Alignment());
            QCOMPARE(row.layout->itemAt(0)->widget(), row.widget);
        }
        QCOMPARE(ui->tableParams->font().pointSize(), 10);
    }

    void docksFillWindowWithEmptyBars()
    {
        QCOMPARE(window.windowTitle(), QString("Pendrix 3D"));
        QCOMPARE(window.menuBar(), ui->menuBar);
        QCOMPARE(window.statusBar(), ui->statusBar);
        QCOMPARE(window.toolBarArea(ui->mainToolBar), Qt::TopToolBarArea);
        QCOMPARE(window.centralWidget(), ui->centralWidget);
        QVERIFY(ui->mainToolBar->actions().isEmpty());
        QVERIFY(ui->statusBar->currentMessage().isEmpty());

        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.size(), QSize(701, 605));
        QVERIFY(!ui->centralWidget->isVisible());
        QVERIFY(ui->mainToolBar->isVisible());
        QVERIFY(ui->statusBar->isVisible());
        const QRect table = ui->dockParams->geometry();
        const QRect curve = ui->dockWidget->geometry();
        QVERIFY(table.left() == 0 && table.right() < curve.left() && curve.right() == window.width() - 1);
        QVERIFY(table.width() + curve.width() > 680);
        QVERIFY(curve.width() > 200 && table.width() > 200);
    }
};

PENDRIX_APPLICATION_TEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
