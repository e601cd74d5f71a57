// SPDX-License-Identifier: Apache-2.0
#include <WQ/CBaseDialog.h>
#include <WQ/CMessageBox.h>

#include <QKeyEvent>

namespace WQ
{

CBaseDialog::CBaseDialog(QWidget* parent) : CEventWidgetT<QDialog>(parent) {}

CBaseDialog::~CBaseDialog() = default;

int CBaseDialog::exec()
{
    return CMessageBox::presenter()->execDialog(*this);
}

int CBaseDialog::execLoop()
{
    return QDialog::exec();
}

void CBaseDialog::onUiResourceChanged()
{
    update();
}

void CBaseDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace WQ
