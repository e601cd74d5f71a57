// SPDX-License-Identifier: Apache-2.0
#include "hpf/CHpfTableView.h"

#include "hpf/CHpfHeader.h"
#include "tablekit/CTablePainter.h"

#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/IBaseTable.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolButton>

#include <algorithm>

namespace WQ
{

namespace
{

constexpr int IconGap = 4;

int rowHeightFor(const QFontMetrics& metrics)
{
    return std::max(28, metrics.height() + 10);
}

} // namespace

CHpfTableView::CHpfTableView(CStandardHpfTable& table)
    : CTableView(new CHpfHeader(table), CHpfHeader::TextMargin, &table), m_table(table),
      m_header(static_cast<CHpfHeader*>(horizontalHeader())), m_dropFilter(new QToolButton(viewport()))
{
    m_dropFilter->setObjectName(QStringLiteral("tableDropFilter"));
    m_dropFilter->setText(QCoreApplication::translate("WQ", "清除筛选"));
    m_dropFilter->hide();
    connect(m_dropFilter, &QToolButton::clicked, &table, &CStandardHpfTable::clearFilter);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollMode(ScrollPerItem);
    setRowHeight(rowHeightFor(fontMetrics()));
}

void CHpfTableView::setHpfModel(IBaseHpfTableModel* model)
{
    if (m_model) {
        m_model->disconnect(this);
    }
    const std::unique_ptr<QItemSelectionModel> oldSelection(selectionModel());
    m_model = model;
    setModel(model);
    if (!model) {
        return;
    }
    connect(model, &IBaseHpfTableModel::sigAboutToRearrange, this, &CHpfTableView::keepRows);
    connect(model, &IBaseHpfTableModel::sigRearranged, this, &CHpfTableView::restoreRows);
    connect(model, &IBaseHpfTableModel::sigFilterChanged, this, &CHpfTableView::onUiResourceChanged);
    connect(model, &IBaseHpfTableModel::sigSortChanged, m_header->viewport(), qOverload<>(&QWidget::update));
    columnsChanged();
}

void CHpfTableView::sync()
{
    if (m_model) {
        m_model->announce();
    }
}

int CHpfTableView::idOfRow(int row) const
{
    return m_model->getDataIndexByRow(row);
}

int CHpfTableView::rowOfId(int id) const
{
    return m_model->getRowByDataIndex(id);
}

bool CHpfTableView::isColumnWidthFixed(int column) const
{
    return m_model && m_model->isColumnWidthFixed(column);
}

const QAbstractItemDelegate* CHpfTableView::columnPainter(int column) const
{
    return m_table.columnDelegate(column);
}

QColor CHpfTableView::rowBackground(int row) const
{
    return CUiResourceManager::instance()->colour(m_model->getRowBackgroundKey(row));
}

QString CHpfTableView::emptyText() const
{
    return isAllFilteredOut()
               ? QCoreApplication::translate("WQ", "没有符合条件的记录（共%1条）").arg(m_model->getDataCount())
               : CTableView::emptyText();
}

bool CHpfTableView::isAllFilteredOut() const
{
    return m_model && m_model->rowCount() == 0 && m_model->isFiltered() && m_model->getDataCount() > 0;
}

void CHpfTableView::offerToDropFilter()
{
    const bool isOffered = isAllFilteredOut() && (flags() & TableEmptyText) != 0;
    if (!isOffered && m_dropFilter->hasFocus()) {
        setFocus(Qt::OtherFocusReason);
    }
    m_dropFilter->setVisible(isOffered);
    QRect place(QPoint(), m_dropFilter->sizeHint());
    place.moveCenter(viewport()->rect().center() + QPoint(0, fontMetrics().height() + place.height()));
    m_dropFilter->setGeometry(place);
}

void CHpfTableView::updateGeometries()
{
    CTableView::updateGeometries();
    offerToDropFilter();
}

int CHpfTableView::contentWidth(int column) const
{
    int width = 0;
    const CBaseTableColumnDelegate* const delegate = m_table.columnDelegate(column);
    const int last = lastVisibleRow();
    for (int row = std::max(0, firstVisibleRow()); row <= last; ++row) {
        const QModelIndex index = m_model->index(row, column);
        if (delegate) {
            width = std::max(width, delegate->contentWidth(index));
            continue;
        }
        const QString text = index.data(Qt::DisplayRole).toString().left(CTablePainter::MostCharacters);
        const int icon = index.data(Qt::DecorationRole).isValid() ? CTablePainter::IconExtent + IconGap : 0;
        width = std::max(width, textWidth(text) + icon + 2 * textMargin() + 2);
    }
    return width;
}

TableActions CHpfTableView::cellActions(const QModelIndex& index) const
{
    TableActions actions;
    auto* const buttons = qobject_cast<CBaseTableColumnMultiButtonsDelegate*>(delegateOf(index));
    if (!buttons) {
        return actions;
    }
    const QString key = m_model->getDataByRow(index.row())->getKey();
    for (const ButtonData& button : buttons->itemButtons(key)) {
        actions.push_back(
            {button.text, [delegate = QPointer<CBaseTableColumnMultiButtonsDelegate>(buttons), key, id = button.id] {
                 if (delegate) {
                     delegate->press(key, id);
                 }
             }});
    }
    return actions;
}

CBaseTableColumnDelegate* CHpfTableView::delegateOf(const QModelIndex& index) const
{
    return index.isValid() ? m_table.columnDelegate(index.column()) : nullptr;
}

QString CHpfTableView::toolTipAt(const QModelIndex& index, const QPoint& position) const
{
    const QRect cell = visualRect(index);
    if (const CBaseTableColumnDelegate* const delegate = delegateOf(index)) {
        return delegate->toolTipAt(index, cell, position);
    }
    const IBaseHpfTableDataPtr record = m_model->getDataByRow(index.row());
    const int iconEnd = cell.left() + textMargin() + CTablePainter::IconExtent + IconGap;
    const bool overIcon = position.x() < iconEnd && !record->getItemIconKey(index.column()).isEmpty();
    const QString tip = overIcon ? record->getItemIconTip(index.column()) : index.data(Qt::ToolTipRole).toString();
    return tip.isEmpty() ? CTableView::toolTipAt(index, position) : tip;
}

void CHpfTableView::setHover(const QPoint& position, bool inside)
{
    CTableView::setHover(position, inside);
    CBaseTableColumnDelegate* const delegate = delegateOf(inside ? indexAt(position) : QModelIndex());
    if (m_hoverDelegate && m_hoverDelegate != delegate) {
        m_hoverDelegate->mouseLeft();
    }
    m_hoverDelegate = delegate;
}

bool CHpfTableView::sendToDelegate(QMouseEvent* event)
{
    const bool pressing = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (m_pressDelegate && !pressing) {
        const QPointer<CBaseTableColumnDelegate> delegate = m_pressDelegate;
        const QModelIndex index = m_pressIndex;
        if (event->type() == QEvent::MouseButtonRelease) {
            m_pressDelegate.clear();
            m_pressIndex = QModelIndex();
        }
        return delegate->mouseEvent(event, index, visualRect(index)) || !index.isValid();
    }
    const QModelIndex index = indexAt(event->pos());
    CBaseTableColumnDelegate* const delegate = delegateOf(index);
    if (!delegate || (event->type() == QEvent::MouseMove && event->buttons() != Qt::NoButton)) {
        return false;
    }
    const bool taken = delegate->mouseEvent(event, index, visualRect(index));
    if (taken && pressing) {
        m_pressDelegate = delegate;
        m_pressIndex = index;
    }
    return taken;
}

void CHpfTableView::mousePressEvent(QMouseEvent* event)
{
    if (!sendToDelegate(event)) {
        CTableView::mousePressEvent(event);
        return;
    }
    // The row of the pressed button becomes current; a selection that the user gathers click by click stays.
    const bool gathers = selectionMode() == MultiSelection;
    selectionModel()->setCurrentIndex(m_pressIndex,
                                      gathers ? QItemSelectionModel::NoUpdate
                                              : QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void CHpfTableView::mouseMoveEvent(QMouseEvent* event)
{
    if (sendToDelegate(event)) {
        setHover(event->pos(), viewport()->rect().contains(event->pos()));
    } else {
        CTableView::mouseMoveEvent(event);
    }
}

void CHpfTableView::mouseReleaseEvent(QMouseEvent* event)
{
    if (!sendToDelegate(event)) {
        CTableView::mouseReleaseEvent(event);
    }
}

void CHpfTableView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (!sendToDelegate(event)) {
        CTableView::mouseDoubleClickEvent(event);
    }
}

void CHpfTableView::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex current = currentIndex();
    CBaseTableColumnDelegate* const delegate = delegateOf(current);
    if (delegate && delegate->keyEvent(event, current)) {
        return;
    }
    if (current.isValid() && event->key() == Qt::Key_Down && event->modifiers() == Qt::AltModifier) {
        emit sigFilterRequested(current.column());
    } else {
        CTableView::keyPressEvent(event);
    }
}

void CHpfTableView::changeEvent(QEvent* event)
{
    CTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        setRowHeight(rowHeightFor(fontMetrics()));
    }
}

void CHpfTableView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    CTableView::currentChanged(current, previous);
    CBaseTableColumnDelegate* const left = delegateOf(previous);
    CBaseTableColumnDelegate* const entered = delegateOf(current);
    if (left && left != entered) {
        left->currentChanged(false, false);
    }
    if (entered && (left != entered || current.row() != previous.row()) && !m_pressDelegate) {
        const int from = previous.isValid() ? m_header->visualIndex(previous.column()) : -1;
        entered->currentChanged(true, m_header->visualIndex(current.column()) >= from);
    }
    if (!entered) {
        setAccessibleDescription({});
    }
}

} // namespace WQ
