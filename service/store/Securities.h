// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Connection.h"
#include "service/store/Store.h"

#include <nvservice/CCategoryInfo.h>
#include <nvservice/CSecurityInfo.h>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <vector>

namespace service
{

/// All categories of the server in the order of their ids.
std::vector<boost::shared_ptr<nvservice::CCategoryInfo>> loadCategories(Connection& connection,
                                                                        const SubSystem& server);

/// Looks up single categories with one prepared statement.
class CategoryFinder
{
public:
    CategoryFinder(Connection& connection, const SubSystem& server);
    std::optional<nvservice::CCategoryInfo> find(std::int64_t categoryId);

private:
    const SubSystem& m_server;
    Query m_query;
};

/// The securities of the server by market and code: all, or those of a trade type and those of any type.
std::vector<boost::shared_ptr<nvservice::CSecurityInfo>> loadSecurities(Connection& connection, const SubSystem& server,
                                                                        std::optional<std::int64_t> traderType);

/// Writes categories and securities in the caller's transaction, with prepared statements. An existing record (by id,
/// or by market and code) takes the new values. Write a category after its parent.
class SecurityWriter
{
public:
    SecurityWriter(Connection& connection, const SubSystem& server);
    void put(const nvservice::CCategoryInfo& category);
    void put(const nvservice::CSecurityInfo& security);

private:
    std::int64_t m_server;
    Query m_putCategory;
    Query m_putSecurity;
};

} // namespace service
