// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>

namespace wire
{

/// The names of elements and message kinds, see docs/wire-protocol.md.

constexpr char TypeField[] = "type"; ///< the first element of every message
constexpr char IdField[] = "id";     ///< the second element of messages with an id

constexpr char HelloType[] = "hello";
constexpr char WelcomeType[] = "welcome";
constexpr char RefusedType[] = "refused";
constexpr char LogInType[] = "logIn";
constexpr char LogInReplyType[] = "logInReply";
constexpr char QueryType[] = "query";
constexpr char OperateType[] = "operate";
constexpr char CancelType[] = "cancel";
constexpr char ReplyBeginType[] = "replyBegin";
constexpr char ReplyChunkType[] = "replyChunk";
constexpr char ReplyEndType[] = "replyEnd";
constexpr char ListenType[] = "listen";
constexpr char ChangedType[] = "changed";
constexpr char PingType[] = "ping";
constexpr char PongType[] = "pong";
constexpr char ClosingType[] = "closing";
constexpr char FaultType[] = "fault";

constexpr char OldestProtocolField[] = "oldestProtocol";
constexpr char NewestProtocolField[] = "newestProtocol";
constexpr char ProtocolField[] = "protocol";
constexpr char SdkVersionField[] = "sdkVersion";
constexpr char ClientField[] = "client";
constexpr char ServerNameField[] = "serverName";
constexpr char SystemTagField[] = "systemTag";
constexpr char KeepAliveField[] = "keepAliveSeconds";
constexpr char UserField[] = "user";
constexpr char PasswordField[] = "password";
constexpr char LanguageField[] = "language";
constexpr char RequestField[] = "request";
constexpr char CodeField[] = "code";
constexpr char TextField[] = "text";
constexpr char TotalCountField[] = "totalCount";
constexpr char RecordsField[] = "records";
constexpr char RecordCountField[] = "recordCount";
constexpr char NewIdField[] = "newId";
constexpr char DocumentField[] = "document";
constexpr char PositionField[] = "position";
constexpr char CompleteField[] = "complete";
constexpr char ChangesField[] = "changes";
constexpr char GraceField[] = "graceMilliseconds";

/// The subtype of binary data that contain the documents of records, one after another.
constexpr bson::BinDataType RecordsSubtype = bson::bdtCustom;

} // namespace wire
