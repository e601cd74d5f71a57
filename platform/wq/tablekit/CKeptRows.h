// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

namespace WQ
{

class CTableView;

/// The selected rows and the current row of a view by their ids, while its model rearranges its rows.
class CKeptRows
{
public:
    explicit CKeptRows(const CTableView& view);

    /// Selects the rows that are left. A current row that was on screen stays there.
    void restore(CTableView& view);
    bool isCurrentLost() const { return m_isCurrentLost; }
    bool isSelectionLost() const { return m_isSelectionLost; }

private:
    struct Run {
        int row; ///< the row's id until it is restored
        int left;
        int right;
    };

    std::vector<Run> m_selected;
    int m_currentId;
    int m_currentColumn;
    bool m_isCurrentOnScreen;
    bool m_isCurrentLost = false;
    bool m_isSelectionLost = false;
};

} // namespace WQ
