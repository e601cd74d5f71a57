// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/DataEngine.h"
#include "service/sampledata/SampleData.h"

#include <string>
#include <vector>

namespace support
{

/// Opens the store in a database; throws what is wrong.
service::StorePtr openStore(const QString& location, service::StoreOptions options = {});
/// Fills a new database with sample data; throws what is wrong.
void makeSampleDatabase(const QString& location, const service::SampleOptions& options);

/// The real data service on a database: its store, and an engine for each of its servers.
class RealService
{
public:
    explicit RealService(const QString& location, const service::StoreOptions& options = {},
                         const service::RefusedAttempts::Limits& refusals = {});

    service::Store& store() const { return *m_store; }
    const service::StorePtr& storePtr() const { return m_store; }
    const std::vector<service::SubSystem>& servers() const { return m_servers; }
    const service::SubSystem& server(int index) const { return m_servers.at(static_cast<std::size_t>(index)); }
    const std::vector<service::DataEnginePtr>& engines() const { return m_engines; }
    service::DataEngine& engine(std::size_t index = 0) const { return *m_engines.at(index); }

    /// The first value of the first row; -1 and "(no row)" without one.
    std::int64_t number(const QString& sql) const;
    std::string text(const QString& sql) const;
    /// The first column of all rows, with commas between them.
    std::string column(const QString& sql) const;
    void exec(const QString& sql) const;

private:
    service::StorePtr m_store;
    std::vector<service::SubSystem> m_servers;
    std::vector<service::DataEnginePtr> m_engines;
};

} // namespace support
