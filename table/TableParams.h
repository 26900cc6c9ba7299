#pragma once

#include <QTableView>

class Model;

/// Table of the engine's parameter rows. Selecting a cell makes its row the displayed curve.
///
/// If one change selects cells in several rows, the row of the first cell is displayed. The engine receives a copy of
/// the row: an edit reaches the curve when the row is selected again. Deselecting keeps the curve.
class TableParams : public QTableView
{
    Q_OBJECT

public:
    explicit TableParams(QWidget *parent = nullptr);
    ~TableParams() override;

    /// The view's model, owned by the view. Hides QTableView::model, which returns the same object as its base class.
    Model *model = nullptr;
};
