// SPDX-License-Identifier: Apache-2.0
#include "service/engine/Requests.h"

#include "platform/wire/Protocol.h"
#include "service/engine/GroupScope.h"
#include "service/engine/Objections.h"
#include "service/engine/RecordDocument.h"
#include "service/engine/TextRules.h"

#include <utils/Translation.h>

#include <algorithm>

namespace service
{

namespace
{

using nvservice::EZvDataOperation;
using utils::EErrorCode;

/// Null for an unknown data type.
const DataHandler* findHandler(std::int32_t dataType)
{
    const std::vector<DataHandler>& all = dataHandlers();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [dataType](const DataHandler& handler) { return handler.dataType == dataType; });
    return found == all.end() ? nullptr : &*found;
}

struct FoundOperation {
    const DataHandler& handler;
    const DataHandler::Operation& operation;
};

FoundOperation requireOperation(std::int32_t dataType, EZvDataOperation operation)
{
    const DataHandler* const handler = findHandler(dataType);
    if (!handler || handler->operations.empty()) {
        throw Refusal(EErrorCode::Unsupported,
                      utils::filled(utils::text("service", "数据服务不支持修改数据类型 %1"), dataType));
    }
    for (const DataHandler::Operation& each : handler->operations) {
        if (each.operation == operation) {
            return {*handler, each};
        }
    }
    throw Refusal(EErrorCode::Unsupported, utils::text("service", "不支持的操作"));
}

} // namespace

bool isKnownDataType(std::int32_t dataType)
{
    return findHandler(dataType) != nullptr;
}

QueryAnswer answerQuery(const RequestContext& context, const nvservice::CKolmQueryDataReq& request)
{
    const DataHandler* const handler = findHandler(request.dataType);
    if (!handler || !handler->query) {
        throw Refusal(EErrorCode::Unsupported,
                      utils::filled(utils::text("service", "数据服务不支持查询数据类型 %1"), request.dataType));
    }
    return handler->query(context, request.queryKey);
}

std::string attemptKey(const SubSystem& server, const nvservice::COperateDataReq& request)
{
    // By the class of the record, because it may not match the data type.
    for (const DataHandler& handler : dataHandlers()) {
        if (!handler.operations.empty()) {
            const std::optional<std::int32_t> groupId = handler.groupOf(request.data.get(), request.operation);
            if (groupId) {
                return groupKey(server, *groupId);
            }
        }
    }
    return {};
}

bson::BSONObj checkRequest(const nvservice::COperateDataReq& request)
{
    const DataHandler& handler = requireOperation(request.dataType, request.operation).handler;
    if (request.operationId.size() > wire::MaxOperationIdBytes) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "操作编号过长"));
    }
    if (request.operationId.find('\0') != std::string::npos) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "操作编号中不能包含空字符"));
    }
    const std::string what = utils::text("service", handler.recordName);
    if (!handler.isReasonable(request.data.get())) {
        throw Refusal(EErrorCode::Malformed, utils::filled(utils::text("service", "请求中没有%1数据"), what));
    }
    bson::BSONObj document = readableDocument(*request.data, handler.recordName);
    if (hasNulCharacters(document)) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "%1中的文本不能包含空字符"), what));
    }
    return document;
}

AppliedChange applyOperation(const RequestContext& context, std::int32_t dataType, EZvDataOperation operation,
                             const nvservice::IData& sent)
{
    const DataHandler::Operation& found = requireOperation(dataType, operation).operation;
    if (!sent.getSystemTag().empty() && sent.getSystemTag() != context.server.systemTag) {
        throw Refusal(EErrorCode::OutOfScope,
                      utils::filled(utils::text("service", "账号组不属于分系统“%1”"), context.server.name));
    }
    if (found.right != 0) {
        require(context, [&] { requireRight(context.user, found.right, found.name); });
    }
    return found.apply(context, sent);
}

} // namespace service
