// SPDX-License-Identifier: Apache-2.0
#include "CMessageBoxDialog.h"

#include <WQ/CMessageBox.h>
#include <WQ/CMessageHistory.h>

#include <QApplication>

namespace WQ
{

namespace
{

class CBoxPresenter : public IMessagePresenter
{
public:
    QMessageBox::StandardButton showMessage(const MessageRequest& request) override
    {
        QWidget* const parent = request.parent ? request.parent : QApplication::activeWindow();
        // The parent may go, and take the box along, while the box is open.
        const QPointer<CMessageBoxDialog> box(new CMessageBoxDialog(request, parent));
        box->execLoop();
        if (!box) {
            return QMessageBox::NoButton;
        }
        const QMessageBox::StandardButton answer = box->answer();
        delete box;
        return answer;
    }
};

IMessagePresenter* g_presenter = nullptr;

QMessageBox::StandardButton show(QMessageBox::Icon kind, QWidget* parent, const QString& title, const QString& text,
                                 QMessageBox::StandardButtons buttons, QMessageBox::StandardButton defaultButton)
{
    CMessageHistory::instance().add(title, text);
    return CMessageBox::presenter()->showMessage({kind, parent, title, text, buttons, defaultButton});
}

} // namespace

IMessagePresenter::~IMessagePresenter() = default;

int IMessagePresenter::execDialog(CBaseDialog& dialog)
{
    return dialog.execLoop();
}

CMessageBox::StandardButton CMessageBox::information(QWidget* parent, const QString& title, const QString& text,
                                                     StandardButtons buttons, StandardButton defaultButton)
{
    return show(QMessageBox::Information, parent, title, text, buttons, defaultButton);
}

CMessageBox::StandardButton CMessageBox::question(QWidget* parent, const QString& title, const QString& text,
                                                  StandardButtons buttons, StandardButton defaultButton)
{
    return show(QMessageBox::Question, parent, title, text, buttons, defaultButton);
}

CMessageBox::StandardButton CMessageBox::warning(QWidget* parent, const QString& title, const QString& text,
                                                 StandardButtons buttons, StandardButton defaultButton)
{
    return show(QMessageBox::Warning, parent, title, text, buttons, defaultButton);
}

CMessageBox::StandardButton CMessageBox::critical(QWidget* parent, const QString& title, const QString& text,
                                                  StandardButtons buttons, StandardButton defaultButton)
{
    return show(QMessageBox::Critical, parent, title, text, buttons, defaultButton);
}

QString CMessageBox::buttonText(StandardButton button)
{
    switch (button) {
    case QMessageBox::Ok:
        return QCoreApplication::translate("WQ", "确定");
    case QMessageBox::Save:
        return QCoreApplication::translate("WQ", "保存");
    case QMessageBox::SaveAll:
        return QCoreApplication::translate("WQ", "全部保存");
    case QMessageBox::Open:
        return QCoreApplication::translate("WQ", "打开");
    case QMessageBox::Yes:
        return QCoreApplication::translate("WQ", "是");
    case QMessageBox::YesToAll:
        return QCoreApplication::translate("WQ", "全部是");
    case QMessageBox::No:
        return QCoreApplication::translate("WQ", "否");
    case QMessageBox::NoToAll:
        return QCoreApplication::translate("WQ", "全部否");
    case QMessageBox::Abort:
        return QCoreApplication::translate("WQ", "中止");
    case QMessageBox::Retry:
        return QCoreApplication::translate("WQ", "重试");
    case QMessageBox::Ignore:
        return QCoreApplication::translate("WQ", "忽略");
    case QMessageBox::Close:
        return QCoreApplication::translate("WQ", "关闭");
    case QMessageBox::Cancel:
        return QCoreApplication::translate("WQ", "取消");
    case QMessageBox::Discard:
        return QCoreApplication::translate("WQ", "放弃");
    case QMessageBox::Help:
        return QCoreApplication::translate("WQ", "帮助");
    case QMessageBox::Apply:
        return QCoreApplication::translate("WQ", "应用");
    case QMessageBox::Reset:
        return QCoreApplication::translate("WQ", "重置");
    case QMessageBox::RestoreDefaults:
        return QCoreApplication::translate("WQ", "恢复默认");
    default:
        return QString();
    }
}

IMessagePresenter* CMessageBox::setPresenter(IMessagePresenter* presenter)
{
    IMessagePresenter* const before = CMessageBox::presenter();
    g_presenter = presenter;
    return before;
}

IMessagePresenter* CMessageBox::presenter()
{
    static CBoxPresenter boxes;
    return g_presenter ? g_presenter : &boxes;
}

} // namespace WQ
