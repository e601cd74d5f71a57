#pragma once

#include <WQ/CCommonDialog.h>

namespace QAV
{

/// The dialog in which an account group is created or edited. The panel keeps one for its whole life.
class CAddAccountGroupDialog final : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CAddAccountGroupDialog(QWidget* parent);
};

} // namespace QAV
