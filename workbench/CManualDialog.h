// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CCommonDialog.h>

class QListWidget;
class QTextBrowser;

namespace workbench
{

/// The manual: its pages, and the page that was chosen. It needs no network. Does not block other windows when it is
/// shown with show().
class CManualDialog : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CManualDialog(QWidget* parent);

    /// The folder of the pages; `index.md` links them in their order.
    static QString folder();

    bool handleEvent(int type, int id, int param, QString text, void* data) override;
    void onUiResourceChanged() override;

private:
    void fillPages();

    QListWidget* m_pages;
    QTextBrowser* m_page;
};

} // namespace workbench
