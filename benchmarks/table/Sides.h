// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GroupRow.h"

#include <QAbstractTableModel>
#include <QTableView>

#include <boost/make_shared.hpp>

#include <memory>

namespace WQ
{
class CBaseTableColumnMultiButtonsDelegate;
class CStandardHpfTable;
} // namespace WQ

namespace bench
{

/// The limit: the same records in a plain vector under Qt's own view, announced by one reset.
class PlainModel : public QAbstractTableModel
{
public:
    void fill(const std::vector<Group>& groups);
    void clear();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& = {}) const override { return 5; }
    QVariant data(const QModelIndex& index, int role) const override;

    std::vector<boost::shared_ptr<GroupRow>> rows;
};

struct PlainTable {
    PlainTable();
    double fill(const std::vector<Group>& groups);

    PlainModel model;
    QTableView view;
};

/// The table under test, filled exactly as the account group panel fills it.
struct Table {
    Table();
    ~Table();
    void clear();
    /// Seconds until the table is complete and on screen.
    double fill(const std::vector<Group>& groups, bool withButtons = true);
    /// Seconds until every row is announced and can be found, without a frame.
    double fillOnly(const std::vector<Group>& groups);

    std::unique_ptr<WQ::CStandardHpfTable> table;
    GroupModel* model;
    WQ::CBaseTableColumnMultiButtonsDelegate* buttons;

private:
    void addRows(const std::vector<Group>& groups, bool withButtons);
};

/// QTableWidget on screen, three push buttons per row: seconds for fill and first frame. All rows are made at once;
/// appended one by one, as they come, they cost many times as much.
double fillTableWidget(const std::vector<Group>& groups);
/// QStandardItemModel under QTableView: seconds to sort by the institution.
double sortStandardItems(const std::vector<Group>& groups);
/// QSortFilterProxyModel over the plain model: seconds to filter the names by a fixed string.
double filterByProxy(const std::vector<Group>& groups, const QString& text);

/// Bytes that are allocated on the heap at the moment.
std::size_t heapBytes();

} // namespace bench
