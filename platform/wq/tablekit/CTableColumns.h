// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/TableLayout.h"

#include <QObject>

#include <functional>
#include <map>
#include <set>
#include <vector>

class QHeaderView;
class QMenu;

namespace WQ
{

/// Visible columns, left to right.
std::vector<int> visibleColumns(const QHeaderView& header);

/// The columns of a table as its program and its user arranged them: which are shown, in which order, how wide. Unknown
/// columns are ignored.
class CTableColumns : public QObject
{
    Q_OBJECT

public:
    explicit CTableColumns(QHeaderView& header);

    /// For a new set of columns: none is hidden, none has a chosen width.
    void reset();

    /// The program's choice. The user can neither show nor see such a column.
    void setVisible(int column, bool visible);
    /// For good.
    void remove(int column);
    bool isRemoved(int column) const { return m_removed.count(column) != 0; }
    bool isVisible(int column) const;
    std::vector<int> visible() const { return visibleColumns(m_header); }

    /// A chosen width in pixels, within NarrowestColumn and WidestColumn. Users choose theirs at the header.
    void setWidth(int column, int width);
    int width(int column) const;
    bool hasChosenWidth(int column) const { return m_widths.count(column) != 0; }
    void forgetWidth(int column) { m_widths.erase(column); }
    void forgetWidths() { m_widths.clear(); }
    /// A width that nobody chose.
    void fit(int column, int width);

    /// Adds the sub-menu in which the user shows and hides those columns that `isListed` accepts. One always stays.
    void addChooser(QMenu& menu, const std::function<bool(int column)>& isListed);

    /// Order, widths and what the user hid; the rest is left as it is.
    void save(TableLayout& layout) const;
    /// False, nothing changed, if the layout has another number of columns.
    bool load(const TableLayout& layout);

signals:
    void sigVisibilityChanged();

private:
    bool has(int column) const;
    bool isOffered(int column) const { return m_invisible.count(column) == 0 && m_removed.count(column) == 0; }
    void setShownByUser(int column, bool shown);
    void applyVisibility(int column);

    QHeaderView& m_header;
    std::set<int> m_invisible;  ///< by the program
    std::set<int> m_userHidden; ///< by the user
    std::set<int> m_removed;
    std::map<int, int> m_widths; ///< that somebody chose
    bool m_isFitting = false;
};

} // namespace WQ
