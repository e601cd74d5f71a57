#pragma once

#include "FrameReader.h"

#include <nvservice/Bson.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/CUserInfo.h>
#include <utils/NVError.h>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace wire
{

/// The messages. An id is chosen by the client, above 0 and never twice on one connection; answers carry the id of
/// what they answer. Texts are UTF-8. Which message comes when is told in docs/wire-protocol.md.

/// Client, first of all.
struct Hello {
    std::int32_t oldestProtocol = 0;
    std::int32_t newestProtocol = 0;
    std::string sdkVersion;
    std::string client; ///< program and version, for the server's log
};

/// Server: the client is accepted; it may log in.
struct Welcome {
    std::int32_t protocol = 0; ///< the one that both speak from now on
    std::string sdkVersion;
    std::string serverName;
    std::string systemTag;
    /// Each side sends something at least that often, a ping for want of anything else; a side that hears nothing for
    /// three times as long gives the connection up.
    std::int32_t keepAliveSeconds = 0;
};

/// Server: the client is not accepted, for good; the connection is closed after it.
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
};

struct LogInReply {
    std::int64_t id = 0;
    utils::NVError error;
    boost::shared_ptr<nvservice::CUserInfo> user; ///< null exactly when the log-in was refused
};

struct Query {
    std::int64_t id = 0;
    nvservice::CKolmQueryDataReq request;
};

struct Operate {
    std::int64_t id = 0;
    nvservice::COperateDataReq request; ///< with a record, and an operation id of 1 to MaxOperationIdBytes bytes
};

/// Client: the answer to `id` is of no interest any more. The server ends the reply with `Cancelled`, unless it has
/// ended it already; an operation that has begun is carried out all the same.
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
    /// `documents` as in nvservice::decodeRecord().
    utils::NVError records(std::vector<nvservice::IDataPtr>& out, std::size_t* documents = nullptr) const;
};

/// Server: the last message of every answer to a query or operation; the only one when there are no records.
struct ReplyEnd {
    std::int64_t id = 0;
    utils::NVError error;
    std::int64_t recordCount = 0; ///< how many were sent in chunks
    bson::BSONObj document;       ///< owned, or empty
    std::int64_t newId = 0;       ///< of the record that an operation has added; 0 after every other request
};

/// Either side; answered with a pong of the same id at once.
struct Ping {
    std::int64_t id = 0;
};

struct Pong {
    std::int64_t id = 0;
};

/// Server: it is about to stop. It answers what it has received, takes no more requests (`NotConnected`), and closes
/// the connection after that, at the latest when the time is over.
struct Closing {
    std::int32_t graceMilliseconds = 0;
    std::string text; ///< why, for the user
};

/// Either side: a message could not be read and belongs to no request. The connection goes on.
struct Fault {
    utils::NVError error;
};

using Message = std::variant<Hello, Welcome, Refused, LogIn, LogInReply, Query, Operate, Cancel, ReplyBegin, ReplyChunk,
                             ReplyEnd, Ping, Pong, Closing, Fault>;

} // namespace wire
