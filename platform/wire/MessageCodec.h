// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Messages.h"

#include <string_view>

namespace wire
{

/// Encodes and decodes messages. All functions may be called from any thread.

/// @name Encoding
/// The message as an owned document, whose bytes (`objdata()`, `objsize()`) are sent as they are.
///@{
bson::BSONObj encode(const Hello& message);
bson::BSONObj encode(const Welcome& message);
bson::BSONObj encode(const Refused& message);
/// Empty if user or password exceeds MaxNameBytes.
bson::BSONObj encode(const LogIn& message);
bson::BSONObj encode(const LogInReply& message);
/// Empty if it exceeds MaxMessageBytes.
bson::BSONObj encode(const Query& message);
/// Empty if the record is missing, of an unknown class or larger than MaxRecordBytes, or if the message exceeds
/// MaxMessageBytes.
bson::BSONObj encode(const Operate& message);
bson::BSONObj encode(const Cancel& message);
bson::BSONObj encode(const ReplyBegin& message);
/// A document larger than MaxRecordBytes is left out, and the error becomes `ResourceExhausted`.
bson::BSONObj encode(const ReplyEnd& message);
bson::BSONObj encode(const Listen& message);
bson::BSONObj encode(const Changed& message);
bson::BSONObj encode(const Ping& message);
bson::BSONObj encode(const Pong& message);
bson::BSONObj encode(const Closing& message);
bson::BSONObj encode(const Fault& message);
///@}

/// Checks the frame against the limits, without recursion and before the BSON classes read it, and decodes the message.
/// Errors: Malformed (invalid shape, or a field that is missing, of the wrong type or out of range), ResourceExhausted
/// (a limit), Unsupported (an unknown kind of message). `out` is then unchanged, and the connection can stay open.
/// Unknown fields are ignored.
utils::NVError decode(Frame frame, const nvservice::DocumentLimits& limits, Message& out);

/// The id of a frame that decode() refused, so that the right request can be answered; 0 if there is none. Safe for
/// untrusted bytes; reads no further than the id, which follows the kind at the beginning.
std::int64_t idOf(const Frame& frame);

/// The kind of message (`FieldNames.h`) that an undecoded frame claims to be; empty if there is none. Safe for
/// untrusted bytes. Points into the frame.
std::string_view kindOf(const Frame& frame);

} // namespace wire
