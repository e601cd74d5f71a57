// SPDX-License-Identifier: Apache-2.0
#include "CAccountListPanel.h"

#include "CAccountListModel.h"
#include "CAccountRow.h"

#include <QAV/CKolmClientCenter.h>
#include <WQ/ButtonPainter.h>
#include <WQ/CLineEdit.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/EventType.h>
#include <WQ/StringConversion.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/DataType.h>

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <boost/make_shared.hpp>

namespace Example
{

namespace
{

constexpr int AccountTableId = 1;

enum ControlId { SearchEdit = 1, RefreshButton, StateText };

} // namespace

CAccountListPanel::CAccountListPanel(QWidget* parent)
    : IkolmDockableWidget(true, QStringLiteral("exampleAccounts"), parent, true),
      m_search(new WQ::CLineEdit(SearchEdit, this)),
      m_state(new WQ::CSimpleTextWidget(false, StateText, QString(), this)),
      m_table(new WQ::CStandardHpfTable(AccountTableId, this, WQ::MenuAll)), m_model(new CAccountListModel)
{
    m_search->setEmptyHintText(QStringLiteral("按账号、名称或机构查找"));
    m_search->setMinimumWidth(220);
    m_search->setAccessibleName(QStringLiteral("查找"));
    auto* refreshButton = new WQ::CSmallNormalButton(RefreshButton, true, WQ::NormalButton, this);
    refreshButton->setText(QStringLiteral("刷新"));
    m_table->setDataModel(m_model);
    m_table->setColumnFilterable(TypeColumn, true);
    m_table->setColumnFilterable(ServerColumn, true);

    auto* bar = new QHBoxLayout;
    bar->addWidget(m_search);
    bar->addWidget(refreshButton);
    bar->addWidget(m_state, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addLayout(bar);
    layout->addWidget(m_table, 1);
}

CAccountListPanel::~CAccountListPanel() = default;

void CAccountListPanel::setParam(const QString& param)
{
    m_table->loadConfigStr(param);
}

QString CAccountListPanel::param() const
{
    return m_table->saveConfigStr();
}

void CAccountListPanel::switchSystem(int index, QString serverName)
{
    IkolmDockableWidget::switchSystem(index, serverName);
    refresh();
}

void CAccountListPanel::onActive()
{
    refresh();
}

bool CAccountListPanel::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && id == RefreshButton) {
        refresh();
        return true;
    }
    if (type == WQ::LineEditTextChanged && id == SearchEdit) {
        m_table->search({IdColumn, NameColumn, InstitutionColumn}, text);
        return true;
    }
    return IkolmDockableWidget::handleEvent(type, id, param, text, data);
}

void CAccountListPanel::refresh()
{
    m_state->setText(QStringLiteral("正在加载…"));
    const auto request = boost::make_shared<nvservice::CKolmQueryDataReq>();
    request->dataType = nvservice::DataType::Account;
    const int number = ++m_lastRequest;
    const auto callback = callbackGate().queued(
        QAV::QueryCallback([this, number](const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records,
                                          int, const bson::BSONObj&) {
            if (number == m_lastRequest) {
                show(error, records);
            }
        }));
    auto* centre = utils::CSingletonT<QAV::CKolmClientCenter>::instance();
    if (serverName().isEmpty()) {
        centre->queryData_async(request, callback);
    } else {
        centre->getClientByName(WQ::qsToS(serverName()))->queryData_async(request, callback);
    }
}

void CAccountListPanel::show(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records)
{
    m_model->clear();
    for (const nvservice::IDataPtr& record : records) {
        const auto account = boost::dynamic_pointer_cast<nvservice::CKolmAccountInfo>(record);
        if (account && account->account) {
            m_model->addData(boost::make_shared<CAccountRow>(*account));
        }
    }
    m_table->search({IdColumn, NameColumn, InstitutionColumn}, m_search->getText());
    m_table->adjustColumnWidth();
    m_state->setText(error.isSuccess() ? QStringLiteral("%1 个账号").arg(m_model->getDataCount())
                                       : WQ::sToQs(error.errorMsg()));
}

} // namespace Example
