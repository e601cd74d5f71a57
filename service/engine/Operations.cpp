#include "service/engine/Operations.h"
#include "service/engine/GroupRules.h"
#include "service/engine/RecordSize.h"
#include "service/engine/Refusal.h"
#include "service/engine/RiskConfigRules.h"
#include "service/engine/TextRules.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>

namespace service
{

namespace
{

using nvservice::CAccountGroup;
using nvservice::CAccountGroupRCConfig;
using nvservice::CustomEmailRC;
using nvservice::EZvDataOperation;
using utils::EErrorCode;

namespace DataType = nvservice::DataType;

constexpr std::size_t MaxOperationIdBytes = 128;

void requireSupported(std::int32_t dataType, EZvDataOperation operation)
{
    const bool isModify = operation == EZvDataOperation::Modify;
    const bool isDelete = operation == EZvDataOperation::Delete;
    switch (dataType) {
    case DataType::AccountGroup:
        if (isModify || isDelete || operation == EZvDataOperation::Add)
            return;
        break;
    case DataType::GroupRiskConfig:
        if (isModify)
            return;
        break;
    case DataType::EmailRule:
        if (isModify || isDelete)
            return;
        break;
    default:
        throw Refusal(EErrorCode::Unsupported, "数据服务不支持修改数据类型 " + std::to_string(dataType));
    }
    throw Refusal(EErrorCode::Unsupported, "不支持的操作");
}

template <typename Record>
const Record& requireRecord(const nvservice::COperateDataReq& request, const char* what)
{
    const auto* record = dynamic_cast<const Record*>(request.data.get());
    if (!record)
        throw Refusal(EErrorCode::Malformed, std::string("请求中没有") + what + "数据");
    return *record;
}

const CAccountGroup& requireGroup(const nvservice::COperateDataReq& request)
{
    return requireRecord<CAccountGroup>(request, "账号组");
}

const CAccountGroupRCConfig& requireConfig(const nvservice::COperateDataReq& request)
{
    return requireRecord<CAccountGroupRCConfig>(request, "风控配置");
}

const CustomEmailRC& requireEmailRules(const nvservice::COperateDataReq& request)
{
    return requireRecord<CustomEmailRC>(request, "邮件规则");
}

bson::BSONObj encoded(const nvservice::IData& record, const char* what)
{
    bson::BSONObj document = documentToStore(record, what);
    const utils::NVError error =
        nvservice::checkDocument(document.objdata(), static_cast<std::size_t>(document.objsize()));
    if (!error.isSuccess()) {
        throw Refusal(error.code(), std::string(what) + "数据无效：" + error.errorMsg());
    }
    if (hasNulCharacters(document))
        throw Refusal(EErrorCode::InvalidValue, std::string(what) + "中的文本不能包含空字符");
    return document;
}

} // namespace

std::string attemptKey(const SubSystem& server, const nvservice::COperateDataReq& request)
{
    const auto* const record = request.data.get();
    if (const auto* group = dynamic_cast<const CAccountGroup*>(record))
        return riskConfigKey(server,
                             request.operation == EZvDataOperation::Add ? CAccountGroup().groupId : group->groupId);
    if (const auto* config = dynamic_cast<const CAccountGroupRCConfig*>(record))
        return riskConfigKey(server, config->groupId);
    if (const auto* rules = dynamic_cast<const CustomEmailRC*>(record)) {
        const std::optional<std::int32_t> groupId = groupOfEmailRules(*rules);
        return groupId ? riskConfigKey(server, *groupId) : std::string();
    }
    return {};
}

bson::BSONObj checkRequest(const nvservice::COperateDataReq& request)
{
    requireSupported(request.dataType, request.operation);
    if (request.operationId.size() > MaxOperationIdBytes)
        throw Refusal(EErrorCode::InvalidValue, "操作编号过长");
    if (request.operationId.find('\0') != std::string::npos)
        throw Refusal(EErrorCode::InvalidValue, "操作编号中不能包含空字符");
    if (request.dataType == DataType::GroupRiskConfig) {
        const CAccountGroupRCConfig& config = requireConfig(request);
        requireReasonableSize(config);
        return encoded(config, "风控配置");
    }
    if (request.dataType == DataType::EmailRule) {
        const CustomEmailRC& rules = requireEmailRules(request);
        requireReasonableSize(rules.emailRCs);
        return encoded(rules, "邮件规则");
    }
    const CAccountGroup& group = requireGroup(request);
    requireReasonableSize(group);
    return encoded(group, "账号组");
}

AppliedChange applyOperation(const OperationContext& context, const nvservice::COperateDataReq& request)
{
    switch (request.dataType) {
    case DataType::GroupRiskConfig:
        return modifyRiskConfig(context, requireConfig(request));
    case DataType::EmailRule:
        return applyEmailOperation(context, request.operation, requireEmailRules(request));
    default:
        return applyGroupOperation(context.connection, context.server, context.user, request.operation,
                                   requireGroup(request), context.now);
    }
}

} // namespace service
