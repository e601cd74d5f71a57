#pragma once

#include "ServerList.h"

#include <utils/NVError.h>

#include <QString>

#include <string>
#include <vector>

namespace workbench
{

/// How much data a new database gets.
struct SampleSize {
    int groups = 120;
    int accounts = 600;
};

/// The servers of the client centre: those of an embedded data service, which is a database file with one server per
/// sub-system in it, or those that are reached over the network.
class CInstallation
{
public:
    CInstallation();
    /// Takes the servers away from the client centre and closes the database.
    ~CInstallation();
    CInstallation(const CInstallation&) = delete;
    CInstallation& operator=(const CInstallation&) = delete;

    /// Opens the file and adds its servers to the client centre. A file that is missing is made, with sample data; one
    /// that could not be filled is removed again. To be called once.
    utils::NVError open(const QString& file, const SampleSize& sampleSize);
    /// Adds servers of the network; they are called up at once, and whether they answer is seen by their state. To be
    /// called once, instead of open().
    utils::NVError connectTo(const std::vector<ServerSetting>& servers);

private:
    utils::NVError add(const std::string& name, const std::string& systemTag,
                       boost::shared_ptr<QAV::ITransport> transport);

    std::vector<std::string> m_servers;
};

} // namespace workbench
