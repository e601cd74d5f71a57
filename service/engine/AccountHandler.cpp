// SPDX-License-Identifier: Apache-2.0
#include "service/engine/AccountRights.h"
#include "service/engine/DataHandler.h"

namespace service
{

Records queryAccounts(const RequestContext& context, const std::string&)
{
    Records records;
    for (const StoredAccount& account : readableAccounts(context)) {
        auto record = boost::make_shared<nvservice::CKolmAccountInfo>();
        record->account = account.info;
        record->stateCode = account.stateCode;
        record->excluded = account.excluded;
        record->setSystemTag(context.server.systemTag);
        records.push_back(record);
    }
    return records;
}

} // namespace service
