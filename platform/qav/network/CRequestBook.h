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

/// A request that has not been answered.
struct NetworkRequest {
    std::variant<LogInRequest, nvservice::CKolmQueryDataReq, nvservice::COperateDataReq> what;
    ITransport::ReplyHandler handler; ///< of a log-in: receives the user as the only record
    ITransport::RequestId id = 0;
    bool wasSent = false;       ///< at least once, on any connection
    bool replyHasBegun = false; ///< on the current connection
    std::size_t replyBytes = 0; ///< received bytes of the reply, on the current connection

    bool isLogIn() const { return std::holds_alternative<LogInRequest>(what); }
    bool isOperation() const { return std::holds_alternative<nvservice::COperateDataReq>(what); }
    /// True if the server may have carried it out.
    bool isInDoubt() const { return isOperation() && wasSent; }
    /// Calls the handler with the error. If the request is in doubt, the text says so.
    void fail(const utils::NVError& error) const;
};

using NetworkRequestPtr = std::unique_ptr<NetworkRequest>;

/// The requests that wait to be sent, in order, and the sent ones, by message id. Whoever takes a request out answers
/// it, so each request is answered exactly once.
class CRequestBook
{
public:
    void add(NetworkRequestPtr request);
    /// The next request to send; null if none waits.
    NetworkRequest* next() const;
    NetworkRequestPtr takeNext();
    /// Moves the next request to the sent ones, under this message id.
    void markNextSent(std::int64_t id);
    std::size_t sentCount() const { return m_sent.size(); }
    /// The received bytes of all unfinished replies.
    std::size_t replyBytes() const;

    /// Null if there is none.
    NetworkRequest* sent(std::int64_t id) const;
    NetworkRequestPtr takeSent(std::int64_t id);

    /// After a lost connection: the sent requests wait again, before the others and in the same order. Returns their
    /// message ids, which are no longer valid.
    std::vector<std::int64_t> requeueSent();
    /// Takes out the chosen ones of the waiting requests.
    std::vector<NetworkRequestPtr> takeWaiting(const std::function<bool(const NetworkRequest&)>& isChosen);
    /// Removes a request without an answer. Returns the message id under which it was sent on the current connection;
    /// 0 if it was not.
    std::int64_t remove(ITransport::RequestId request);

private:
    std::deque<NetworkRequestPtr> m_waiting;
    std::map<std::int64_t, NetworkRequestPtr> m_sent; ///< ascending ids, so in the order of sending
};

} // namespace QAV
