// SPDX-License-Identifier: Apache-2.0
#include "lookup/CLatestQuery.h"

#include <QAV/CKolmClientCenter.h>

#include <boost/make_shared.hpp>

namespace QAV
{

void CLatestQuery::send(const boost::shared_ptr<CKolmClient>& client, int dataType, const std::string& key,
                        Prepare prepare)
{
    const auto request = boost::make_shared<nvservice::CKolmQueryDataReq>();
    request->dataType = dataType;
    request->queryKey = key;
    const QueryCallback callback =
        [this, mailbox = m_mailbox.address(), number = ++m_number, prepare = std::move(prepare)](
            const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records, int, const bson::BSONObj&) {
            mailbox.post([this, number, take = prepare(error, records)] {
                if (number == m_number) {
                    take();
                }
            });
        };
    if (client) {
        client->queryData_async(request, callback);
    } else {
        utils::CSingletonT<CKolmClientCenter>::instance()->queryData_async(request, callback);
    }
}

} // namespace QAV
