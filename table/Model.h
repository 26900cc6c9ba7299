#pragma once

#include <QAbstractTableModel>

/// Item model for the engine's parameter list: 64 rows of six floats.
///
/// Holds no data: reads and writes go to the engine's list. Editing a cell does not change the displayed curve; the
/// curve changes when the row is selected again.
class Model : public QAbstractTableModel
{
public:
    explicit Model(QObject *parent);
    ~Model() override;

    /// Returns the number of parameter rows, for any parent.
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;

    /// Returns the number of column titles, for any parent.
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;

    /// Returns the cell's float for display and edit, right alignment for text alignment, and an invalid value for any
    /// other role and for an index outside the list.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    /// Stores `value` in the cell if the role is edit and the value converts to a float. Otherwise keeps the old value.
    /// Always returns true. Does not emit dataChanged.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    /// Returns the column titles, and the row numbers counted from 1.
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Returns the base class's flags with Qt::ItemIsEditable added, for any index.
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Emits dataChanged for all cells. Call after each change of the list that does not come from the table.
    void refresh();
};
