#pragma once

#include "Messages.h"

#include <string_view>

namespace wire
{

/// Messages to bytes and back. All functions may be called from any thread.

/// @name Encoding
/// The message as an owned document, whose bytes (`objdata()`, `objsize()`) are what goes over the wire.
///@{
bson::BSONObj encode(const Hello& message);
bson::BSONObj encode(const Welcome& message);
bson::BSONObj encode(const Refused& message);
/// Empty when user or password is beyond MaxNameBytes.
bson::BSONObj encode(const LogIn& message);
bson::BSONObj encode(const LogInReply& message);
/// Empty when it is beyond MaxMessageBytes.
bson::BSONObj encode(const Query& message);
/// Empty when there is no record, or one of an unknown class, or one beyond MaxRecordBytes, or when the message is
/// beyond MaxMessageBytes.
bson::BSONObj encode(const Operate& message);
bson::BSONObj encode(const Cancel& message);
bson::BSONObj encode(const ReplyBegin& message);
/// A document beyond MaxRecordBytes is left out and the error becomes `ResourceExhausted`.
bson::BSONObj encode(const ReplyEnd& message);
bson::BSONObj encode(const Ping& message);
bson::BSONObj encode(const Pong& message);
bson::BSONObj encode(const Closing& message);
bson::BSONObj encode(const Fault& message);
///@}

/// Checks the frame against the limits, without recursion and before the document classes touch it, and reads the
/// message. The error is Malformed (shape, or a field that is absent, of the wrong type or out of range),
/// ResourceExhausted (a limit) or Unsupported (a kind of message that this side does not know); `out` is then
/// untouched. None of them costs the connection. Fields that this side does not know are passed over.
utils::NVError decode(Frame frame, const nvservice::DocumentLimits& limits, Message& out);

/// The id of a frame that decode() refused, so that exactly the request that it belongs to is answered: 0 when it has
/// none. Trusts nothing and reads no further than the id, which stands behind the kind at the beginning.
std::int64_t idOf(const Frame& frame);

/// The kind of message (`FieldNames.h`) that a frame claims to be before anybody has decoded it; empty when it claims
/// nothing. Trusts nothing either; points into the frame.
std::string_view kindOf(const Frame& frame);

} // namespace wire
