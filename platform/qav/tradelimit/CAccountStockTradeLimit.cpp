// SPDX-License-Identifier: Apache-2.0
#include <QAV/CAccountStockTradeLimit.h>

#include "tradelimit/CTradeLimitPane.h"

namespace QAV
{

struct CAccountStockTradeLimit::Private {
    EStockLimitTableType m_tableType;
    nvservice::EZvTraderType m_traderType;
    int m_groupId = -1;
    CTradeLimitPane* m_pane = nullptr;
};

CAccountStockTradeLimit::CAccountStockTradeLimit(EStockLimitTableType tableType, nvservice::EZvTraderType traderType,
                                                 QWidget* parent)
    : CBaseWidget(QStringLiteral("account_stock_trade_limit"), false, parent), m_d(std::make_unique<Private>())
{
    m_d->m_tableType = tableType;
    m_d->m_traderType = traderType;
    m_d->m_pane = new CTradeLimitPane(tableType, traderType, this);
    setInnerStretchWidget(m_d->m_pane, 0, 0, 0, 0);
}

CAccountStockTradeLimit::~CAccountStockTradeLimit() = default;

EStockLimitTableType CAccountStockTradeLimit::tableType() const
{
    return m_d->m_tableType;
}

nvservice::EZvTraderType CAccountStockTradeLimit::traderType() const
{
    return m_d->m_traderType;
}

void CAccountStockTradeLimit::setAccountGroupId(int groupId)
{
    m_d->m_groupId = groupId;
}

int CAccountStockTradeLimit::accountGroupId() const
{
    return m_d->m_groupId;
}

void CAccountStockTradeLimit::setAccountGroupRCRule(const nvservice::CAccountGroupRCRule& rule)
{
    const nvservice::CTradeLimitList* const list = rule.findList(m_d->m_traderType);
    m_d->m_pane->load(rule.getSystemTag(), list ? list->entries : std::vector<nvservice::CTradeLimitEntry>());
}

void CAccountStockTradeLimit::updateAccountGroupRCRule(nvservice::CAccountGroupRCRule& rule)
{
    const CTradeLimitBook& book = m_d->m_pane->book();
    if (book.rows().empty() && !rule.findList(m_d->m_traderType)) {
        return;
    }
    rule.list(m_d->m_traderType).entries = book.entries();
}

} // namespace QAV
