// SPDX-License-Identifier: Apache-2.0
#include <QAV/CAccountStockTradeLimit.h>

#include "tradelimit/CTradeLimitPane.h"

namespace QAV
{

CAccountStockTradeLimit::CAccountStockTradeLimit(EStockLimitTableType tableType, nvservice::EZvTraderType traderType,
                                                 QWidget* parent)
    : CBaseWidget(QStringLiteral("account_stock_trade_limit"), false, parent), m_tableType(tableType),
      m_traderType(traderType), m_pane(new CTradeLimitPane(tableType, traderType, this))
{
    setInnerStretchWidget(m_pane, 0, 0, 0, 0);
}

CAccountStockTradeLimit::~CAccountStockTradeLimit() = default;

void CAccountStockTradeLimit::setAccountGroupRCRule(const nvservice::CAccountGroupRCRule& rule)
{
    const nvservice::CTradeLimitList* const list = rule.findList(m_traderType);
    m_pane->load(rule.getSystemTag(), list ? list->entries : std::vector<nvservice::CTradeLimitEntry>());
}

void CAccountStockTradeLimit::updateAccountGroupRCRule(nvservice::CAccountGroupRCRule& rule)
{
    const CTradeLimitBook& book = m_pane->book();
    if (book.rows().empty() && !rule.findList(m_traderType)) {
        return;
    }
    rule.list(m_traderType).entries = book.entries();
}

} // namespace QAV
