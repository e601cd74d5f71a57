// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CCommonDialog.h>

class QTreeWidget;

namespace workbench
{

class CPluginCatalogue;

/// Lists all plug-ins that were found: title, state, and why one cannot be used.
class CPluginDialog : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    CPluginDialog(const CPluginCatalogue& plugins, QWidget* parent);

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    void fill(const CPluginCatalogue& plugins);

    QTreeWidget* m_list;
};

} // namespace workbench
