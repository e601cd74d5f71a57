// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/ServerData.h"

#include <nvservice/CCategoryInfo.h>
#include <nvservice/CSecurityInfo.h>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <vector>

namespace service
{

/// All categories of the server in the order of their ids.
std::vector<boost::shared_ptr<nvservice::CCategoryInfo>> loadCategories(const ServerData& data);
std::optional<nvservice::CCategoryInfo> findCategory(const ServerData& data, std::int64_t categoryId);

/// The securities of the server by market and code: all, or those of a trade type and those of any type.
std::vector<boost::shared_ptr<nvservice::CSecurityInfo>> loadSecurities(const ServerData& data,
                                                                        std::optional<std::int64_t> traderType);

// These write in the caller's transaction. An existing record (by id, or by market and code) takes the new values.

/// Write a category after its parent.
void putCategory(const ServerData& data, const nvservice::CCategoryInfo& category);
void putSecurity(const ServerData& data, const nvservice::CSecurityInfo& security);

} // namespace service
