// SPDX-License-Identifier: Apache-2.0
#include "lookup/COfferList.h"

#include "lookup/CListRowDelegate.h"

#include <QCompleter>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QStringListModel>

#include <algorithm>

namespace QAV
{

namespace
{

/// Lines that the list shows without scrolling.
constexpr int VisibleLines = 10;
/// Lines that the width of the list is fitted to.
constexpr int MeasuredLines = 100;
/// Space between a line and the frame of the list, both sides together.
constexpr int LineMargin = 16;

} // namespace

COfferList::COfferList(QLineEdit* edit, const QString& accessibleName, Find find, Text text)
    : QObject(edit), m_edit(edit), m_find(std::move(find)), m_text(std::move(text)),
      m_lines(new QStringListModel(this)), m_completer(new QCompleter(this))
{
    // The completer neither filters the offers nor writes into the edit.
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setMaxVisibleItems(VisibleLines);
    m_completer->setModel(m_lines);
    m_completer->setWidget(edit);
    auto* const list = new QListView;
    list->setUniformItemSizes(true);
    list->setAccessibleName(accessibleName);
    m_completer->setPopup(list);
    // setPopup() installs a delegate of its own.
    list->setItemDelegate(new CListRowDelegate(list));
    connect(m_completer, QOverload<const QModelIndex&>::of(&QCompleter::activated), this,
            [this](const QModelIndex& index) { emit sigChosen(m_offers.at(std::size_t(index.row()))); });
}

void COfferList::show(const QString& typed)
{
    m_offers = m_find(typed);
    QStringList lines;
    for (const int offer : m_offers) {
        lines << m_text(offer);
    }
    m_lines->setStringList(lines);
    if (lines.isEmpty()) {
        hide();
        return;
    }
    const QAbstractItemView& list = *m_completer->popup();
    const int frame = LineMargin + list.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    int width = m_edit->width();
    for (int i = 0; i < std::min(lines.size(), MeasuredLines); ++i) {
        width = std::max(width, list.fontMetrics().horizontalAdvance(lines[i]) + frame);
    }
    m_completer->complete(QRect(0, 0, width, m_edit->height() - 1));
    // The completer makes its best match current, which Enter would choose.
    list.selectionModel()->clear();
}

void COfferList::hide()
{
    m_completer->popup()->hide();
}

bool COfferList::isVisible() const
{
    return m_completer->popup()->isVisible();
}

bool COfferList::chooseCurrent()
{
    const QModelIndex current = isVisible() ? m_completer->popup()->currentIndex() : QModelIndex();
    hide();
    if (!current.isValid()) {
        return false;
    }
    emit sigChosen(m_offers.at(std::size_t(current.row())));
    return true;
}

bool COfferList::handleKey(QKeyEvent* event, const QString& browsed)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        event->accept();
        return chooseCurrent();
    case Qt::Key_Down:
    case Qt::Key_Up:
        if (isVisible() || m_edit->isReadOnly()) {
            return false;
        }
        show(browsed);
        return true;
    default:
        return false;
    }
}

} // namespace QAV
