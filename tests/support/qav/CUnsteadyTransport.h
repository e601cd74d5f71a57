// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/ITransport.h>

#include <boost/weak_ptr.hpp>

#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>

namespace support
{

/// A bad line to a real server: requests go on to another transport, at once and in their order, and the test decides
/// which answers come back when, in which order, and which never do. All operations are thread-safe.
class CUnsteadyTransport : public QAV::ITransport
{
public:
    struct Request {
        bool isOperation = false;
        int dataType = 0;
    };
    /// An answer that the server has given and that has not come back.
    struct HeldReply {
        int number = 0; ///< counts the requests of this transport
        Request request;
        utils::NVError error;
    };

    explicit CUnsteadyTransport(boost::shared_ptr<QAV::ITransport> server);

    /// Answers to the requests that come from now on are held when `holds` says so; the others come back at once. An
    /// empty function holds none.
    void setHold(std::function<bool(const Request&)> holds);
    /// The next operations are lost on their way: the server never sees them and nobody answers.
    void loseOperations(int count);

    /// Waits until the server has answered everything that it was asked.
    void waitForServer() const;
    std::vector<HeldReply> heldReplies() const;
    /// Lets an answer come back.
    void release(int number);
    /// Loses an answer.
    void drop(int number);

    /// How many requests of this kind have come.
    int count(const Request& request) const;
    int requests() const;
    /// How many records of its answers somebody still holds.
    std::size_t liveRecords() const;

    RequestId logIn(const std::string& user, const std::string& password, LogInHandler handler) override;
    RequestId query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) override;
    RequestId operate(const nvservice::COperateDataReq& request, ReplyHandler handler) override;
    /// Never arrives: the server answers all the same.
    void cancel(RequestId) noexcept override {}
    QAV::EConnectionState state() const override;
    void setStateHandler(StateHandler handler) override;

private:
    struct Exchange {
        HeldReply held;
        ReplyHandler handler;
        bool isHeld = false;
        bool isAnswered = false;
        Reply reply;
    };
    using Exchanges = std::list<Exchange>;

    /// The exchange that begins with a request; nothing when the request is lost.
    std::optional<Exchanges::iterator> begin(const Request& request, ReplyHandler handler);
    void take(Exchanges::iterator exchange, Reply reply);
    Exchanges::iterator find(int number);

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_answered;
    std::function<bool(const Request&)> m_holds;
    int m_operationsToLose = 0;
    std::map<std::pair<bool, int>, int> m_counts; ///< of requests, by `isOperation` and data type
    int m_requests = 0;
    Exchanges m_exchanges;
    mutable std::vector<boost::weak_ptr<nvservice::IData>> m_records;
    /// Goes first: until it is gone, it answers.
    const boost::shared_ptr<QAV::ITransport> m_server;
};

} // namespace support
