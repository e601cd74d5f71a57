// SPDX-License-Identifier: Apache-2.0
#include "ReplyWorld.h"

#include "editor/ControlId.h"
#include "support/qav/ServiceThread.h"

#include <QAV/CUserCombobox.h>
#include <WQ/CStandardSimpleTable.h>
#include <nvservice/CInstitutionInfo.h>
#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/UserRight.h>

#include <QtTest>

#include <utility>

namespace panel_test
{

namespace DataType = nvservice::DataType;

namespace
{

constexpr int Ids = 3; ///< of groups and of accounts, on each server

const std::string& nameOf(std::size_t server)
{
    return server == 0 ? Shanghai : Shenzhen;
}

const std::string& tagOf(std::size_t server)
{
    return server == 0 ? ShanghaiTag : ShenzhenTag;
}

boost::shared_ptr<nvservice::CAccountInfo> makeAccount(std::size_t server, int id)
{
    const auto account = boost::make_shared<nvservice::CAccountInfo>();
    account->brokerType = nvservice::EZVBrokerType::Stock;
    account->accountId = std::to_string(id);
    account->setSystemTag(tagOf(server));
    return account;
}

} // namespace

ReplyWorld::ReplyWorld(unsigned seed) : m_random(seed)
{
    client.logIn({nvservice::UserRight::EditAccountGroup, nvservice::UserRight::DeleteAccountGroup,
                  nvservice::UserRight::StockAccount});
    support::switchModules(
        "return { mdl_portal = { mdl_portal_pb = true }, mdl_tradetype = { mdl_tradetype_stock = true } }");
    client.addShanghai();
    client.addShenzhen();
    m_servers = {client.shanghai, client.shenzhen};
    for (std::size_t server = 0; server < Servers; ++server) {
        connectServer(server);
    }
}

void ReplyWorld::connectServer(std::size_t server)
{
    m_servers[server]->onQuery = [this, server](const nvservice::CKolmQueryDataReq& request, const Handler& handler) {
        take(server, request.dataType, handler);
    };
    m_servers[server]->onOperate = [this, server](const nvservice::COperateDataReq&, const Handler& handler) {
        take(server, Deletion, handler);
    };
}

void ReplyWorld::openPanel()
{
    client.destroyPanel();
    m_waiting.clear();
    ++m_panel;
    m_askedRound = ++m_round;
    m_current.clear();
    m_groups.clear();
    m_products.clear();
    m_isCovered = false;
    client.createPanel();
}

void ReplyWorld::beginRound()
{
    ++m_round;
    m_groups.clear();
    m_products.clear();
    m_isCovered = true;
}

void ReplyWorld::switchTo(const std::string& serverName)
{
    m_current = serverName;
    beginRound();
    client.panel->switchSystem(0, QString::fromStdString(serverName));
}

void ReplyWorld::activate()
{
    beginRound();
    client.panel->onActive();
}

void ReplyWorld::refresh()
{
    beginRound();
    client.panel->handleEvent(WQ::ButtonClicked, QAV::RefreshButtonId, 0, {}, nullptr); // also under the mask
}

void ReplyWorld::deleteGroup()
{
    const auto group = std::next(m_groups.begin(), below(int(m_groups.size())));
    boxes.expectQuestion(QMessageBox::Question, "提示", "确定要删除该项?", QMessageBox::Yes);
    client.panel->handleEvent(WQ::RowButtonClicked, 4, QAV::DeleteRowButton,
                              QString::fromStdString(m_current + '|' + std::to_string(group->first)), nullptr);
}

void ReplyWorld::editGroup(const std::function<void()>& script)
{
    const auto group = std::next(m_groups.begin(), below(int(m_groups.size())))->second;
    const auto known = m_products.find(group->accounts.front()->getKey());
    const std::string product = known == m_products.end() ? "未关联产品" : known->second;
    m_dialogServer = m_current == Shanghai ? 0 : 1;
    ++m_showing;
    m_hasInstitutions = false;
    m_hasAccounts = false;
    boxes.expectDialog([&](WQ::CBaseDialog& dialog) {
        m_dialog = &dialog;
        check();
        script();
        checkDialog(dialog, product);
        m_dialog = nullptr;
        dialog.done(0);
    });
    client.panel->handleEvent(WQ::RowButtonClicked, 4, QAV::EditRowButton,
                              QString::fromStdString(m_current + '|' + std::to_string(group->groupId)), nullptr);
}

int ReplyWorld::roundOf(int dataType) const
{
    return dataType == Deletion ? m_panel : dataType == DataType::Account ? m_showing : m_askedRound;
}

void ReplyWorld::take(std::size_t server, int dataType, Handler handler)
{
    if (dataType == DataType::Institution) {
        const auto institution = boost::make_shared<nvservice::CInstitutionInfo>();
        institution->institutionId = 1;
        institution->name = "远山基金";
        handler(support::replyWith({institution}));
        return;
    }
    if (dataType != Deletion && dataType != DataType::AccountGroup && dataType != DataType::Product &&
        dataType != DataType::Account) {
        handler(support::replyWith({}));
        return;
    }
    // What goes to both servers is put to one after the other.
    if (!m_latest || m_latest->unput == 0) {
        m_latest = std::make_shared<Question>();
        m_latest->dataType = dataType;
        const bool goesToOne = dataType == Deletion || (dataType == DataType::AccountGroup && !m_current.empty());
        m_latest->unput = goesToOne ? 1 : Servers;
        m_latest->unanswered = m_latest->unput;
        if (dataType == DataType::AccountGroup) {
            ++m_askedRound;
        }
        m_latest->round = roundOf(dataType);
        m_askedQuestions.push_back(dataType);
    }
    QCOMPARE(dataType, m_latest->dataType);
    --m_latest->unput;
    m_open.push_back({m_latest, server, std::move(handler)});
}

std::vector<nvservice::IDataPtr> ReplyWorld::recordsOf(std::size_t server, int dataType)
{
    const std::string mark = tagOf(server) + '#' + std::to_string(++m_serial);
    std::vector<nvservice::IDataPtr> records;
    const auto product = boost::make_shared<nvservice::CProductInfo>();
    product->productName = mark;
    for (int id = 1; id <= Ids; ++id) {
        if (below(3) == 0) {
            continue;
        }
        if (dataType == DataType::AccountGroup) {
            const auto group = makeGroup(id, mark, tagOf(server), 0);
            group->accounts = {makeAccount(server, id)};
            records.push_back(group);
        } else if (dataType == DataType::Account) {
            const auto candidate = boost::make_shared<nvservice::CKolmAccountInfo>();
            candidate->account = makeAccount(server, id);
            candidate->setSystemTag(tagOf(server));
            records.push_back(candidate);
        } else {
            product->accounts.push_back(makeAccount(server, id));
        }
    }
    if (dataType == DataType::Product) {
        const auto products = boost::make_shared<nvservice::CKolmProductsResp>();
        products->products = {product};
        records.push_back(products);
    }
    return records;
}

void ReplyWorld::answerAny()
{
    const auto chosen = m_open.begin() + below(int(m_open.size()));
    const Part part = std::move(*chosen);
    m_open.erase(chosen);
    answer(part);
}

void ReplyWorld::answer(const Part& part)
{
    Question& question = *part.question;
    const auto kind = EAnswer(below(AnswerCount));
    QAV::ITransport::Reply reply;
    if (kind != Failed && question.dataType != Deletion) {
        question.records[part.server] = recordsOf(part.server, question.dataType);
    }
    reply.records = question.records[part.server];
    if (kind == Failed || kind == FailedWithRecords) {
        question.errors[part.server] = QStringLiteral("故障%1").arg(++m_serial);
        reply.error = utils::NVError(utils::EErrorCode::Failed, question.errors[part.server].toStdString());
    }
    part.handler(reply);
    if (kind == Twice) {
        part.handler(reply);
    }
    support::awaitCallbacks();
    if (--question.unanswered == 0) {
        m_waiting.push_back(part.question);
    }
}

void ReplyWorld::deliver()
{
    m_expectedQuestions.clear();
    m_askedQuestions.clear();
    for (const QuestionPtr& question : std::exchange(m_waiting, {})) {
        expect(*question);
    }
    m_hasInstitutions = m_dialog != nullptr;
    support::settleCallbacks();
    QCOMPARE(m_askedQuestions, m_expectedQuestions);
    check();
}

void ReplyWorld::answerAll()
{
    while (!m_open.empty() || !m_waiting.empty()) {
        if (!m_open.empty()) {
            answerAny();
        }
        if (m_open.empty() || below(3) == 0) {
            deliver();
        }
    }
}

void ReplyWorld::expect(const Question& question)
{
    switch (question.dataType) {
    case DataType::AccountGroup:
        return expectGroups(question);
    case DataType::Product:
        return expectProducts(question);
    case DataType::Account:
        return expectAccounts(question);
    default:
        return expectOutcome(question);
    }
}

void ReplyWorld::expectGroups(const Question& question)
{
    if (question.round != m_round) {
        return;
    }
    for (std::size_t server = 0; server < Servers; ++server) {
        for (const nvservice::IDataPtr& record : question.records[server]) {
            const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(record);
            if (nameOf(server) == m_current) {
                m_groups[group->groupId] = group;
            }
        }
    }
    m_expectedQuestions.push_back(DataType::Product);
}

void ReplyWorld::expectProducts(const Question& question)
{
    if (question.round != m_round) {
        return;
    }
    for (const auto& records : question.records) {
        for (const nvservice::IDataPtr& record : records) {
            // One record that lists the products of all servers comes of several; each lists its own here.
            const auto reply = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(record);
            const auto product = boost::dynamic_pointer_cast<nvservice::CProductInfo>(reply->products.front());
            for (const auto& account : product->accounts) {
                m_products[account->getKey()] = product->productName;
            }
        }
    }
    m_isCovered = false;
}

void ReplyWorld::expectAccounts(const Question& question)
{
    if (!m_dialog || question.round != m_showing) {
        return;
    }
    m_hasAccounts = true;
    m_candidates = int(question.records[m_dialogServer].size());
    QStringList errors;
    for (std::size_t server = 0; server < Servers; ++server) {
        if (!question.errors[server].isEmpty()) {
            errors << QStringLiteral("分系统“%1”：%2")
                          .arg(QString::fromStdString(nameOf(server)), question.errors[server]);
        }
    }
    if (!errors.isEmpty()) {
        boxes.expectMessage(QMessageBox::Information, "提示", errors.join("；"));
    }
}

void ReplyWorld::expectOutcome(const Question& question)
{
    if (question.round != m_panel) {
        return;
    }
    const QString error = question.errors[0] + question.errors[1];
    const QString text = error.isEmpty() ? QStringLiteral("成功!") : QStringLiteral("失败!(%1)").arg(error);
    boxes.expectMessage(QMessageBox::Information, "提示", "删除账号组" + text);
    if (!error.isEmpty()) {
        return;
    }
    beginRound();
    m_expectedQuestions.push_back(DataType::AccountGroup);
}

void ReplyWorld::check()
{
    QStringList names;
    for (const auto& [id, group] : m_groups) {
        names << QString::fromStdString(group->groupName);
    }
    QCOMPARE(client.shown(0), names);
    QCOMPARE(client.mask()->isVisible(), m_isCovered);
    if (m_dialog) {
        QCOMPARE(m_dialog->findChild<WQ::CLoadingMaskWidget*>()->isHidden(), m_hasAccounts && m_hasInstitutions);
    }
    QCOMPARE(boxes.failures(), QStringList());
}

void ReplyWorld::checkDialog(WQ::CBaseDialog& dialog, const std::string& product)
{
    const auto* const table = dialog.findChild<WQ::CStandardSimpleTable*>();
    QCOMPARE(table->itemText(table->rowID(0), 3), QString::fromStdString(product));
    if (!m_hasAccounts) {
        return;
    }
    boxes.expectDialog([this](WQ::CBaseDialog& picker) {
        QCOMPARE(picker.findChild<QAV::CUserCombobox*>()->itemCount(), m_candidates);
        picker.done(0);
    });
    dialog.handleEvent(WQ::ButtonClicked, QAV::AddAccountsButtonId, 0, {}, nullptr);
}

} // namespace panel_test
