#include "table/Model.h"

#include "engine/Pendrix3D.h"

namespace {

/// Returns whether the parameter list has a value at `index`.
bool hasValue(const QModelIndex &index)
{
    return index.row() >= 0 && index.row() < pdx3.paramList.size() && index.column() >= 0 &&
           index.column() < pdx3.paramList.at(index.row()).size();
}

} // namespace

Model::Model(QObject *parent) : QAbstractTableModel(parent) {}

Model::~Model() = default;

int Model::rowCount(const QModelIndex & /*parent*/) const
{
    return static_cast<int>(pdx3.paramList.size());
}

int Model::columnCount(const QModelIndex & /*parent*/) const
{
    return static_cast<int>(pdx3.header.size());
}

QVariant Model::data(const QModelIndex &index, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return hasValue(index) ? pdx3.paramList.at(index.row()).at(index.column()) : QVariant();
    case Qt::TextAlignmentRole:
        return static_cast<int>(Qt::AlignRight);
    default:
        return {};
    }
}

bool Model::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !hasValue(index))
        return true;
    bool converted = false;
    // QVariant::toFloat of Qt 6 makes text beyond the range of a float infinite or zero instead of rejecting it.
    const bool isText = value.userType() == QMetaType::QString;
    const float number = isText ? value.toString().toFloat(&converted) : value.toFloat(&converted);
    if (converted)
        pdx3.paramList[index.row()][index.column()] = number;
    return true;
}

QVariant Model::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return QString::number(section + 1);
    if (section < 0 || section >= pdx3.header.size())
        return {};
    return pdx3.header.at(section);
}

Qt::ItemFlags Model::flags(const QModelIndex &index) const
{
    return QAbstractTableModel::flags(index) | Qt::ItemIsEditable;
}

void Model::refresh()
{
    const QModelIndex topLeft = index(0, 0);
    // One past the last cell: an invalid index, for which views update the whole table.
    const QModelIndex bottomRight = index(rowCount(), columnCount());
    emit dataChanged(topLeft, bottomRight);
}
