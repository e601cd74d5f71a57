// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/EStockLimitTableType.h>
#include <QAV/Export.h>
#include <WQ/CBaseWidget.h>
#include <nvservice/CAccountGroupRCRule.h>
#include <nvservice/EZvTraderType.h>

#include <memory>

namespace QAV
{

class CTradeLimitPane;

/// Edits the black and white list of one trade type.
///
/// The user looks up securities by code, name or pinyin initials, pastes them from a spreadsheet, or imports a file.
/// The user selects the list and, if the trade type has one, the direction; and can search, delete, undo and export. A
/// security on both lists is refused on entry. The editor writes nothing to the data service: the owner of the
/// configuration record passes the rule in, and reads it back when the user saves.
///
/// UI thread only. Built for lists of 100 000 entries.
class QAV_EXPORT CAccountStockTradeLimit : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    /// @param tableType   the kind of owner of the lists; part of the table's stored layout
    /// @param traderType  the part of a rule that this editor shows; one bit
    CAccountStockTradeLimit(EStockLimitTableType tableType, nvservice::EZvTraderType traderType, QWidget* parent);
    ~CAccountStockTradeLimit() override;

    EStockLimitTableType tableType() const;
    nvservice::EZvTraderType traderType() const;

    /// Sets the group whose rule will be passed next. The shown entries stay until then.
    void setAccountGroupId(int groupId);
    int accountGroupId() const;

    /// Replaces the shown entries by this trade type's part of `rule`, in the same order. The rule is not stored.
    /// Securities are looked up on the server given by the rule's system tag.
    void setAccountGroupRCRule(const nvservice::CAccountGroupRCRule& rule);

    /// Replaces the entries of this trade type's part of `rule` by the shown ones; the other parts stay. If the part is
    /// missing and there are entries, it is appended. Entries that the user did not edit are unchanged, including
    /// fields that this version does not know.
    void updateAccountGroupRCRule(nvservice::CAccountGroupRCRule& rule);

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace QAV
