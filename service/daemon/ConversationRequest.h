#pragma once

#include "service/daemon/Conversation.h"

#include <atomic>
#include <variant>

namespace service::daemon
{

/// A client that sends or reads at a lower rate is slow.
constexpr double SlowBytesPerSecond = 256.0 * 1024;

/// A client's query or operation, from its arrival to the last message of its answer.
struct Conversation::Request {
    enum class EState { Waiting, Running, Answering };

    /// Shared by the worker and the conversation. Except for the flag, only one of them uses it at a time.
    struct Job {
        /// A large message stays a frame until a worker decodes it.
        std::variant<wire::Frame, nvservice::CKolmQueryDataReq, nvservice::COperateDataReq> request;
        std::atomic<bool> isUnwanted{false};
        service::Reply reply;
        std::size_t replyBytes = 0; ///< approximate size on the network

        /// Runs on a worker. Afterwards the request no longer holds large data.
        void carryOut(service::DataEngine& engine, const service::SessionPtr& session);

    private:
        utils::NVError read();
    };

    std::int64_t id = 0;
    bool isOperation = false;
    std::string kind;            ///< for the metrics
    service::SessionPtr session; ///< of the user at the time of arrival
    std::size_t bytes = 0;       ///< of the message, until it is carried out
    MessageRoom::Share room;     ///< the same for a large message
    TimePoint arrived;
    EState state = EState::Waiting;
    bool isAnswered = false; ///< the client has its answer although the worker is not done
    std::shared_ptr<Job> job = std::make_shared<Job>();
    std::string answerKind;         ///< of a query; the key for the expected size of its answer
    std::size_t expectedBytes = 0;  ///< of the answer, while a query is Running
    TimePoint answering;            ///< start of Answering
    std::unique_ptr<Answer> answer; ///< while Answering
};

} // namespace service::daemon
