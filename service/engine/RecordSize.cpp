#include "service/engine/RecordSize.h"
#include "service/engine/Refusal.h"

#include <nvservice/Codec.h>

namespace service
{

bson::BSONObj documentToStore(const nvservice::IData& record, const char* what)
{
    bson::BSONObj document = nvservice::encodeRecord(record);
    if (document.isEmpty() || static_cast<std::size_t>(document.objsize()) > nvservice::MaxRecordBytes)
        throw Refusal(utils::EErrorCode::ResourceExhausted, std::string(what) + "数据过大，已被拒绝");
    return document;
}

} // namespace service
