// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/IkolmDockableWidget.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/IBaseHpfTableData.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAbstractItemView>
#include <QVBoxLayout>

#include <boost/make_shared.hpp>

/// A row with one text, which is its key as well.
struct TextRow : WQ::IBaseHpfTableData {
    explicit TextRow(const QString& rowText) : text(rowText) {}
    QString getDisplayQString(int) const override { return text; }
    QString getQStringValue(int) const override { return text; }
    int getIntValue(int) const override { return InvalidInt; }
    double getDoubleValue(int) const override { return InvalidDouble; }
    std::int64_t getInt64Value(int) const override { return InvalidInt64; }
    QColor getTextColor(int) const override { return Qt::white; }
    QString getKey() const override { return text; }
    QString text;
};

struct TextModel : WQ::IBaseHpfTableModel {
    TextModel() : IBaseHpfTableModel(true) {}
    int getColumnCount() const override { return 1; }
    QString getHeaderText(int) const override { return "文字"; }
    int getValueKind(int) const override { return WQ::ValueText; }
};

/// A table that a test puts into a panel.
struct PanelTable {
    explicit PanelTable(QAV::IkolmDockableWidget& panel)
        : table(new WQ::CStandardHpfTable(1, &panel, WQ::MenuAll)), model(new TextModel)
    {
        table->setDataModel(model);
        if (!panel.layout()) {
            new QVBoxLayout(&panel);
        }
        panel.layout()->addWidget(table);
        table->show();
    }
    void fill(int rows) const
    {
        for (int row = 0; row < rows; ++row) {
            model->addData(boost::make_shared<TextRow>(QString::number(row)));
        }
    }
    QString emptyText() const { return table->view()->property("emptyText").toString(); }

    WQ::CStandardHpfTable* table;
    TextModel* model;
};
