#include "service/store/Documents.h"
#include "service/store/StoreError.h"

#include <nvservice/Codec.h>

namespace service
{

bson::BSONObj documentOf(const QByteArray& bytes)
{
    if (bytes.isEmpty())
        return {};
    const auto size = static_cast<std::size_t>(bytes.size());
    const utils::NVError error = nvservice::checkDocument(bytes.constData(), size);
    if (!error.isSuccess())
        throw StoreError(utils::EErrorCode::StorageFailure, "数据库中的记录已损坏：" + error.errorMsg());
    return bson::BSONObj(bytes.constData()).getOwned();
}

QByteArray bytesOf(const bson::BSONObj& document)
{
    return document.isEmpty() ? QByteArray() : QByteArray(document.objdata(), document.objsize());
}

} // namespace service
