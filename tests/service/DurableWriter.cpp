// SPDX-License-Identifier: Apache-2.0
#include "service/DurableWriter.h"

#include "service/ServiceFixture.h"

#include "service/store/Query.h"

#include <unistd.h>

#include <map>
#include <thread>

namespace testservice
{

namespace
{

using service::Connection;
using service::Query;

constexpr int Threads = 4;

void acknowledge(const std::string& operationId)
{
    const std::string line = operationId + '\n';
    if (::write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        ::_exit(2);
    }
}

void require(const service::Reply& reply)
{
    if (reply.error.isSuccess()) {
        return;
    }
    qCritical("%s", reply.error.errorMsg().c_str());
    ::_exit(1);
}

GroupPtr groupNamed(service::Store& store, const service::SubSystem& server, const std::string& name)
{
    GroupPtr group;
    store.read([&](Connection& connection) {
        const auto id = service::findGroupByName({connection, server}, name);
        group = service::findGroup({connection, server}, id.value())->record;
    });
    return group;
}

void addAndModify(service::Store& store, service::DataEngine& engine, const service::SubSystem& server,
                  const service::SessionPtr& session, const std::string& prefix)
{
    for (int number = 0;; ++number) {
        const std::string added = prefix + std::to_string(number);
        require(operate(engine, session, EZvDataOperation::Add, group(added, First, {future("8001"), future("8002")}),
                        added));
        acknowledge(added);
        const GroupPtr record = groupNamed(store, server, added);
        record->groupName = added + "m";
        require(operate(engine, session, EZvDataOperation::Modify, record, record->groupName));
        acknowledge(record->groupName);
    }
}

using Counts = std::map<std::string, std::int64_t>;

Counts counts(Connection& connection, const char* sql, const QString& run)
{
    Counts found;
    Query query(connection, QString::fromLatin1(sql));
    query.bind((run + "-%").toStdString());
    for (query.run(); query.next();) {
        found[query.text(0)] = query.integer(1);
    }
    return found;
}

} // namespace

int writeWithoutEnd(const QString& location, const QString& run)
{
    const support::RealService service(location);
    const service::SubSystem& server = service.server(0);
    const auto user = service::findUser({service.store().connection(), server}, "writer");
    const auto session = boost::make_shared<service::Session>(user.value(), server.id);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < Threads; ++thread) {
        const std::string prefix = run.toStdString() + "-" + std::to_string(thread) + "-";
        threads.emplace_back([&, prefix] { addAndModify(service.store(), service.engine(), server, session, prefix); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return 0;
}

Aftermath aftermathOf(service::Store& store, const QString& run, const QStringList& acknowledged)
{
    Aftermath aftermath;
    Counts answers;
    Counts audits;
    Counts states;
    Counts members;
    store.read([&](Connection& connection) {
        answers = counts(connection,
                         "SELECT operation_id, count(*) FROM operation_log WHERE outcome = 0 AND operation_id LIKE ?"
                         " GROUP BY operation_id",
                         run);
        audits =
            counts(connection,
                   "SELECT operation_id, count(*) FROM audit WHERE operation_id LIKE ? GROUP BY operation_id", run);
        states =
            counts(connection, "SELECT name, count(*) FROM account_group_history WHERE name LIKE ? GROUP BY name", run);
        members = counts(connection,
                         "SELECT g.name, count(*) FROM account_group g JOIN account_group_member m"
                         " ON m.server_id = g.server_id AND m.group_id = g.group_id WHERE g.name LIKE ?"
                         " GROUP BY g.name",
                         run);
    });
    for (const auto& [id, count] : audits) {
        if (count != 1 || answers[id] != 1 || states[id] != 1) {
            aftermath.findings << QString("%1: %2 audit rows, %3 answers, %4 states")
                                      .arg(id.c_str())
                                      .arg(count)
                                      .arg(answers[id])
                                      .arg(states[id]);
        }
        aftermath.stored.insert(id);
        const bool isNewest = audits.count(id + "m") == 0;
        if (members[id] != (isNewest ? 2 : 0)) {
            aftermath.findings << QString("%1: %2 members").arg(id.c_str()).arg(members[id]);
        }
    }
    for (const Counts& other : {answers, states}) {
        for (const auto& [id, count] : other) {
            if (audits.count(id) == 0 && count > 0) {
                aftermath.findings << QString("%1: not audited").arg(id.c_str());
            }
        }
    }
    aftermath.unacknowledged = static_cast<int>(aftermath.stored.size());
    for (const QString& id : acknowledged) {
        if (aftermath.stored.count(id.toStdString()) == 0) {
            aftermath.findings << id + ": acknowledged and lost";
        } else {
            --aftermath.unacknowledged;
        }
    }
    const utils::NVError integrity = store.checkIntegrity();
    if (!integrity.isSuccess()) {
        aftermath.findings << QString::fromStdString(integrity.errorMsg());
    }
    return aftermath;
}

} // namespace testservice
