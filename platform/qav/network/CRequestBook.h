// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/ITransport.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace QAV
{

struct LogInRequest {
    std::string user;
    std::string password;
};

/// A request of a transport that has not been answered.
struct NetworkRequest {
    std::variant<LogInRequest, nvservice::CKolmQueryDataReq, nvservice::COperateDataReq> what;
    ITransport::ReplyHandler handler; ///< of a log-in: gets the user as the only record
    ITransport::RequestId id = 0;
    bool wasSent = false;       ///< at least once, on whatever connection
    bool replyHasBegun = false; ///< on the present connection
    std::size_t replyBytes = 0; ///< of its reply, on the present connection

    bool isLogIn() const { return std::holds_alternative<LogInRequest>(what); }
    bool isOperation() const { return std::holds_alternative<nvservice::COperateDataReq>(what); }
    /// Whether it may have been carried out without anybody knowing.
    bool isInDoubt() const { return isOperation() && wasSent; }
    /// Calls the handler with an error. An operation in doubt gets a text that says so.
    void fail(const utils::NVError& error) const;
};

using NetworkRequestPtr = std::unique_ptr<NetworkRequest>;

/// The requests that wait to be sent, in order, and those that wait for an answer, by id. Whoever takes a request out
/// answers it; nothing else does, which makes the answer exactly one.
class CRequestBook
{
public:
    void add(NetworkRequestPtr request);
    /// The one to be sent next; null when none waits.
    NetworkRequest* next() const;
    NetworkRequestPtr takeNext();
    /// Notes that the next one was sent, and gives it its id.
    void markNextSent(std::int64_t id);
    std::size_t sentCount() const { return m_sent.size(); }
    /// What has come of the replies to all that were sent.
    std::size_t replyBytes() const;

    /// The sent request of an id; null when there is none.
    NetworkRequest* sent(std::int64_t id) const;
    NetworkRequestPtr takeSent(std::int64_t id);

    /// The connection is gone: what was sent waits again, before everything else and in the order of its sending. The
    /// ids that it had are of no use any more.
    std::vector<std::int64_t> requeueSent();
    /// Takes out what waits to be sent and is chosen.
    std::vector<NetworkRequestPtr> takeWaiting(const std::function<bool(const NetworkRequest&)>& isChosen);
    /// Takes out a request that is not to be answered, if it is here. Gives the id under which it was sent on the
    /// present connection; 0 when it was not.
    std::int64_t remove(ITransport::RequestId request);

private:
    std::deque<NetworkRequestPtr> m_waiting;
    std::map<std::int64_t, NetworkRequestPtr> m_sent; ///< ids grow, so that their order is that of sending
};

} // namespace QAV
