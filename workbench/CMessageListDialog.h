// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CClosableDialog.h"

class QListWidget;

namespace workbench
{

/// The messages that the user has seen lately, the newest first. Copies those that are selected, or all.
class CMessageListDialog : public CClosableDialog
{
    Q_OBJECT

public:
    explicit CMessageListDialog(QWidget* parent);

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

private:
    static constexpr int CopyButton = FirstOwnButton;

    void fill();
    void copy();

    QListWidget* m_list;
};

} // namespace workbench
