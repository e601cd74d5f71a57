// SPDX-License-Identifier: Apache-2.0
#include "editor/EditorServiceFixture.h"

#include "panel/DataRequest.h"
#include "support/Paths.h"
#include "support/qav/CReplyCollector.h"
#include "support/qav/Client.h"

#include <luawrapper/LuaModuleCtrl.h>
#include <nvservice/CKolmProductsResp.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <QtTest>

namespace editor_test
{

namespace
{

const QString Connection = QStringLiteral("editor");

} // namespace

EditorServiceFixture::EditorServiceFixture()
{
    const std::string switches = support::sourceFile("data/modules.lua").toStdString();
    const utils::NVError modules = utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->load(switches);
    if (!modules.isSuccess()) {
        qFatal("%s", modules.errorMsg().c_str());
    }
    m_installation = std::make_unique<workbench::CInstallation>();
    const utils::NVError opened = m_installation->open(file(), {30, 300});
    if (!opened.isSuccess()) {
        qFatal("%s", opened.errorMsg().c_str());
    }
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), Connection);
    database.setDatabaseName(file());
    database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    if (!database.open()) {
        qFatal("%s", qPrintable(database.lastError().text()));
    }
    m_session = std::make_unique<workbench::CSession>();
}

EditorServiceFixture::~EditorServiceFixture()
{
    dialog.reset();
    m_session.reset();
    m_installation.reset();
    QSqlDatabase::database(Connection).close();
    QSqlDatabase::removeDatabase(Connection);
}

void EditorServiceFixture::logInAs(const QString& user, const QString& password)
{
    bool done = false;
    utils::NVError error;
    m_session->logIn(user, password, [&](const workbench::CSession::Outcome& outcome) {
        error = outcome.error;
        done = true;
    });
    QTRY_VERIFY_WITH_TIMEOUT(done, 60000);
    QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
}

QString EditorServiceFixture::send(nvservice::EZvDataOperation operation,
                                   const boost::shared_ptr<nvservice::CAccountGroup>& group, const QString& server)
{
    const auto request = QAV::makeOperateRequest(nvservice::DataType::AccountGroup, operation, group);
    const auto client = operation == nvservice::EZvDataOperation::Add
                            ? support::centre().getClientByName(server.toStdString())
                            : support::centre().getClientBySystemTag(group->getSystemTag());
    support::CReplyCollector replies;
    client->operateData_async(request, replies.onOperate(), 0);
    const support::CollectedReply reply = replies.first();
    const QAV::OperateOutcome outcome = QAV::operateOutcome(reply.error, reply.document);
    return outcome.success ? QString() : outcome.message;
}

std::vector<nvservice::IDataPtr> EditorServiceFixture::ask(int dataType)
{
    support::CReplyCollector replies;
    support::centre().queryData_async(QAV::makeQueryRequest(dataType), replies.onQuery(), 0);
    return replies.first().records;
}

boost::shared_ptr<nvservice::CAccountGroup> EditorServiceFixture::storedGroup(const QString& server,
                                                                              const QString& name)
{
    const std::string tag = support::centre().getSystemTagByServerName(server.toStdString());
    for (const nvservice::IDataPtr& record : ask(nvservice::DataType::AccountGroup)) {
        const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(record);
        if (group && group->getSystemTag() == tag && group->groupName == name.toStdString()) {
            return group;
        }
    }
    return {};
}

QAV::ProductMap EditorServiceFixture::products()
{
    QAV::ProductMap products;
    const auto records = ask(nvservice::DataType::Product);
    const auto reply = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(records.at(0));
    for (const nvservice::IDataPtr& record : reply->products) {
        const auto product = boost::dynamic_pointer_cast<nvservice::CProductInfo>(record);
        for (const auto& account : product->accounts) {
            if (!product->excluded) {
                products[account->getKey()] = product;
            }
        }
    }
    return products;
}

QStringList EditorServiceFixture::rows(const QString& sql, const QStringList& arguments) const
{
    QSqlQuery query(QSqlDatabase::database(Connection));
    query.prepare(sql);
    for (const QString& argument : arguments) {
        query.addBindValue(argument);
    }
    if (!query.exec()) {
        qFatal("%s", qPrintable(query.lastError().text()));
    }
    QStringList rows;
    while (query.next()) {
        QStringList values;
        for (int column = 0; column < query.record().count(); ++column) {
            values << query.value(column).toString();
        }
        rows << values.join('|');
    }
    return rows;
}

QString EditorServiceFixture::lastAudit() const
{
    const QStringList audit = rows("SELECT login, operation, outcome, before_body IS NOT NULL, after_body IS NOT NULL"
                                   " FROM audit WHERE data_type = 625 ORDER BY id DESC LIMIT 1",
                                   {});
    return audit.isEmpty() ? QString() : audit.first();
}

QStringList EditorServiceFixture::members(const QString& server, const QString& group) const
{
    return rows("SELECT a.account_id || CASE a.unit_id WHEN '' THEN '' ELSE '-' || a.unit_id END"
                " FROM account_group g JOIN sub_system s ON s.id = g.server_id"
                " JOIN account_group_member m ON m.server_id = g.server_id AND m.group_id = g.group_id"
                " JOIN account a ON a.id = m.account_id WHERE s.name = ? AND g.name = ? ORDER BY m.position",
                {server, group});
}

} // namespace editor_test
