// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CRowOrder.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QString>
#include <QVector>
#include <vector>

namespace WQ
{

/// The rows of a simple table. Changes of rows take effect at once, but Qt's view is notified only by sync(), so that
/// any number of changes is announced together. Model rows are positions in the announced state.
class CSimpleTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    struct Column {
        QString header;
        int alignment = Qt::AlignLeft | Qt::AlignVCenter;
        /// 0: like the texts.
        int headerAlignment = 0;
    };

    void setColumns(int count);
    const Column& column(int number) const { return m_columns[number]; }
    void setHeader(int column, const QString& text);
    void setAlignment(int column, int alignment);
    void setHeaderAlignment(int column, int alignment);

    const CRowOrder& order() const { return m_order; }
    int appendRow();
    bool removeRowId(int id);
    void clear();
    /// Returns true if the text has changed.
    bool setText(int id, int column, const QString& text);
    QString text(int id, int column) const;
    void setColorKey(int id, int column, const QString& key);

    /// True between a change of the rows and sync().
    bool isStale() const { return m_stale; }
    void sync();
    /// Announces a new order of the same rows. Must not be called while stale.
    void reorder(const std::vector<int>& ids);
    /// The ids sorted by the column's texts: first numbers by value, then texts by pinyin. The sort is stable.
    std::vector<int> sortedIds(int column, Qt::SortOrder order) const;

    /// The id of an announced row, which may have been removed meanwhile.
    int idOfRow(int row) const { return row >= 0 && row < int(m_shown.size()) ? m_shown[size_t(row)] : -1; }
    /// The announced row of an id; -1 if it is not announced or was removed. Must not be called while stale.
    int rowOfId(int id) const { return m_order.indexOf(id); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    /// Emitted before and after every change of the announced rows except additions.
    void sigAboutToRearrange();
    void sigRearranged();

private:
    using Row = std::vector<QString>;

    bool hasColumn(int column) const { return column >= 0 && column < m_columns.size(); }
    const Row* row(int id) const;
    void rearrange();

    CRowOrder m_order;
    QVector<Column> m_columns;
    /// By id - m_order.firstId().
    std::vector<Row> m_rows;
    QHash<quint64, QString> m_colorKeys;
    std::vector<int> m_shown;
    bool m_stale = false;
    bool m_removed = false;
};

} // namespace WQ
