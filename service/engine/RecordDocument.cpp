// SPDX-License-Identifier: Apache-2.0
#include "service/engine/RecordDocument.h"
#include "service/engine/Refusal.h"

#include <nvservice/Codec.h>
#include <utils/Translation.h>

namespace service
{

bson::BSONObj documentToStore(const nvservice::IData& record, const std::string& what)
{
    bson::BSONObj document = nvservice::encodeRecord(record);
    if (document.isEmpty() || static_cast<std::size_t>(document.objsize()) > nvservice::MaxRecordBytes) {
        throw Refusal(utils::EErrorCode::ResourceExhausted,
                      utils::filled(utils::text("service", "%1数据过大，已被拒绝"), what));
    }
    return document;
}

bson::BSONObj readableDocument(const nvservice::IData& record, const std::string& what)
{
    bson::BSONObj document = documentToStore(record, what);
    const utils::NVError error =
        nvservice::checkDocument(document.objdata(), static_cast<std::size_t>(document.objsize()));
    if (!error.isSuccess()) {
        throw Refusal(error.code(), utils::filled(utils::text("service", "%1数据无效：%2"), what, error.errorMsg()));
    }
    return document;
}

} // namespace service
