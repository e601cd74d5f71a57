// SPDX-License-Identifier: Apache-2.0
#include <QAV/CAccountStockTradeLimit.h>

#include "tradelimit/CTradeLimitPane.h"

namespace QAV
{

struct CAccountStockTradeLimit::Private {
    const EStockLimitTableType tableType;
    const nvservice::EZvTraderType traderType;
    CTradeLimitPane* const pane;
    int groupId = -1;
};

CAccountStockTradeLimit::CAccountStockTradeLimit(EStockLimitTableType tableType, nvservice::EZvTraderType traderType,
                                                 QWidget* parent)
    : CBaseWidget(QStringLiteral("account_stock_trade_limit"), false, parent),
      m_d(new Private{tableType, traderType, new CTradeLimitPane(tableType, traderType, this)})
{
    setInnerStretchWidget(m_d->pane, 0, 0, 0, 0);
}

CAccountStockTradeLimit::~CAccountStockTradeLimit() = default;

int CAccountStockTradeLimit::accountGroupId() const
{
    return m_d->groupId;
}

void CAccountStockTradeLimit::setAccountGroupId(int groupId)
{
    m_d->groupId = groupId;
}

nvservice::EZvTraderType CAccountStockTradeLimit::traderType() const
{
    return m_d->traderType;
}

EStockLimitTableType CAccountStockTradeLimit::tableType() const
{
    return m_d->tableType;
}

void CAccountStockTradeLimit::setAccountGroupRCRule(const nvservice::CAccountGroupRCRule& rule)
{
    const nvservice::CTradeLimitList* const list = rule.findList(m_d->traderType);
    m_d->pane->load(rule.getSystemTag(), list ? list->entries : std::vector<nvservice::CTradeLimitEntry>());
}

void CAccountStockTradeLimit::updateAccountGroupRCRule(nvservice::CAccountGroupRCRule& rule)
{
    const CTradeLimitBook& book = m_d->pane->book();
    if (book.rows().empty() && !rule.findList(m_d->traderType)) {
        return;
    }
    rule.list(m_d->traderType).entries = book.entries();
}

} // namespace QAV
