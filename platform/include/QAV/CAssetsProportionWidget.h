#pragma once

#include <QAV/Export.h>
#include <WQ/CBaseWidget.h>
#include <nvservice/CAssetsRC.h>
#include <nvservice/RiskEnums.h>

#include <QString>

#include <memory>
#include <vector>

namespace QAV
{

/// The editor of asset-portfolio limits: what is measured against what, the comparison, the threshold with its unit,
/// and what happens when the limit is broken.
///
/// Nothing is written to the data service from here; the owner of the configuration record hands the limits in and
/// takes them out again. The editor reads the security categories that a limit may measure by itself, see refresh().
///
/// UI thread only.
class QAV_EXPORT CAssetsProportionWidget : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    /// The `categoryType` that offers categories of every type.
    static constexpr int AnyCategoryType = -1;

    /// @param tableId       under which the client keeps the table's layout
    /// @param readOnly      true: the limits are shown and cannot be changed
    /// @param scope         what a new limit watches as one whole
    /// @param categoryType  the type of the categories that are offered; AnyCategoryType: all
    CAssetsProportionWidget(int tableId, bool readOnly, nvservice::EZVRCScopeType scope, int categoryType,
                            QWidget* parent);
    ~CAssetsProportionWidget() override;

    /// Shows no limits. The server stays.
    void clearAssetsRCs();

    /// Shows `assetsRCs` in their order in place of what was shown.
    /// @param institutionId  the institution whose categories are offered; nvservice::NoInstitutionId: all that the
    ///                       user may see
    /// @param serverName     the server that the limits belong to; a new limit gets it. Another server than before has
    ///                       its asset data loaded, as by refresh()
    void setAssetsRCs(int institutionId, const std::vector<nvservice::CAssetsRC>& assetsRCs, QString serverName);

    /// Replaces `assetsRCs` by what is shown, in that order, invalid limits included. Limits that the user did not
    /// touch come back as they went in, fields that this version does not know included.
    void getAssetsRCs(std::vector<nvservice::CAssetsRC>& assetsRCs) const;

    /// Whether every limit makes sense. If not: goes to the first offending cell, shows what is wrong with it there,
    /// and puts the same text into `message`, which is left alone otherwise. The caller shows nothing of its own.
    bool isDataValid(QString& message);

    /// Reloads the categories that are offered from the server last given; before there is one, does nothing. The
    /// limits shown stay as they are, categories that no longer exist included.
    void refresh();

private:
    struct Private;
    const std::unique_ptr<Private> m_d;
};

} // namespace QAV
