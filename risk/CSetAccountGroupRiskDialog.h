#pragma once

#include <WQ/CCommonDialog.h>

namespace QAV
{

/// The dialog in which the risk rules of an account group are set. The panel keeps one for its whole life.
class CSetAccountGroupRiskDialog final : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CSetAccountGroupRiskDialog(QWidget* parent);

    /// Called at each query of the panel, so that what the dialog offers is as fresh as the table.
    void refreshAssets();
};

} // namespace QAV
