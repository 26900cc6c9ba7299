#pragma once

#include <QAbstractTableModel>

/// The table's item model over the engine's parameter list: 64 rows of six floats.
///
/// Holds nothing itself. Reads and writes go straight to the engine's list, and an edit does not touch the curve on
/// screen: the curve follows when the row is selected again.
class Model : public QAbstractTableModel
{
public:
    explicit Model(QObject *parent);
    ~Model() override;

    /// The number of parameter rows, whatever the parent.
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;

    /// The number of column titles, whatever the parent.
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;

    /// The cell's float for display and edit, right alignment for the text alignment, nothing for any other role.
    /// An index without a cell has no float.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    /// Stores `value` in the cell if the role is edit and the value converts to a float.
    /// True in every case, also when nothing was stored: an edit that is no number is dropped without a word.
    /// Does not emit dataChanged.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    /// The column titles, and the row numbers counted from 1.
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// The flags of a table cell, and editable. An index without a cell has none.
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Tells the view that every cell may have changed. Called by all who write to the parameter list outside the
    /// table.
    void refresh();
};
