// SPDX-License-Identifier: Apache-2.0
#include "PanelFixture.h"

#include "support/qav/Client.h"
#include "support/wq/Widgets.h"

#include <QtTest>

namespace panel_test
{

PanelFixture::PanelFixture()
{
    logIn(AllRights);
    support::switchModules(AllModules);
}

PanelFixture::~PanelFixture()
{
    panel.reset();
    support::centre().shutDown();
    support::logInAs({});
}

void PanelFixture::logIn(const std::set<int>& rights, int institutionId)
{
    support::logInAs(support::makeUser("admin", rights, institutionId));
}

void PanelFixture::addShanghai()
{
    shanghai = boost::make_shared<support::CFakeTransport>();
    support::centre().addServer(Shanghai, ShanghaiTag, shanghai);
}

void PanelFixture::addShenzhen()
{
    shenzhen = boost::make_shared<support::CFakeTransport>();
    support::centre().addServer(Shenzhen, ShenzhenTag, shenzhen);
}

QAV::CAccountGroupRiskManagePanel& PanelFixture::createPanel()
{
    panel = std::make_unique<QAV::CAccountGroupRiskManagePanel>(nullptr);
    panel->resize(1000, 400);
    panel->show();
    return *panel;
}

QAV::CAccountGroupRiskManagePanel& PanelFixture::openPanel()
{
    createPanel().switchSystem(0, QString::fromStdString(Shanghai));
    return *panel;
}

void PanelFixture::showGroups(std::vector<nvservice::IDataPtr> groups)
{
    openPanel();
    answer(*shanghai, std::move(groups));
}

WQ::CBaseTableColumnMultiButtonsDelegate* PanelFixture::buttons() const
{
    return dynamic_cast<WQ::CBaseTableColumnMultiButtonsDelegate*>(table()->columnDelegate(4));
}

QAbstractButton* PanelFixture::button(const QString& text) const
{
    return support::buttonOf(*panel, text);
}

void PanelFixture::typeInSearchEdit(const QString& text) const
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(searchEdit(), &event);
}

QStringList PanelFixture::shown(int column) const
{
    QStringList texts;
    for (int row = 0; row < model()->rowCount(); ++row) {
        texts << model()->getDataByRow(row)->getDisplayQString(column);
    }
    return texts;
}

void PanelFixture::answer(support::CFakeTransport& server, std::vector<nvservice::IDataPtr> groups,
                          std::vector<nvservice::IDataPtr> products)
{
    const auto query = server.takeQuery();
    QCOMPARE(query.request.dataType, nvservice::DataType::AccountGroup);
    query.handler(support::replyWith(std::move(groups)));
    answerProducts(std::move(products));
}

void PanelFixture::answerProducts(std::vector<nvservice::IDataPtr> products)
{
    for (const auto& server : {shanghai, shenzhen}) {
        if (!server) {
            continue;
        }
        QTRY_VERIFY(server->waitingQueries() > 0);
        const auto query = server->takeQuery();
        QCOMPARE(query.request.dataType, nvservice::DataType::Product);
        query.handler(support::replyWith(server == shanghai ? products : std::vector<nvservice::IDataPtr>()));
    }
    QTRY_VERIFY(mask()->isHidden());
}

boost::shared_ptr<nvservice::CAccountGroup> makeGroup(int id, const std::string& name, const std::string& systemTag,
                                                      int accounts, const std::string& institution)
{
    const auto group = boost::make_shared<nvservice::CAccountGroup>();
    group->groupId = id;
    group->groupName = name;
    group->institutionName = institution;
    for (int i = 0; i < accounts; ++i) {
        const auto account = boost::make_shared<nvservice::CAccountInfo>();
        account->accountId = "00" + std::to_string(i);
        account->setSystemTag(systemTag);
        group->accounts.push_back(account);
    }
    group->setSystemTag(systemTag);
    return group;
}

} // namespace panel_test
