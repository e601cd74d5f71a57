// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CBaseWidget.h>

#include <vector>

namespace nvservice
{
class CAccountGroupRCRule;
}

namespace QAV
{

class CAccountStockTradeLimit;

/// The black and white lists of an account group. Each trade type whose module is switched on has a tab with an editor.
/// The tabs are chosen at construction.
///
/// Stores no rule itself. The parts of trade types without a tab are neither shown nor changed.
class CStockTradeLimitWidget final : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    explicit CStockTradeLimitWidget(QWidget* parent);

    void setTradeLimitGroupId(int groupId);
    void setTradeLimitRule(const nvservice::CAccountGroupRCRule& rule);
    /// Each editor replaces the part of its own trade type in `rule`.
    void updateTradeLimitRule(nvservice::CAccountGroupRCRule& rule);

private:
    /// In tab order. Owned by the tab control.
    std::vector<CAccountStockTradeLimit*> m_tradeLimitTables;
};

} // namespace QAV
