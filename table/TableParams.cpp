#include "table/TableParams.h"

#include "engine/Pendrix3D.h"
#include "table/Model.h"

#include <QItemSelectionModel>

TableParams::TableParams(QWidget *parent) : QTableView(parent), model(new Model(this))
{
    setModel(model);

    connect(selectionModel(), &QItemSelectionModel::selectionChanged,
            [](const QItemSelection &selected, const QItemSelection & /*deselected*/) {
                const QModelIndexList cells = selected.indexes();
                if (!cells.isEmpty() && cells.first().isValid())
                    pdx3.set(pdx3.paramList.value(cells.first().row()));
            });
}

TableParams::~TableParams() = default;
