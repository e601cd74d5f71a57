// SPDX-License-Identifier: Apache-2.0
#include "lookup/CLookUpEdit.h"

namespace QAV
{

CLookUpEdit::CLookUpEdit(int id, const QString& listName, COfferList::Find find, const COfferList::Text& text,
                         QWidget* parent)
    : CLineEdit(id, parent), m_offers(new COfferList(this, listName, std::move(find), text))
{
    connect(this, &QLineEdit::textEdited, m_offers, &COfferList::show);
    connect(m_offers, &COfferList::sigChosen, this, [this, text](int offer) {
        setText(text(offer));
        emit sigChosen(offer);
    });
}

CLookUpEdit::~CLookUpEdit() = default;

void CLookUpEdit::refreshOffers()
{
    if (hasFocus() && !isReadOnly() && isModified() && !text().trimmed().isEmpty()) {
        m_offers->show(text());
    }
}

void CLookUpEdit::keyPressEvent(QKeyEvent* event)
{
    // The text of a chosen offer is not what the user looks for.
    if (!m_offers->handleKey(event, isModified() ? text() : QString())) {
        CLineEdit::keyPressEvent(event);
    }
}

} // namespace QAV
