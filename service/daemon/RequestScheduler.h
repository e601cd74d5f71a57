// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/ConversationContext.h"
#include "service/daemon/Request.h"

#include <boost/noncopyable.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace service::daemon
{

/// The requests of one client: when each is carried out, and whose answer is sent next.
///
/// Operations are carried out one after another in the order of arrival. A query sees all operations that arrived
/// before it. Answers are sent as soon as they are ready; chunks of large answers are interleaved. So many queries run
/// at a time, and so much of their answers is held, that others have their turn.
///
/// Used on one thread.
class RequestScheduler : private boost::noncopyable
{
public:
    /// Called when a request was carried out: there may be something to take or room for another one. `unreadable` is
    /// why a large message of that kind could not be decoded.
    using Finished = std::function<void(const std::string& kind, const utils::NVError& unreadable)>;

    /// @param peer  the client, for the log
    RequestScheduler(ConversationContext& context, std::string peer, Finished finished);
    ~RequestScheduler();

    void add(const RequestPtr& request);
    bool isUnderWay(std::int64_t id) const;
    bool isEmpty() const { return m_requests.empty(); }
    /// Whether the client has to wait before it sends another request.
    bool isFull() const;

    /// Ends a request with this error. True if the caller has to answer it so; otherwise the answer is among those to
    /// take, or the request is none that can be cancelled any more.
    bool cancel(std::int64_t id, const utils::NVError& error);
    /// Starts what may run now. To be called when others may have made room.
    void startRequests();

    /// The next message of an answer; empty if there is none now.
    bson::BSONObj takeAnswer();
    /// Whether the client has been taking an answer for too long.
    bool isAnswerLate() const;
    /// How late the slowest answer that still holds records is, compared to 256 KiB/s; 0 without any.
    std::chrono::duration<double> lateness() const;

private:
    void start(const RequestPtr& request);
    void finish(const RequestPtr& request);
    void answer(Request& request);
    void answerDone(const Request& request, utils::EErrorCode outcome);
    void releaseBytes(Request& request);
    void forget(const RequestPtr& request);
    void setHeldBytes(std::size_t bytes);
    bool mayHold(std::size_t bytes) const;
    void dispose(std::vector<nvservice::IDataPtr> records);

    ConversationContext& m_context;
    std::string m_peer;
    Finished m_finished;
    std::shared_ptr<RequestScheduler*> m_self; ///< null inside once the scheduler is gone
    std::vector<RequestPtr> m_requests;        ///< in the order of arrival
    std::size_t m_turn = 0;                    ///< whose answer is continued next
    std::size_t m_requestBytes = 0;            ///< of messages whose requests are not carried out yet
    std::size_t m_heldBytes = 0;               ///< of answers, including those being made
};

} // namespace service::daemon
