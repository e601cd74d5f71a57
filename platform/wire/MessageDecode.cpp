// SPDX-License-Identifier: Apache-2.0
#include "MessageCodec.h"

#include "FieldNames.h"
#include "FieldReader.h"
#include "Protocol.h"

#include <nvservice/Codec.h>
#include <utils/Translation.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace wire
{

namespace
{

using bson::LengthBytes;
using bson::ShortestDocument;
using nvservice::readLittleEndian;
using utils::EErrorCode;
using utils::NVError;

constexpr char StringType = '\x02';
constexpr char Int32Type = '\x10';
constexpr char Int64Type = '\x12';

void readId(FieldReader& fields, std::int64_t& id)
{
    fields.number(IdField, id, 1);
}

/// Null, with an error in `fields`, unless the element is a record of this class.
template <typename Record>
boost::shared_ptr<Record> recordOf(FieldReader& fields, const bson::BSONElement& element, const char* name)
{
    if (element.type() != bson::Object) {
        fields.refuse(name);
    }
    if (!fields.isGood()) {
        return nullptr;
    }
    const bson::BSONObj document = element.embeddedObject();
    nvservice::IDataPtr record;
    const NVError error = nvservice::decodeRecord(document, record);
    if (!error.isSuccess()) {
        fields.refuse(error);
        return nullptr;
    }
    const auto typed = boost::dynamic_pointer_cast<Record>(record);
    if (!typed) {
        fields.refuse(name);
    }
    return typed;
}

template <typename Record>
boost::shared_ptr<Record> readRecord(FieldReader& fields, const char* name)
{
    return recordOf<Record>(fields, fields.optional(name), name);
}

Message readHello(FieldReader& fields, Frame&)
{
    Hello message;
    fields.number(OldestProtocolField, message.oldestProtocol, 0);
    fields.number(NewestProtocolField, message.newestProtocol, message.oldestProtocol);
    fields.text(SdkVersionField, message.sdkVersion, MaxNameBytes);
    fields.text(ClientField, message.client, MaxNameBytes);
    return message;
}

Message readWelcome(FieldReader& fields, Frame&)
{
    Welcome message;
    fields.number(ProtocolField, message.protocol, 0);
    fields.text(SdkVersionField, message.sdkVersion, MaxNameBytes);
    fields.text(ServerNameField, message.serverName, MaxNameBytes);
    fields.text(SystemTagField, message.systemTag, MaxNameBytes);
    fields.number(KeepAliveField, message.keepAliveSeconds, 1);
    return message;
}

Message readRefused(FieldReader& fields, Frame&)
{
    Refused message;
    fields.error(message.error);
    fields.number(OldestProtocolField, message.oldestProtocol, 0);
    fields.number(NewestProtocolField, message.newestProtocol, 0);
    fields.text(SdkVersionField, message.sdkVersion, MaxNameBytes);
    if (fields.isGood() && message.error.isSuccess()) {
        fields.refuse(CodeField);
    }
    return message;
}

Message readLogIn(FieldReader& fields, Frame&)
{
    LogIn message;
    readId(fields, message.id);
    fields.text(UserField, message.user, MaxNameBytes);
    fields.text(PasswordField, message.password, MaxNameBytes);
    if (!fields.optional(LanguageField).eoo()) {
        fields.text(LanguageField, message.language, MaxNameBytes);
    }
    return message;
}

Message readLogInReply(FieldReader& fields, Frame&)
{
    LogInReply message;
    readId(fields, message.id);
    fields.error(message.error);
    if (fields.isGood() && message.error.isSuccess()) {
        message.user = readRecord<nvservice::CUserInfo>(fields, UserField);
    }
    return message;
}

Message readQuery(FieldReader& fields, Frame&)
{
    Query message;
    readId(fields, message.id);
    if (const auto request = readRecord<nvservice::CKolmQueryDataReq>(fields, RequestField)) {
        message.request = std::move(*request);
    }
    return message;
}

Message readOperate(FieldReader& fields, Frame&)
{
    Operate message;
    readId(fields, message.id);
    if (const auto request = readRecord<nvservice::COperateDataReq>(fields, RequestField)) {
        if (!request->data || request->operationId.empty() || request->operationId.size() > MaxOperationIdBytes) {
            fields.refuse(RequestField);
        }
        message.request = std::move(*request);
    }
    return message;
}

template <typename OnlyId>
Message readOnlyId(FieldReader& fields, Frame&)
{
    OnlyId message;
    readId(fields, message.id);
    return message;
}

Message readReplyBegin(FieldReader& fields, Frame&)
{
    ReplyBegin message;
    readId(fields, message.id);
    fields.number(TotalCountField, message.totalCount, 0);
    return message;
}

Message readReplyChunk(FieldReader& fields, Frame& frame)
{
    ReplyChunk message;
    readId(fields, message.id);
    const bson::BSONElement records = fields.optional(RecordsField);
    if (records.type() != bson::BinData || records.binDataType() != RecordsSubtype) {
        fields.refuse(RecordsField);
    }
    if (!fields.isGood()) {
        return message;
    }
    const std::string_view bytes = records.binData();
    message.offset = static_cast<std::size_t>(bytes.data() - frame.data());
    message.bytes = bytes.size();
    message.frame = std::move(frame); // long enough that the bytes stay where they are
    return message;
}

Message readReplyEnd(FieldReader& fields, Frame&)
{
    ReplyEnd message;
    readId(fields, message.id);
    fields.error(message.error);
    fields.number(RecordCountField, message.recordCount, 0);
    if (!fields.optional(NewIdField).eoo()) {
        fields.number(NewIdField, message.newId, 1);
    }
    if (!fields.optional(DocumentField).eoo()) {
        message.document = fields.document(DocumentField).getOwned();
    }
    return message;
}

Message readListen(FieldReader& fields, Frame&)
{
    Listen message;
    if (!fields.optional(PositionField).eoo()) {
        fields.text(PositionField, message.position, MaxNameBytes);
    }
    return message;
}

Message readChanged(FieldReader& fields, Frame&)
{
    Changed message;
    fields.text(PositionField, message.position, MaxNameBytes);
    const bson::BSONElement complete = fields.optional(CompleteField);
    const bson::BSONElement changes = fields.optional(ChangesField);
    if (complete.type() != bson::Bool || changes.type() != bson::Array) {
        fields.refuse(complete.type() == bson::Bool ? ChangesField : CompleteField);
        return message;
    }
    message.isComplete = complete.boolean();
    for (bson::BSONObjIterator it(changes.embeddedObject()); it.more() && fields.isGood();) {
        if (const auto change = recordOf<nvservice::CChangeInfo>(fields, it.next(), ChangesField)) {
            message.changes.push_back(change);
        }
    }
    if (!message.isComplete && !message.changes.empty()) {
        fields.refuse(ChangesField);
    }
    return message;
}

Message readClosing(FieldReader& fields, Frame&)
{
    Closing message;
    fields.number(GraceField, message.graceMilliseconds, 0);
    fields.text(TextField, message.text, MaxTextBytes);
    return message;
}

Message readFault(FieldReader& fields, Frame&)
{
    Fault message;
    fields.error(message.error);
    if (fields.isGood() && message.error.isSuccess()) {
        fields.refuse(CodeField);
    }
    return message;
}

struct Kind {
    const char* type;
    Message (*read)(FieldReader&, Frame&);
};

constexpr std::array<Kind, std::variant_size_v<Message>> kinds{{
    {ListenType, &readListen},
    {ChangedType, &readChanged},
    {ReplyChunkType, &readReplyChunk},
    {ReplyBeginType, &readReplyBegin},
    {ReplyEndType, &readReplyEnd},
    {QueryType, &readQuery},
    {OperateType, &readOperate},
    {CancelType, &readOnlyId<Cancel>},
    {PingType, &readOnlyId<Ping>},
    {PongType, &readOnlyId<Pong>},
    {HelloType, &readHello},
    {WelcomeType, &readWelcome},
    {RefusedType, &readRefused},
    {LogInType, &readLogIn},
    {LogInReplyType, &readLogInReply},
    {ClosingType, &readClosing},
    {FaultType, &readFault},
}};

/// Passes over `expected` at the beginning of `rest`.
bool skip(std::string_view& rest, std::string_view expected)
{
    if (rest.substr(0, expected.size()) != expected) {
        return false;
    }
    rest.remove_prefix(expected.size());
    return true;
}

/// Passes over the length of a frame and the kind of its message.
bool skipKind(std::string_view& rest, std::string_view& kind)
{
    rest.remove_prefix(std::min(rest.size(), LengthBytes));
    // The names with the zeros that end them.
    if (!skip(rest, {&StringType, 1}) || !skip(rest, {TypeField, sizeof TypeField}) || rest.size() < LengthBytes) {
        return false;
    }
    const std::int64_t length = readLittleEndian<std::int32_t>(rest.data());
    rest.remove_prefix(LengthBytes);
    if (length < 1 || static_cast<std::size_t>(length) > rest.size()) {
        return false;
    }
    kind = rest.substr(0, static_cast<std::size_t>(length) - 1);
    rest.remove_prefix(static_cast<std::size_t>(length));
    return true;
}

} // namespace

NVError decode(Frame frame, const nvservice::DocumentLimits& limits, Message& out)
{
    const NVError shape = nvservice::checkDocument(frame.data(), frame.size(), limits);
    if (!shape.isSuccess()) {
        return shape;
    }
    const bson::BSONObj document(frame.data(), frame.size());
    const bson::BSONElement type = document.firstElement();
    if (type.type() != bson::String || type.fieldName() != TypeField) {
        return {EErrorCode::Malformed, utils::text("wire", "通信数据格式错误: 缺少消息类型")};
    }
    const auto kind = std::find_if(kinds.begin(), kinds.end(),
                                   [&type](const Kind& candidate) { return type.str() == candidate.type; });
    if (kind == kinds.end()) {
        return {EErrorCode::Unsupported, utils::text("wire", UnknownKindText)};
    }
    FieldReader fields(document);
    Message message = kind->read(fields, frame);
    if (fields.isGood()) {
        out = std::move(message);
    }
    return fields.error();
}

std::int64_t idOf(const Frame& frame)
{
    std::string_view rest(frame);
    std::string_view kind;
    if (!skipKind(rest, kind)) {
        return 0;
    }
    const char type = rest.empty() ? '\0' : rest.front();
    rest.remove_prefix(std::min<std::size_t>(rest.size(), 1));
    if (!skip(rest, {IdField, sizeof IdField})) {
        return 0;
    }
    std::int64_t id = 0;
    if (type == Int64Type && rest.size() >= sizeof(std::int64_t)) {
        id = readLittleEndian<std::int64_t>(rest.data());
    } else if (type == Int32Type && rest.size() >= sizeof(std::int32_t)) {
        id = readLittleEndian<std::int32_t>(rest.data());
    }
    return std::max<std::int64_t>(id, 0);
}

std::string_view kindOf(const Frame& frame)
{
    std::string_view rest(frame);
    std::string_view kind;
    return skipKind(rest, kind) ? kind : std::string_view();
}

NVError ReplyChunk::records(std::vector<nvservice::IDataPtr>& out, nvservice::CRecordDecoder* decoder) const
{
    if (!decoder) {
        nvservice::CRecordDecoder own;
        return records(out, &own);
    }
    const char* at = frame.data() + offset;
    std::size_t left = bytes;
    while (left > 0) {
        if (left < ShortestDocument) {
            return {EErrorCode::Malformed, utils::text("wire", "通信数据格式错误: 记录不完整")};
        }
        const std::int64_t length = readLittleEndian<std::int32_t>(at);
        if (length < static_cast<std::int64_t>(ShortestDocument) || static_cast<std::size_t>(length) > left) {
            return {EErrorCode::Malformed, utils::text("wire", "通信数据格式错误: 记录长度无效")};
        }
        nvservice::IDataPtr record;
        const NVError error = decoder->decode(at, static_cast<std::size_t>(length), record);
        if (!error.isSuccess()) {
            return error;
        }
        out.push_back(std::move(record));
        at += length;
        left -= static_cast<std::size_t>(length);
    }
    return {};
}

} // namespace wire
