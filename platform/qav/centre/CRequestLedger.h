// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/ITransport.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace QAV
{

/// One server of the centre, or one that nobody knows (no transport). Name and tag never change; the rest is guarded by
/// the core's mutex.
struct ServerEntry {
    std::string name;
    std::string systemTag;
    boost::shared_ptr<ITransport> transport;
    std::optional<std::chrono::milliseconds> deadline;
};

/// A request to one server, answered once. After the answer `done` is empty.
struct PendingRequest {
    using Clock = std::chrono::steady_clock;
    /// The second argument tells whether the error's text names the server already.
    using Done = std::function<void(ITransport::Reply, bool namesServer)>;
    using ByDeadline = std::multimap<Clock::time_point, std::shared_ptr<PendingRequest>>;

    std::shared_ptr<ServerEntry> server;
    bool isOperation = false;
    std::chrono::milliseconds deadline{};
    Done done;
    std::optional<ITransport::RequestId> id; ///< none until the transport has given it
    bool isOverdue = false;
    std::optional<ByDeadline::iterator> place;
};

/// The requests that wait for an answer. Used on the service thread only; that alone makes "exactly once" hold.
class CRequestLedger
{
public:
    using RequestPtr = std::shared_ptr<PendingRequest>;
    using Clock = PendingRequest::Clock;
    /// Tells the server's transport that nobody waits for a request.
    using Cancel = std::function<void(const ServerEntry&, ITransport::RequestId)>;

    explicit CRequestLedger(Cancel cancel) : m_cancel(std::move(cancel)) {}

    void add(const RequestPtr& request);
    /// The transport has taken the request.
    void sent(const RequestPtr& request, ITransport::RequestId id);
    /// Answers the request unless it has been answered. Null records are dropped; records without a system tag, those
    /// inside others too, get the server's.
    void answer(const RequestPtr& request, ITransport::Reply reply);
    void answerWithError(const RequestPtr& request, utils::EErrorCode code, const std::string& text);
    /// Answers with `Cancelled` what waits for `server`, whose transport is gone.
    void drop(const std::shared_ptr<ServerEntry>& server);
    /// Answers and cancels what is overdue and tells when the next request will be.
    std::optional<Clock::time_point> expire(Clock::time_point now);

private:
    void finish(const RequestPtr& request, ITransport::Reply reply, bool namesServer);

    const Cancel m_cancel;
    PendingRequest::ByDeadline m_waiting;
};

/// "分系统“name”".
std::string serverLabel(const std::string& name);

} // namespace QAV
