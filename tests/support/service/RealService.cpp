// SPDX-License-Identifier: Apache-2.0
#include "support/service/RealService.h"

#include "service/store/Connection.h"
#include "service/store/Query.h"

#include <boost/make_shared.hpp>

#include <stdexcept>

namespace support
{

namespace
{

void require(const utils::NVError& error)
{
    if (!error.isSuccess()) {
        throw std::runtime_error(error.errorMsg());
    }
}

} // namespace

service::StorePtr openStore(const QString& location, service::StoreOptions options)
{
    options.location = location;
    utils::NVError error;
    service::StorePtr store = service::Store::open(options, error);
    require(error);
    return store;
}

void makeSampleDatabase(const QString& location, const service::SampleOptions& options)
{
    const auto creating = service::StoreOptions::forCreating(location);
    require(service::generateSampleData(*openStore(location, creating), options));
}

RealService::RealService(const QString& location, const service::StoreOptions& options,
                         const service::RefusedAttempts::Limits& refusals)
    : m_store(openStore(location, options))
{
    utils::NVError error;
    m_servers = m_store->subSystems(error);
    require(error);
    for (const service::SubSystem& server : m_servers) {
        m_engines.push_back(boost::make_shared<service::DataEngine>(m_store, server, refusals));
    }
}

std::int64_t RealService::number(const QString& sql) const
{
    service::Query query(m_store->connection(), sql);
    return query.runAndNext() ? query.integer(0) : -1;
}

std::string RealService::text(const QString& sql) const
{
    service::Query query(m_store->connection(), sql);
    return query.runAndNext() ? query.text(0) : std::string("(no row)");
}

std::string RealService::column(const QString& sql) const
{
    std::string values;
    service::Query query(m_store->connection(), sql);
    for (query.run(); query.next();) {
        values += (values.empty() ? "" : ",") + query.text(0);
    }
    return values;
}

void RealService::exec(const QString& sql) const
{
    m_store->connection().exec(sql);
}

} // namespace support
