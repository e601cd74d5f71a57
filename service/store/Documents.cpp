// SPDX-License-Identifier: Apache-2.0
#include "service/store/Documents.h"
#include "service/store/StoreError.h"

#include <nvservice/Codec.h>
#include <utils/Translation.h>

namespace service
{

bson::BSONObj documentOf(const QByteArray& bytes)
{
    if (bytes.isEmpty()) {
        return {};
    }
    bson::BSONObj document;
    const utils::NVError error =
        nvservice::repairDocument(bytes.constData(), static_cast<std::size_t>(bytes.size()), document);
    if (!error.isSuccess()) {
        throw StoreError(utils::EErrorCode::StorageFailure,
                         utils::filled(utils::text("service", "数据库中的记录已损坏：%1"), error.errorMsg()));
    }
    return document;
}

QByteArray bytesOf(const bson::BSONObj& document)
{
    return document.isEmpty() ? QByteArray() : QByteArray(document.objdata(), document.objsize());
}

} // namespace service
