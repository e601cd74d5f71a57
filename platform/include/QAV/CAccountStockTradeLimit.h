#pragma once

#include <QAV/EStockLimitTableType.h>
#include <QAV/Export.h>
#include <WQ/CBaseWidget.h>
#include <nvservice/CAccountGroupRCRule.h>
#include <nvservice/EZvTraderType.h>

#include <memory>

namespace QAV
{

/// The editor of the black and white list of one trade type.
///
/// The user looks securities up by code, name or pinyin initials, pastes them from a spreadsheet, or imports a file;
/// chooses list and, where the trade type has one, direction; searches, deletes, undoes and exports. A security on both
/// lists is refused where it is entered. Nothing reaches the data service from here: whoever owns the configuration
/// record hands the rule in, and takes it out again when the user saves.
///
/// UI thread only. 100 000 entries are an ordinary list.
class QAV_EXPORT CAccountStockTradeLimit : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    /// @param tableType   whose lists these are; it is part of the table's stored layout
    /// @param traderType  the part of a rule that this editor shows; one bit
    CAccountStockTradeLimit(EStockLimitTableType tableType, nvservice::EZvTraderType traderType, QWidget* parent);
    ~CAccountStockTradeLimit() override;

    EStockLimitTableType tableType() const;
    nvservice::EZvTraderType traderType() const;

    /// Says whose rule comes next. What is shown stays until it comes.
    void setAccountGroupId(int groupId);
    int accountGroupId() const;

    /// Shows this trade type's part of `rule`, in the order of its entries, in place of what was shown. The rule is not
    /// kept. Securities are looked up on the server that the rule's system tag names.
    void setAccountGroupRCRule(const nvservice::CAccountGroupRCRule& rule);

    /// Replaces the entries of this trade type's part of `rule` by what is shown, and leaves the other parts alone. A
    /// rule without the part gets one at its end when there is anything to put into it. Entries that the user did not
    /// touch are written as they came, fields that this version does not know included.
    void updateAccountGroupRCRule(nvservice::CAccountGroupRCRule& rule);

private:
    struct Private;
    const std::unique_ptr<Private> m_d;
};

} // namespace QAV
