// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/ServiceFixture.h"

#include <nvservice/CQueryKey.h>
#include <nvservice/QueryCondition.h>

#include <functional>

namespace testservice
{

/// The cursor of the next page; empty after the last one.
std::string nextOf(const service::Reply& reply);

/// Asks for page after page and returns the records of all. Calls `between` after each page. Throws what is refused.
std::vector<nvservice::IDataPtr> everyPage(service::DataEngine& engine, const service::SessionPtr& session,
                                           int dataType, nvservice::CQueryKey key,
                                           const std::function<void()>& between = {});

/// The records as a class.
template <typename Record>
std::vector<boost::shared_ptr<Record>> recordsAs(const std::vector<nvservice::IDataPtr>& records)
{
    std::vector<boost::shared_ptr<Record>> cast;
    for (const nvservice::IDataPtr& record : records) {
        cast.push_back(boost::dynamic_pointer_cast<Record>(record));
        if (!cast.back()) {
            throw std::runtime_error(record->typeName());
        }
    }
    return cast;
}

} // namespace testservice
