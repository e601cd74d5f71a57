// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <WQ/CBaseWidget.h>
#include <nvservice/CAssetsRC.h>
#include <nvservice/RiskEnums.h>

#include <QString>

#include <vector>

namespace QAV
{

class CAssetsPane;

/// Edits asset-portfolio limits: the measured quantity and its base, the comparison, the threshold with its unit, and
/// what happens if the limit is broken.
///
/// The editor writes nothing to the data service: the owner of the configuration record passes the limits in and reads
/// them back. The editor itself loads the security categories that a limit may measure, see refresh().
///
/// UI thread only.
class QAV_EXPORT CAssetsProportionWidget : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    /// The `categoryType` for categories of all types.
    static constexpr int AnyCategoryType = -1;

    /// @param tableId       the client stores the table's layout under this id
    /// @param readOnly      true: the limits are shown but cannot be changed
    /// @param scope         what a new limit watches as one whole
    /// @param categoryType  the type of the offered categories; AnyCategoryType: all
    CAssetsProportionWidget(int tableId, bool readOnly, nvservice::EZVRCScopeType scope, int categoryType,
                            QWidget* parent);
    ~CAssetsProportionWidget() override;

    /// Removes all shown limits. The server stays.
    void clearAssetsRCs();

    /// Replaces the shown limits by `assetsRCs`, in the same order.
    /// @param institutionId  the institution whose categories are offered; nvservice::NoInstitutionId: all that the
    ///                       user may see
    /// @param serverName     the server of the limits, also of new ones. If it differs from the previous one, its asset
    ///                       data are loaded as by refresh()
    void setAssetsRCs(int institutionId, const std::vector<nvservice::CAssetsRC>& assetsRCs, QString serverName);

    /// Replaces `assetsRCs` by the shown limits, in the same order, including invalid ones. Limits that the user did
    /// not edit are unchanged, including fields that this version does not know.
    void getAssetsRCs(std::vector<nvservice::CAssetsRC>& assetsRCs) const;

    /// True if all limits are valid. Otherwise moves to the first invalid cell, shows the reason there, and writes it
    /// to `message`; the caller need not show it again. `message` is not changed if all limits are valid.
    bool isDataValid(QString& message);

    /// Reloads the offered categories from the last given server; does nothing before one was given. The shown limits
    /// stay, including categories that no longer exist.
    void refresh();

private:
    CAssetsPane* const m_pane;
};

} // namespace QAV
