// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ConversationFixture.h"

namespace testservice
{

namespace
{

struct Describe {
    static std::string code(const utils::NVError& error)
    {
        return " (" + std::to_string(static_cast<int>(error.code())) + ")";
    }
    static std::string id(std::int64_t id) { return " " + std::to_string(id); }

    std::string operator()(const wire::Hello&) const { return "hello"; }
    std::string operator()(const wire::Welcome&) const { return "welcome"; }
    std::string operator()(const wire::Refused& message) const { return "refused" + code(message.error); }
    std::string operator()(const wire::LogIn& message) const { return "logIn" + id(message.id); }
    std::string operator()(const wire::LogInReply& message) const
    {
        return "logInReply" + id(message.id) + code(message.error);
    }
    std::string operator()(const wire::Query& message) const { return "query" + id(message.id); }
    std::string operator()(const wire::Operate& message) const { return "operate" + id(message.id); }
    std::string operator()(const wire::Cancel& message) const { return "cancel" + id(message.id); }
    std::string operator()(const wire::ReplyBegin& message) const { return "replyBegin" + id(message.id); }
    std::string operator()(const wire::ReplyChunk& message) const { return "replyChunk" + id(message.id); }
    std::string operator()(const wire::ReplyEnd& message) const
    {
        return "replyEnd" + id(message.id) + code(message.error);
    }
    std::string operator()(const wire::Listen&) const { return "listen"; }
    std::string operator()(const wire::Changed& message) const
    {
        return "changed " + (message.isComplete ? std::to_string(message.changes.size()) : "everything");
    }
    std::string operator()(const wire::Ping& message) const { return "ping" + id(message.id); }
    std::string operator()(const wire::Pong& message) const { return "pong" + id(message.id); }
    std::string operator()(const wire::Closing&) const { return "closing"; }
    std::string operator()(const wire::Fault& message) const { return "fault" + code(message.error); }
};

} // namespace

std::string describe(const wire::Message& message)
{
    return std::visit(Describe(), message);
}

std::string Talk::describe(const std::vector<wire::Message>& messages)
{
    std::string all;
    for (const wire::Message& message : messages) {
        all += (all.empty() ? "" : ", ") + testservice::describe(message);
    }
    return all;
}

} // namespace testservice
