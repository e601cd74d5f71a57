// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lookup/COfferList.h"

#include <WQ/CLineEdit.h>

namespace QAV
{

/// A line edit with a list of offers. A chosen offer becomes the text. Enter without one is reported as in CLineEdit.
class CLookUpEdit : public WQ::CLineEdit
{
    Q_OBJECT

public:
    CLookUpEdit(int id, const QString& listName, COfferList::Find find, const COfferList::Text& text, QWidget* parent);
    ~CLookUpEdit() override;

    /// Searches again for the typed text, because there may be more offers than before.
    void refreshOffers();
    void hideOffers() { m_offers->hide(); }

signals:
    /// The user has chosen an offer; the edit shows its text.
    void sigChosen(int offer);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    COfferList* m_offers;
};

} // namespace QAV
