// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/qav/CUnsteadyTransport.h"
#include "support/service/RealService.h"
#include "support/service/TestDatabase.h"

#include <QString>

#include <vector>

namespace panel_test
{

/// The switches of an installation that has every module.
QString moduleSwitches();

/// Handles events until `isReached`; false when that takes minutes, which is a failure of the code under test.
bool waitUntil(const std::function<bool()>& isReached);

/// The real data service with sample data: its servers are known to the client centre, each at the end of a bad line.
/// The administrator of the sample data is logged in.
class RealServers
{
public:
    struct Server {
        service::SubSystem subSystem;
        service::DataEnginePtr engine;
        boost::shared_ptr<support::CUnsteadyTransport> line;
    };

    explicit RealServers(const service::SampleOptions& sample);
    ~RealServers();

    service::Store& store() { return m_service->store(); }
    const std::vector<Server>& servers() const { return m_servers; }

private:
    support::TestDatabase m_database;
    std::optional<support::RealService> m_service;
    std::vector<Server> m_servers;
};

} // namespace panel_test
