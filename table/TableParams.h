#pragma once

#include <QTableView>

class Model;

/// The table of the engine's parameter rows. Selecting a cell makes its row the curve on screen.
///
/// When one change selects cells in several rows, the row of the first one counts. The engine gets a copy of the row:
/// an edit of it reaches the curve when the row is selected again. Deselecting leaves the curve as it is.
class TableParams : public QTableView
{
    Q_OBJECT

public:
    explicit TableParams(QWidget *parent = nullptr);
    ~TableParams() override;

    /// The view's own model, which it owns. Hides QTableView::model, the same object under its base class.
    Model *model = nullptr;
};
