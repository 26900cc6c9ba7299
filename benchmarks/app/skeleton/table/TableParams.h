#pragma once

#include <QStandardItemModel>
#include <QTableView>

/// Replaces the program's table: no rows and no columns.
class TableParams : public QTableView
{
public:
    explicit TableParams(QWidget *parent) : QTableView(parent) { setModel(new QStandardItemModel(this)); }
};
