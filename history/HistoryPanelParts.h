// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/CChangeDetails.h"
#include "history/CComparisonView.h"
#include "history/CFindingsPage.h"
#include "history/CHistoryPanel.h"

class QSplitter;

namespace WQ
{
class CLineEdit;
class CNormalButton;
class CSimpleTextWidget;
class CStandardHpfTable;
class CStandardTabControl;
} // namespace WQ

namespace QAV
{

class CTextModel;

/// What the panel is made of. The widgets belong to their parents.
struct CHistoryPanel::Parts {
    Parts(const CCallbackGate& gate, const CPagedQuery::Handler& takePage, const CPagedQuery::Handler& takeNewest)
        : pages(gate, takePage), newest(gate, takeNewest), names(gate)
    {
    }

    bool mayReadAudit = false;
    CPagedQuery pages;
    CPagedQuery newest; ///< the first page again, for a refresh
    CJointQuery names;
    std::unique_ptr<CChangeDetails> details;
    bool isOld = true; ///< what is shown is not that of the server
    bool areFindingsOld = true;
    bool isJoining = false;
    std::function<bool(const HistoryChange&)> isExpected; ///< the change that is to be opened; empty: none

    CSearchPane* searchPane = nullptr;
    CComparisonView* comparison = nullptr;
    CFindingsPage* findings = nullptr;
    CTextModel* model = nullptr;
    WQ::CStandardHpfTable* table = nullptr;
    WQ::CStandardTabControl* tabs = nullptr;
    WQ::CSimpleTextWidget* notice = nullptr;
    WQ::CSimpleTextWidget* state = nullptr;
    WQ::CNormalButton* retry = nullptr;
    WQ::CNormalButton* compare = nullptr;
    WQ::CLineEdit* at = nullptr;
    QSplitter* wide = nullptr; ///< between the search and the rest
    QSplitter* high = nullptr; ///< between the changes and the comparison
};

} // namespace QAV
