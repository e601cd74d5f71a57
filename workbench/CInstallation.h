// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ServerList.h"

#include <utils/NVError.h>

#include <QString>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace workbench
{

/// The amount of sample data in a new database.
struct SampleSize {
    int groups = 120;
    int accounts = 600;
};

/// The servers of the client centre: either those of an embedded data service, one per sub-system in a database file,
/// or servers on the network.
class CInstallation
{
public:
    CInstallation();
    /// Removes the servers from the client centre and closes the database.
    ~CInstallation();
    CInstallation(const CInstallation&) = delete;
    CInstallation& operator=(const CInstallation&) = delete;

    /// Counts the records of a new database; returns false to cancel.
    using Progress = std::function<bool(std::int64_t done, std::int64_t total)>;
    /// Opens the database and adds its servers to the client centre. One without servers is filled with sample data
    /// first, completely or not at all. A missing file is created, and removed again if that fails. Call it once, on
    /// any thread.
    utils::NVError open(const QString& file, const SampleSize& sampleSize, const Progress& progress = {});
    /// Adds servers on the network and starts to connect; their state shows whether they answer. Call it once, instead
    /// of open().
    utils::NVError connectTo(const std::vector<ServerSetting>& servers);

private:
    utils::NVError add(const std::string& name, const std::string& systemTag,
                       boost::shared_ptr<QAV::ITransport> transport);

    std::vector<std::string> m_servers;
};

} // namespace workbench
