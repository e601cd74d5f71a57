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

/// The black and white lists of an account group: one tab with one editor per trade type whose module is switched on.
///
/// Keeps no rule of its own. The parts of trade types without a tab are neither shown nor touched. Which tabs there are
/// is decided at construction.
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
    /// In tab order. They belong to the tab control.
    std::vector<CAccountStockTradeLimit*> m_tradeLimitTables;
};

} // namespace QAV
