// SPDX-License-Identifier: Apache-2.0
#include "lookup/CLookUpEdit.h"

#include "lookup/OfferList.h"

#include <QCompleter>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QListView>
#include <QStringListModel>

namespace QAV
{

namespace
{

/// Rows that the list shows without scrolling.
constexpr int VisibleOffers = 10;

} // namespace

CLookUpEdit::CLookUpEdit(int id, QWidget* parent)
    : CLineEdit(id, parent), m_lines(new QStringListModel(this)), m_completer(new QCompleter(this))
{
    // The completer shows what this edit finds and leaves the text to it.
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setMaxVisibleItems(VisibleOffers);
    m_completer->setModel(m_lines);
    m_completer->setWidget(this);
    auto* const list = new QListView;
    list->setUniformItemSizes(true);
    m_completer->setPopup(list);
    connect(m_completer, QOverload<const QModelIndex&>::of(&QCompleter::activated), this,
            [this](const QModelIndex& index) { choose(index.row()); });
    connect(this, &QLineEdit::textEdited, this, &CLookUpEdit::showOffers);
}

CLookUpEdit::~CLookUpEdit() = default;

void CLookUpEdit::setSource(Find find, Text text)
{
    m_find = std::move(find);
    m_text = std::move(text);
}

void CLookUpEdit::setListName(const QString& accessibleName)
{
    m_completer->popup()->setAccessibleName(accessibleName);
}

void CLookUpEdit::refreshOffers()
{
    if (hasFocus() && !isReadOnly() && isModified() && !text().trimmed().isEmpty()) {
        showOffers(text());
    }
}

void CLookUpEdit::hideOffers()
{
    m_completer->popup()->hide();
}

void CLookUpEdit::showOffers(const QString& typed)
{
    m_offers = m_find ? m_find(typed) : std::vector<int>();
    QStringList lines;
    for (const int offer : m_offers) {
        lines << m_text(offer);
    }
    m_lines->setStringList(lines);
    if (lines.isEmpty()) {
        hideOffers();
        return;
    }
    openOfferList(*m_completer, *this, lines);
    // The completer would have its best match taken by Enter.
    m_completer->popup()->selectionModel()->clear();
}

void CLookUpEdit::choose(int row)
{
    if (row < 0 || row >= int(m_offers.size())) {
        return;
    }
    const int offer = m_offers[std::size_t(row)];
    hideOffers();
    setText(m_text(offer));
    emit sigChosen(offer);
}

void CLookUpEdit::keyPressEvent(QKeyEvent* event)
{
    QAbstractItemView* const list = m_completer->popup();
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        const QModelIndex picked = list->isVisible() ? list->currentIndex() : QModelIndex();
        hideOffers();
        if (picked.isValid()) {
            choose(picked.row());
            event->accept();
            return;
        }
        break;
    }
    case Qt::Key_Down:
    case Qt::Key_Up:
        if (!list->isVisible() && !isReadOnly()) {
            // What is chosen already is not what to look for.
            showOffers(isModified() ? text() : QString());
            return;
        }
        break;
    default:
        break;
    }
    CLineEdit::keyPressEvent(event);
}

} // namespace QAV
