#pragma once

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

/// The embedded data service: a database file, and one server per sub-system in it, each reached by the client centre.
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

private:
    std::vector<std::string> m_servers;
};

} // namespace workbench
