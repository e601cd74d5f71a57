// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/ITransport.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace QAV
{

/// A server of the centre, or an unknown one, which has no transport. Name and tag never change; the mutex of the core
/// guards the rest.
struct ServerEntry {
    std::string name;
    std::string systemTag;
    boost::shared_ptr<ITransport> transport;
    std::optional<std::chrono::milliseconds> deadline;
};

/// What a request is about.
struct RequestKind {
    bool isOperation = false;
    std::int32_t dataType = 0; ///< 0: a log-in
};

/// A request to one server. `done` is empty once the request is answered.
struct PendingRequest {
    using Clock = std::chrono::steady_clock;
    /// `namesServer`: the text of the error already names the server.
    using Done = std::function<void(ITransport::Reply, bool namesServer)>;
    using ByDeadline = std::multimap<Clock::time_point, std::shared_ptr<PendingRequest>>;

    std::shared_ptr<ServerEntry> server;
    RequestKind kind;
    Clock::time_point since; ///< when it was sent
    std::chrono::milliseconds deadline{};
    Done done;
    std::optional<ITransport::RequestId> id; ///< none until the transport has assigned it
    bool isGivenUp = false;                  ///< the transport is told as soon as there is an id
    std::optional<ByDeadline::iterator> place;
};

/// The pending requests; answers each of them exactly once. Service thread only.
class CRequestLedger
{
public:
    using RequestPtr = std::shared_ptr<PendingRequest>;
    using Clock = PendingRequest::Clock;
    /// Cancels a request at the server's transport.
    using Cancel = std::function<void(const ServerEntry&, ITransport::RequestId)>;

    explicit CRequestLedger(Cancel cancel) : m_cancel(std::move(cancel)) {}

    void add(const RequestPtr& request);
    /// The transport has accepted the request.
    void sent(const RequestPtr& request, ITransport::RequestId id);
    /// Answers the request unless it has been answered. Drops null records. Records without a system tag, also nested
    /// ones, get that of the server.
    void answer(const RequestPtr& request, ITransport::Reply reply);
    void answerWithError(const RequestPtr& request, utils::EErrorCode code, const std::string& text);
    /// Answers the requests to `server` with `Cancelled`; its transport is gone.
    void drop(const std::shared_ptr<ServerEntry>& server);
    /// Answers the request with `Cancelled`, unless it has been answered, and cancels it at its transport.
    void cancel(const RequestPtr& request);
    void cancelAll();
    /// Answers and cancels overdue requests. Returns the next deadline.
    std::optional<Clock::time_point> expire(Clock::time_point now);

private:
    void giveUp(PendingRequest& request) const;
    void finish(const RequestPtr& request, ITransport::Reply reply, bool namesServer);

    const Cancel m_cancel;
    PendingRequest::ByDeadline m_waiting;
};

} // namespace QAV
