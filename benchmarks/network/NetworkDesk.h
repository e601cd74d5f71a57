// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/DaemonThread.h"
#include "support/tls/TestCertificates.h"

#include "service/engine/DataEngine.h"

#include <QAV/CNetworkTransport.h>
#include <nvservice/CKolmQueryDataReq.h>

#include <QString>

#include <memory>
#include <vector>

namespace bench
{

constexpr char User[] = "admin";
constexpr char Password[] = "admin123";

/// Throws the error, unless it is a success.
void require(const utils::NVError& error);

/// Makes a database of one server with sample data.
void makeDatabase(const QString& file, int groups, int accounts);
service::DataEnginePtr openEngine(const QString& file);

nvservice::CKolmQueryDataReq allGroups();

/// A daemon on a database, and a user who asks it over TLS on the loopback address.
class NetworkDesk
{
public:
    explicit NetworkDesk(const QString& file, support::TestCertificates& certificates);

    std::vector<nvservice::IDataPtr> queryAllGroups();

private:
    std::unique_ptr<testservice::DaemonThread> m_daemon;
    std::unique_ptr<QAV::CNetworkTransport> m_transport;
};

} // namespace bench
