// SPDX-License-Identifier: Apache-2.0
#include <WQ/CBaseDialog.h>
#include <WQ/CMessageBox.h>
#include <WQ/CMessageTip.h>

#include <QCoreApplication>
#include <QKeyEvent>

namespace WQ
{

namespace
{

constexpr int SecondsToDiscard = 5;

} // namespace

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

bool CBaseDialog::hasUnsavedEdits() const
{
    return false;
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
    if (event->key() == Qt::Key_Escape && hasUnsavedEdits()) {
        const QString warning = QCoreApplication::translate("WQ", "有未保存的修改, 再按一次Esc放弃");
        const CMessageTip* const shown = CMessageTip::tipOf(this);
        if (!shown || shown->text() != warning) {
            CMessageTip::showTip(this, Qt::AlignHCenter, warning, SecondsToDiscard, MessageWarning, 0);
            event->accept();
            return;
        }
    }
    QDialog::keyPressEvent(event);
}

} // namespace WQ
