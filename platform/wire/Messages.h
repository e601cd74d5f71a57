// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FrameReader.h"

#include <nvservice/Bson.h>
#include <nvservice/CChangeInfo.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/CUserInfo.h>
#include <nvservice/Codec.h>
#include <utils/NVError.h>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace wire
{

/// The messages; docs/wire-protocol.md specifies their sequence. The client chooses ids above 0, never twice on one
/// connection. An answer has the id of its request. Texts are UTF-8.

/// Client: the first message.
struct Hello {
    std::int32_t oldestProtocol = 0;
    std::int32_t newestProtocol = 0;
    std::string sdkVersion;
    std::string client; ///< program and version, for the server's log
};

/// Server: the client is accepted; it may log in.
struct Welcome {
    std::int32_t protocol = 0; ///< the version that both use from now on
    std::string sdkVersion;
    std::string serverName;
    std::string systemTag;
    /// Each side sends something at least this often, a ping if it has nothing else. A side that receives nothing for
    /// three times as long closes the connection.
    std::int32_t keepAliveSeconds = 0;
};

/// Server: the client is not accepted; the connection is closed afterwards.
struct Refused {
    utils::NVError error;
    std::int32_t oldestProtocol = 0;
    std::int32_t newestProtocol = 0;
    std::string sdkVersion;
};

struct LogIn {
    std::int64_t id = 0;
    std::string user;
    std::string password;
    std::string language = {}; ///< of the texts for the user, see utils::nameOf(); empty or unknown: as before
};

struct LogInReply {
    std::int64_t id = 0;
    utils::NVError error;
    boost::shared_ptr<nvservice::CUserInfo> user; ///< null exactly if the log-in was refused
};

struct Query {
    std::int64_t id = 0;
    nvservice::CKolmQueryDataReq request;
};

struct Operate {
    std::int64_t id = 0;
    nvservice::COperateDataReq request; ///< with a record, and an operation id of 1 to MaxOperationIdBytes bytes
};

/// Client: it no longer waits for the answer to `id`. The server ends the reply with `Cancelled`, unless it has ended
/// already. An operation that has begun is still carried out.
struct Cancel {
    std::int64_t id = 0;
};

/// Server: records of the answer to a query follow.
struct ReplyBegin {
    std::int64_t id = 0;
    std::int32_t totalCount = 0; ///< how many records the server holds for the query
};

/// Server: some records. Written by ReplyEncoder; read by records().
struct ReplyChunk {
    std::int64_t id = 0;
    Frame frame;
    std::size_t offset = 0; ///< of the records in the frame
    std::size_t bytes = 0;

    /// Appends the records. The error (Malformed, ResourceExhausted) is that of the first record that cannot be read.
    /// `decoder` is that of the whole answer; null if this chunk is read alone.
    utils::NVError records(std::vector<nvservice::IDataPtr>& out, nvservice::CRecordDecoder* decoder = nullptr) const;
};

/// Server: the last message of every answer to a query or operation; the only one if there are no records.
struct ReplyEnd {
    std::int64_t id = 0;
    utils::NVError error;
    std::int64_t recordCount = 0; ///< how many were sent in chunks
    bson::BSONObj document;       ///< owned, or empty
    std::int64_t newId = 0;       ///< of the record that an operation has added; 0 for all other requests
};

/// Client, from protocol 2 on: it wants to hear of changes, until the next log-in.
struct Listen {
    std::string position; ///< of the last `Changed` that it has got; empty: it wants what follows
};

/// Server, from protocol 2 on, to who has sent `Listen`: what the user may hear of and has not been told yet.
struct Changed {
    std::string position;                           ///< opaque; up to here the client knows everything
    bool isComplete = true;                         ///< false: anything may have changed, and there are no changes
    std::vector<nvservice::CChangeInfoPtr> changes; ///< at most one per group and data type: the latest
};

/// Either side; answered with a pong of the same id at once.
struct Ping {
    std::int64_t id = 0;
};

struct Pong {
    std::int64_t id = 0;
};

/// Server: it is about to stop. It answers the received requests, refuses new ones (`NotConnected`), and then closes
/// the connection, at the latest when the time is over.
struct Closing {
    std::int32_t graceMilliseconds = 0;
    std::string text; ///< why, for the user
};

/// Either side: an unreadable message that belongs to no request was received. The connection stays open.
struct Fault {
    utils::NVError error;
};

using Message = std::variant<Hello, Welcome, Refused, LogIn, LogInReply, Query, Operate, Cancel, ReplyBegin, ReplyChunk,
                             ReplyEnd, Listen, Changed, Ping, Pong, Closing, Fault>;

} // namespace wire
