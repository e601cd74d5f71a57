#include "risk/CSetAccountGroupRiskDialog.h"

namespace QAV
{

CSetAccountGroupRiskDialog::CSetAccountGroupRiskDialog(QWidget* parent) : CCommonDialog(parent)
{
    setMinimumSize(500, 500);
}

void CSetAccountGroupRiskDialog::refreshAssets() {}

} // namespace QAV
