// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CClosableDialog.h"

class QTreeWidget;

namespace workbench
{

class CPluginCatalogue;

/// Lists all plug-ins that were found: title, state, and why one cannot be used.
class CPluginDialog : public CClosableDialog
{
    Q_OBJECT

public:
    CPluginDialog(const CPluginCatalogue& plugins, QWidget* parent);

private:
    void fill(const CPluginCatalogue& plugins);

    QTreeWidget* m_list;
};

} // namespace workbench
