// SPDX-License-Identifier: Apache-2.0
#include "service/PagedQuery.h"

#include <stdexcept>

namespace testservice
{

std::string nextOf(const service::Reply& reply)
{
    const bson::BSONElement next = reply.document.getField("next");
    return next.eoo() ? std::string() : std::string(next.str());
}

std::vector<nvservice::IDataPtr> everyPage(service::DataEngine& engine, const service::SessionPtr& session,
                                           int dataType, nvservice::CQueryKey key, const std::function<void()>& between)
{
    std::vector<nvservice::IDataPtr> records;
    for (;;) {
        const service::Reply reply = query(engine, session, dataType, key.text());
        if (!reply.error.isSuccess()) {
            throw std::runtime_error(reply.error.errorMsg());
        }
        records.insert(records.end(), reply.records.begin(), reply.records.end());
        const std::string next = nextOf(reply);
        if (next.empty()) {
            return records;
        }
        key.set(nvservice::QueryCondition::Cursor, next);
        if (between) {
            between();
        }
    }
}

} // namespace testservice
