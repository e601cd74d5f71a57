// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CClosableDialog.h"

namespace workbench
{

/// Version, licence and what others have contributed; the text can be copied.
class CAboutDialog : public CClosableDialog
{
    Q_OBJECT

public:
    explicit CAboutDialog(QWidget* parent);
};

} // namespace workbench
