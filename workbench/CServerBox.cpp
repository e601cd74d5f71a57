// SPDX-License-Identifier: Apache-2.0
#include "CServerBox.h"

#include <QKeyEvent>
#include <QWheelEvent>

namespace workbench
{

CServerBox::CServerBox(QWidget* parent) : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus); // the wheel takes no focus either
}

void CServerBox::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F4:
        showPopup();
        break;
    default:
        event->ignore();
    }
}

void CServerBox::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

} // namespace workbench
