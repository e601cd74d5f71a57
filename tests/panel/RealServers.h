// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/qav/CUnsteadyTransport.h"

#include "service/engine/DataEngine.h"
#include "service/sampledata/SampleData.h"

#include <QString>
#include <QTemporaryDir>

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

    service::Store& store() { return *m_store; }
    const std::vector<Server>& servers() const { return m_servers; }

private:
    QTemporaryDir m_folder;
    service::StorePtr m_store;
    std::vector<Server> m_servers;
};

} // namespace panel_test
