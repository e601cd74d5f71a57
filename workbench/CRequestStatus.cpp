// SPDX-License-Identifier: Apache-2.0
#include "CRequestStatus.h"

#include "ClientCentre.h"

#include <WQ/StringConversion.h>
#include <nvservice/DataType.h>

#include <QMenu>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QTimerEvent>

namespace workbench
{

namespace
{

using Request = QAV::CKolmClientCenter::RequestUnderWay;

constexpr int LookEveryMs = 500;
constexpr std::chrono::seconds Long(1);
constexpr int LooksUntilRest = 4;

std::chrono::seconds ageOf(const Request& request)
{
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - request.since);
}

QString dataName(int dataType)
{
    switch (dataType) {
    case nvservice::DataType::Category:
        return CRequestStatus::tr("证券分类");
    case nvservice::DataType::AccountGroup:
        return CRequestStatus::tr("账号组");
    case nvservice::DataType::GroupRiskConfig:
        return CRequestStatus::tr("风控设置");
    case nvservice::DataType::Account:
        return CRequestStatus::tr("账号");
    case nvservice::DataType::Product:
        return CRequestStatus::tr("产品");
    case nvservice::DataType::Institution:
        return CRequestStatus::tr("机构");
    case nvservice::DataType::Security:
        return CRequestStatus::tr("证券");
    case nvservice::DataType::EmailRule:
        return CRequestStatus::tr("邮件规则");
    case nvservice::DataType::GroupHistory:
        return CRequestStatus::tr("账号组历史");
    case nvservice::DataType::GroupState:
        return CRequestStatus::tr("账号组状态");
    case nvservice::DataType::Audit:
        return CRequestStatus::tr("审计记录");
    case nvservice::DataType::Finding:
        return CRequestStatus::tr("一致性检查结果");
    case nvservice::DataType::GroupRestore:
        return CRequestStatus::tr("账号组恢复");
    default:
        return QString::number(dataType);
    }
}

QString textOf(const Request& request)
{
    QString what = CRequestStatus::tr("登录");
    if (request.dataType != 0) {
        what = (request.isOperation ? CRequestStatus::tr("保存%1") : CRequestStatus::tr("查询%1"))
                   .arg(dataName(request.dataType));
    }
    return CRequestStatus::tr("取消：%1 %2（%3秒）")
        .arg(WQ::sToQs(request.serverName), what, QString::number(ageOf(request).count()));
}

} // namespace

CRequestStatus::CRequestStatus(QWidget* parent) : QToolButton(parent)
{
    setObjectName("requests");
    setAutoRaise(true);
    setPopupMode(QToolButton::InstantPopup);
    setToolTip(tr("正在等待应答的请求，可以取消"));
    auto* const requests = new QMenu(this);
    setMenu(requests);
    connect(requests, &QMenu::aboutToShow, this, &CRequestStatus::fillMenu);
    m_timer.start(LookEveryMs, this);
    showRequests();
}

void CRequestStatus::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_timer.timerId()) {
        showRequests();
    } else {
        QToolButton::timerEvent(event);
    }
}

void CRequestStatus::paintEvent(QPaintEvent*)
{
    // Qt keeps no room for the arrow of the menu and draws it over the text.
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.features &= ~QStyleOptionToolButton::HasMenu;
    QStylePainter(this).drawComplexControl(QStyle::CC_ToolButton, option);
}

void CRequestStatus::showRequests()
{
    const std::vector<Request> requests = clientCentre().requestsUnderWay();
    const bool takesLong = !requests.empty() && ageOf(requests.front()) >= Long;
    if (takesLong) {
        setText(tr("请求%1个，已等待%2秒")
                    .arg(QString::number(requests.size()), QString::number(ageOf(requests.front()).count())));
    }
    setVisible(takesLong);
    m_looksAtRest = requests.empty() ? m_looksAtRest + 1 : 0;
    if (m_looksAtRest == LooksUntilRest) {
        emit sigAtRest();
    }
}

void CRequestStatus::fillMenu()
{
    menu()->clear();
    const std::vector<Request> requests = clientCentre().requestsUnderWay();
    for (const Request& request : requests) {
        menu()->addAction(textOf(request), this, [number = request.number] { clientCentre().cancelRequest(number); });
    }
    menu()->addSeparator();
    menu()->addAction(tr("全部取消"), this, [requests] {
        for (const Request& request : requests) {
            clientCentre().cancelRequest(request.number);
        }
    });
}

} // namespace workbench
