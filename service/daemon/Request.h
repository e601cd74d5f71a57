// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/wire/Messages.h"
#include "service/daemon/Answer.h"
#include "service/daemon/LogInGuard.h"
#include "service/daemon/MessageRoom.h"
#include "service/engine/DataEngine.h"

#include <utils/Translation.h>

#include <atomic>
#include <memory>
#include <string>
#include <variant>

namespace service::daemon
{

/// A client's query or operation, from its arrival to the last message of its answer.
struct Request {
    enum class EState { Waiting, Running, Answering };
    /// A large message stays a frame until a worker decodes it.
    using Content = std::variant<wire::Frame, nvservice::CKolmQueryDataReq, nvservice::COperateDataReq>;

    /// Shared by the worker and the scheduler. Except for the flag, only one of them uses it at a time.
    struct Job {
        Content content;
        std::atomic<bool> isUnwanted{false};
        utils::ELanguage language = utils::ELanguage::Chinese; ///< of the texts for the user
        service::Reply reply;
        std::size_t replyBytes = 0; ///< approximate size on the network

        /// Runs on a worker. Afterwards the content no longer holds large data.
        void carryOut(service::DataEngine& engine, const service::SessionPtr& session);

    private:
        utils::NVError read();
    };

    Request(std::int64_t messageId, bool isAnOperation, Content content);
    /// Names the kind by what is known of the content by now.
    void nameKind();

    const std::int64_t id;
    const bool isOperation;
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

using RequestPtr = std::shared_ptr<Request>;

} // namespace service::daemon
