// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CTableColumns.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QMenu>

namespace WQ
{

std::vector<int> visibleColumns(const QHeaderView& header)
{
    std::vector<int> columns;
    for (int place = 0; place < header.count(); ++place) {
        const int column = header.logicalIndex(place);
        if (!header.isSectionHidden(column)) {
            columns.push_back(column);
        }
    }
    return columns;
}

CTableColumns::CTableColumns(QHeaderView& header) : m_header(header)
{
    connect(&header, &QHeaderView::sectionResized, this, [this](int column, int before, int now) {
        // A column that is shown or hidden comes from or goes to the width 0.
        if (!m_isFitting && before > 0 && now > 0) {
            m_widths[column] = now;
        }
    });
}

void CTableColumns::reset()
{
    m_invisible.clear();
    m_userHidden.clear();
    m_removed.clear();
    m_widths.clear();
    for (int column = 0; column < m_header.count(); ++column) {
        applyVisibility(column);
    }
}

bool CTableColumns::has(int column) const
{
    return column >= 0 && column < m_header.count();
}

void CTableColumns::setVisible(int column, bool visible)
{
    if (!has(column)) {
        return;
    }
    if (visible) {
        m_invisible.erase(column);
    } else {
        m_invisible.insert(column);
    }
    applyVisibility(column);
    emit sigVisibilityChanged();
}

void CTableColumns::remove(int column)
{
    if (has(column)) {
        m_removed.insert(column);
        applyVisibility(column);
        emit sigVisibilityChanged();
    }
}

bool CTableColumns::isVisible(int column) const
{
    return has(column) && !m_header.isSectionHidden(column);
}

void CTableColumns::setWidth(int column, int width)
{
    if (has(column)) {
        m_widths[column] = qBound(NarrowestColumn, width, WidestColumn);
        fit(column, m_widths[column]);
    }
}

int CTableColumns::width(int column) const
{
    // A hidden section has no size of its own.
    const auto chosen = m_widths.find(column);
    return chosen != m_widths.end() ? chosen->second : has(column) ? m_header.sectionSize(column) : 0;
}

void CTableColumns::fit(int column, int width)
{
    m_isFitting = true;
    m_header.resizeSection(column, width);
    m_isFitting = false;
}

void CTableColumns::addChooser(QMenu& menu, const std::function<bool(int column)>& isListed)
{
    QMenu* const chooser = menu.addMenu(QCoreApplication::translate("WQ", "显示列"));
    chooser->setObjectName(QStringLiteral("tableColumns"));
    for (int place = 0; place < m_header.count(); ++place) {
        const int column = m_header.logicalIndex(place);
        if (!isOffered(column) || !isListed(column)) {
            continue;
        }
        QAction* const action = chooser->addAction(m_header.model()->headerData(column, Qt::Horizontal).toString());
        action->setCheckable(true);
        action->setChecked(isVisible(column));
        connect(action, &QAction::toggled, this, [this, column](bool shown) { setShownByUser(column, shown); });
    }
    const QList<QAction*> entries = chooser->actions();
    const auto shown = std::count_if(entries.begin(), entries.end(), [](QAction* entry) { return entry->isChecked(); });
    for (QAction* const entry : entries) {
        entry->setEnabled(!entry->isChecked() || shown > 1);
    }
}

void CTableColumns::save(TableLayout& layout) const
{
    for (int column = 0; column < m_header.count(); ++column) {
        layout.order.append(m_header.logicalIndex(column));
        const auto chosen = m_widths.find(column);
        layout.widths.append(chosen == m_widths.end() ? 0 : chosen->second);
    }
    layout.hidden = QSet<int>(m_userHidden.begin(), m_userHidden.end());
}

bool CTableColumns::load(const TableLayout& layout)
{
    if (layout.order.size() != m_header.count()) {
        return false;
    }
    m_userHidden = std::set<int>(layout.hidden.cbegin(), layout.hidden.cend());
    m_widths.clear();
    for (int place = 0; place < layout.order.size(); ++place) {
        m_header.moveSection(m_header.visualIndex(layout.order.at(place)), place);
    }
    for (int column = 0; column < layout.order.size(); ++column) {
        applyVisibility(column);
        if (layout.widths.at(column) > 0) {
            setWidth(column, layout.widths.at(column));
        }
    }
    emit sigVisibilityChanged();
    return true;
}

void CTableColumns::setShownByUser(int column, bool shown)
{
    if (shown) {
        m_userHidden.erase(column);
    } else {
        m_userHidden.insert(column);
    }
    applyVisibility(column);
    emit sigVisibilityChanged();
}

void CTableColumns::applyVisibility(int column)
{
    m_header.setSectionHidden(column, !isOffered(column) || m_userHidden.count(column) != 0);
}

} // namespace WQ
