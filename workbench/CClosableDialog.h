// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CCommonDialog.h>

class QBoxLayout;

namespace WQ
{
class CMediumNormalButton;
}

namespace workbench
{

/// A dialog with nothing to save: its contents above a row of buttons, the last of which closes it.
class CClosableDialog : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    explicit CClosableDialog(QWidget* parent);

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

protected:
    enum EButton : int { CloseButton = 1, FirstOwnButton };

    /// Where the contents go, from top to bottom.
    QBoxLayout& contents() const { return *m_contents; }
    /// Adds a button before the last one.
    WQ::CMediumNormalButton& addButton(int id, const QString& text);

private:
    QBoxLayout* m_contents;
    QBoxLayout* m_buttons;
    WQ::CMediumNormalButton* m_close = nullptr;
};

} // namespace workbench
