// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CKeptRows.h"

#include "tablekit/CTableView.h"

#include <algorithm>
#include <tuple>

namespace WQ
{

CKeptRows::CKeptRows(const CTableView& view)
{
    const QModelIndex current = view.currentIndex();
    m_currentId = view.idOfNextCurrent(current.row());
    m_currentColumn = current.column();
    m_isCurrentOnScreen =
        current.isValid() && current.row() >= view.firstVisibleRow() && current.row() <= view.lastVisibleRow();
    for (const QItemSelectionRange& range : view.selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            m_selected.push_back({view.idOfRow(row), range.left(), range.right()});
        }
    }
}

void CKeptRows::restore(CTableView& view)
{
    const QAbstractItemModel& model = *view.model();
    const bool hadSelection = !m_selected.empty();
    for (Run& run : m_selected) {
        run.row = view.rowOfId(run.row);
    }
    m_selected.erase(std::remove_if(m_selected.begin(), m_selected.end(), [](const Run& run) { return run.row < 0; }),
                     m_selected.end());
    std::sort(m_selected.begin(), m_selected.end(), [](const Run& a, const Run& b) {
        return std::tie(a.left, a.right, a.row) < std::tie(b.left, b.right, b.row);
    });
    QItemSelection selection;
    for (std::size_t i = 0; i < m_selected.size();) {
        const Run& first = m_selected[i];
        std::size_t next = i + 1;
        while (next < m_selected.size() && m_selected[next].left == first.left &&
               m_selected[next].right == first.right && m_selected[next].row == m_selected[next - 1].row + 1) {
            ++next;
        }
        selection.append({model.index(first.row, first.left), model.index(m_selected[next - 1].row, first.right)});
        i = next;
    }
    if (!selection.isEmpty()) {
        view.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    }
    m_isSelectionLost = hadSelection && selection.isEmpty();
    const int row = view.rowOfId(m_currentId);
    m_isCurrentLost = row < 0 && m_currentId >= 0;
    if (row >= 0) {
        const QModelIndex current = model.index(row, m_currentColumn);
        // A view scrolls to its new current row; here only if the row was on screen before.
        view.setAutoScroll(m_isCurrentOnScreen);
        view.selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
        view.setAutoScroll(true);
    }
}

} // namespace WQ
