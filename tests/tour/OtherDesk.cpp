// SPDX-License-Identifier: Apache-2.0
#include "OtherDesk.h"

#include "support/records/Requests.h"
#include "support/service/RealService.h"

#include <WQ/StringConversion.h>
#include <nvservice/DataType.h>

#include <boost/make_shared.hpp>

namespace tour
{

using nvservice::CAccountGroup;
using nvservice::EZvDataOperation;
namespace DataType = nvservice::DataType;

OtherDesk::OtherDesk(const QString& databaseFile, const QString& server, const QString& user, const QString& password)
{
    const support::RealService service(databaseFile);
    for (const service::DataEnginePtr& engine : service.engines()) {
        if (WQ::sToQs(engine->serverName()) == server) {
            m_engine = engine;
        }
    }
    if (!m_engine) {
        qFatal("there is no server %s", qPrintable(server));
    }
    m_session = m_engine->logIn(WQ::qsToS(user), WQ::qsToS(password)).session;
    if (!m_session) {
        qFatal("%s cannot log in", qPrintable(user));
    }
}

boost::shared_ptr<CAccountGroup> OtherDesk::group(const QString& name)
{
    for (const nvservice::IDataPtr& record :
         m_engine->query(m_session, support::queryOf(DataType::AccountGroup)).records) {
        const auto group = boost::dynamic_pointer_cast<CAccountGroup>(record);
        if (group && WQ::sToQs(group->groupName) == name) {
            return group;
        }
    }
    qFatal("there is no group %s", qPrintable(name));
}

QString OtherDesk::add(const QString& name, const QString& accountsOf)
{
    const auto group = boost::dynamic_pointer_cast<CAccountGroup>(this->group(accountsOf)->copy());
    const auto added = boost::make_shared<CAccountGroup>();
    added->groupName = WQ::qsToS(name);
    added->institutionId = group->institutionId;
    added->institutionName = group->institutionName;
    added->setSystemTag(group->getSystemTag());
    added->accounts = group->accounts;
    return operate(DataType::AccountGroup, EZvDataOperation::Add, added);
}

QString OtherDesk::modify(const QString& name, const std::function<void(CAccountGroup&)>& edit)
{
    const boost::shared_ptr<CAccountGroup> group = this->group(name);
    edit(*group);
    return operate(DataType::AccountGroup, EZvDataOperation::Modify, group);
}

QString OtherDesk::remove(const QString& name)
{
    return operate(DataType::AccountGroup, EZvDataOperation::Delete, group(name));
}

QString OtherDesk::configure(int groupId, const std::function<void(nvservice::CAccountGroupRCConfig&)>& edit)
{
    const service::Reply reply =
        m_engine->query(m_session, support::queryOf(DataType::GroupRiskConfig, std::to_string(groupId)));
    const auto config = reply.records.empty()
                            ? boost::shared_ptr<nvservice::CAccountGroupRCConfig>()
                            : boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(reply.records.front());
    if (!config) {
        qFatal("%s", reply.error.errorMsg().c_str());
    }
    edit(*config);
    return operate(DataType::GroupRiskConfig, EZvDataOperation::Modify, config);
}

QString OtherDesk::operate(int dataType, EZvDataOperation operation, const nvservice::IDataPtr& record)
{
    return WQ::sToQs(m_engine->operate(m_session, support::operationOn(dataType, operation, record)).error.errorMsg());
}

} // namespace tour
