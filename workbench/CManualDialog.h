// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CClosableDialog.h"

class QListWidget;
class QTextBrowser;

namespace workbench
{

/// The manual: its pages, and the page that was chosen. It needs no network. Does not block other windows when it is
/// shown with show().
class CManualDialog : public CClosableDialog
{
    Q_OBJECT

public:
    explicit CManualDialog(QWidget* parent);

    /// The folder of the pages; `index.md` links them in their order.
    static QString folder();

    void onUiResourceChanged() override;

private:
    void fillPages();
    /// Makes the list as wide as its texts.
    void fitPages();

    QListWidget* m_pages;
    QTextBrowser* m_page;
};

} // namespace workbench
