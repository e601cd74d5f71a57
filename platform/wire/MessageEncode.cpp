// SPDX-License-Identifier: Apache-2.0
#include "MessageCodec.h"

#include "FieldNames.h"
#include "Protocol.h"

#include <nvservice/Codec.h>
#include <nvservice/Utf8.h>
#include <utils/Translation.h>

namespace wire
{

namespace
{

using bson::BSONObj;
using bson::BSONObjBuilder;

/// A message that has begun: its kind and, when it has one, its id.
class MessageBuilder : public BSONObjBuilder
{
public:
    explicit MessageBuilder(const char* type) { append(TypeField, type); }
    MessageBuilder(const char* type, std::int64_t id) : MessageBuilder(type)
    {
        append(IdField, static_cast<long long>(id));
    }

    void appendError(const utils::NVError& error)
    {
        append(CodeField, static_cast<int>(error.code()));
        append(TextField, nvservice::cutUtf8(error.errorMsg(), MaxTextBytes));
    }

    /// False when the message cannot be sent; it is then of no use.
    bool appendRecord(const char* name, const nvservice::IData& record)
    {
        constexpr std::size_t endBytes = 2; // of the record and of the message
        BSONObjBuilder nested(subobjStart(name));
        return nvservice::encodeRecord(record, nested) && static_cast<std::size_t>(len()) + endBytes <= MaxMessageBytes;
    }
};

BSONObj onlyId(const char* type, std::int64_t id)
{
    return MessageBuilder(type, id).obj();
}

} // namespace

BSONObj encode(const Hello& message)
{
    MessageBuilder builder(HelloType);
    builder.append(OldestProtocolField, message.oldestProtocol);
    builder.append(NewestProtocolField, message.newestProtocol);
    builder.append(SdkVersionField, message.sdkVersion);
    builder.append(ClientField, message.client);
    return builder.obj();
}

BSONObj encode(const Welcome& message)
{
    MessageBuilder builder(WelcomeType);
    builder.append(ProtocolField, message.protocol);
    builder.append(SdkVersionField, message.sdkVersion);
    builder.append(ServerNameField, message.serverName);
    builder.append(SystemTagField, message.systemTag);
    builder.append(KeepAliveField, message.keepAliveSeconds);
    return builder.obj();
}

BSONObj encode(const Refused& message)
{
    MessageBuilder builder(RefusedType);
    builder.appendError(message.error);
    builder.append(OldestProtocolField, message.oldestProtocol);
    builder.append(NewestProtocolField, message.newestProtocol);
    builder.append(SdkVersionField, message.sdkVersion);
    return builder.obj();
}

BSONObj encode(const LogIn& message)
{
    if (message.user.size() > MaxNameBytes || message.password.size() > MaxNameBytes) {
        return {};
    }
    MessageBuilder builder(LogInType, message.id);
    builder.append(UserField, message.user);
    builder.append(PasswordField, message.password);
    if (!message.language.empty()) {
        builder.append(LanguageField, message.language);
    }
    return builder.obj();
}

BSONObj encode(const LogInReply& message)
{
    MessageBuilder builder(LogInReplyType, message.id);
    builder.appendError(message.error);
    if (message.user) {
        builder.appendRecord(UserField, *message.user);
    }
    return builder.obj();
}

BSONObj encode(const Query& message)
{
    MessageBuilder builder(QueryType, message.id);
    if (!builder.appendRecord(RequestField, message.request)) {
        return {};
    }
    return builder.obj();
}

BSONObj encode(const Operate& message)
{
    MessageBuilder builder(OperateType, message.id);
    if (!message.request.data || !builder.appendRecord(RequestField, message.request)) {
        return {};
    }
    const BSONObj document = builder.obj();
    const BSONObj record = document.getObjectField(RequestField).getObjectField("data");
    return static_cast<std::size_t>(record.objsize()) <= MaxRecordBytes ? document : BSONObj();
}

BSONObj encode(const Cancel& message)
{
    return onlyId(CancelType, message.id);
}

BSONObj encode(const ReplyBegin& message)
{
    MessageBuilder builder(ReplyBeginType, message.id);
    builder.append(TotalCountField, message.totalCount);
    return builder.obj();
}

BSONObj encode(const ReplyEnd& message)
{
    MessageBuilder builder(ReplyEndType, message.id);
    const bool fits = static_cast<std::size_t>(message.document.objsize()) <= MaxRecordBytes;
    builder.appendError(
        fits ? message.error
             : utils::NVError(utils::EErrorCode::ResourceExhausted, utils::text("wire", "应答文档过大, 无法传输")));
    builder.append(RecordCountField, static_cast<long long>(message.recordCount));
    if (message.newId != 0) {
        builder.append(NewIdField, static_cast<long long>(message.newId));
    }
    if (fits && !message.document.isEmpty()) {
        builder.append(DocumentField, message.document);
    }
    return builder.obj();
}

BSONObj encode(const Listen& message)
{
    MessageBuilder builder(ListenType);
    if (!message.position.empty()) {
        builder.append(PositionField, message.position);
    }
    return builder.obj();
}

BSONObj encode(const Changed& message)
{
    MessageBuilder builder(ChangedType);
    builder.append(PositionField, message.position);
    builder.append(CompleteField, message.isComplete);
    bson::BSONArrayBuilder changes(builder.subarrayStart(ChangesField));
    for (const nvservice::CChangeInfoPtr& change : message.changes) {
        changes.append(nvservice::encodeRecord(*change));
    }
    changes.done();
    return builder.obj();
}

BSONObj encode(const Ping& message)
{
    return onlyId(PingType, message.id);
}

BSONObj encode(const Pong& message)
{
    return onlyId(PongType, message.id);
}

BSONObj encode(const Closing& message)
{
    MessageBuilder builder(ClosingType);
    builder.append(GraceField, message.graceMilliseconds);
    builder.append(TextField, nvservice::cutUtf8(message.text, MaxTextBytes));
    return builder.obj();
}

BSONObj encode(const Fault& message)
{
    MessageBuilder builder(FaultType);
    builder.appendError(message.error);
    return builder.obj();
}

} // namespace wire
