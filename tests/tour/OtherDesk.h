// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/DataEngine.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/EZvDataOperation.h>

#include <QString>

#include <functional>

namespace tour
{

/// Somebody else who works on the same data at the same time, at a client of his own.
class OtherDesk
{
public:
    /// Logs in on a server of the database.
    OtherDesk(const QString& databaseFile, const QString& server, const QString& user, const QString& password);

    /// The group as this desk sees it now.
    boost::shared_ptr<nvservice::CAccountGroup> group(const QString& name);
    /// Each answers what the service said: empty for success.
    QString add(const QString& name, const QString& accountsOf);
    QString modify(const QString& name, const std::function<void(nvservice::CAccountGroup&)>& edit);
    QString remove(const QString& name);
    QString configure(int groupId, const std::function<void(nvservice::CAccountGroupRCConfig&)>& edit);

private:
    QString operate(int dataType, nvservice::EZvDataOperation operation, const nvservice::IDataPtr& record);

    service::DataEnginePtr m_engine;
    service::SessionPtr m_session;
};

} // namespace tour
