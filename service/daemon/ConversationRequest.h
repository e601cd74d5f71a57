#pragma once

#include "service/daemon/Conversation.h"

#include <atomic>
#include <variant>

namespace service::daemon
{

/// What a client sends or takes with less is slow.
constexpr double SlowBytesPerSecond = 256.0 * 1024;

/// A query or operation of a client, from its arrival to the last message of its answer.
struct Conversation::Request {
    enum class EState { Waiting, Running, Answering };

    /// What the worker and the conversation share, one after the other but for the flag.
    struct Job {
        /// A long message stays a frame until a worker reads it.
        std::variant<wire::Frame, nvservice::CKolmQueryDataReq, nvservice::COperateDataReq> request;
        std::atomic<bool> isUnwanted{false};
        service::Reply reply;
        std::size_t replyBytes = 0; ///< on the network, about

        /// On a worker. Drops what takes room in the request.
        void carryOut(service::DataEngine& engine, const service::SessionPtr& session);

    private:
        utils::NVError read();
    };

    std::int64_t id = 0;
    bool isOperation = false;
    std::string kind;            ///< for the metrics
    service::SessionPtr session; ///< of the user when the request came
    std::size_t bytes = 0;       ///< of the message, until it is carried out
    MessageRoom::Share room;     ///< the same, of a long one
    TimePoint arrived;
    EState state = EState::Waiting;
    bool isAnswered = false; ///< the client has its answer, although the worker isn't done
    std::shared_ptr<Job> job = std::make_shared<Job>();
    std::string answerKind;         ///< of a query; the size of its answer is expected by it
    std::size_t expectedBytes = 0;  ///< of the answer of a query that is Running
    TimePoint answering;            ///< since when
    std::unique_ptr<Answer> answer; ///< while Answering
};

} // namespace service::daemon
