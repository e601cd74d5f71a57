#include "editor/CAddAccountGroupDialog.h"

namespace QAV
{

CAddAccountGroupDialog::CAddAccountGroupDialog(QWidget* parent) : CCommonDialog(parent)
{
    setTitle(QStringLiteral("添加账号组"));
    setMinimumSize(600, 550);
}

} // namespace QAV
