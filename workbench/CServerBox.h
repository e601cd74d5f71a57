// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QComboBox>

namespace workbench
{

/// The box to choose the server. As another server replaces everything that the panels show, only Enter or a click in
/// the open list chooses one: keys open the list, and the wheel does nothing.
class CServerBox : public QComboBox
{
    Q_OBJECT

public:
    explicit CServerBox(QWidget* parent);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace workbench
