// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/wire/MessageCodec.h"
#include "platform/wire/Protocol.h"
#include "service/ServiceFixture.h"
#include "service/daemon/Conversation.h"
#include "service/daemon/DaemonThread.h"

#include <deque>
#include <memory>

namespace testservice
{

/// Runs tasks when the test says so.
class ManualExecutor : public service::daemon::IExecutor
{
public:
    void post(Task work, Task done) override { m_tasks.push_back({std::move(work), std::move(done)}); }
    std::size_t waiting() const override { return m_tasks.size(); }

    /// Does the work of the next task and, unless told otherwise, delivers it.
    void runOne(bool deliver = true)
    {
        auto [work, done] = std::move(m_tasks.front());
        m_tasks.pop_front();
        work();
        deliver ? done() : m_done.push_back(std::move(done));
    }
    void deliver()
    {
        while (!m_done.empty()) {
            const Task done = std::move(m_done.front());
            m_done.pop_front();
            done();
        }
    }
    void runAll()
    {
        while (!m_tasks.empty()) {
            runOne();
        }
    }

private:
    std::deque<std::pair<Task, Task>> m_tasks;
    std::deque<Task> m_done;
};

/// A store with the users "admin" (every right) and "reader" (none), both with the password "right", and what
/// conversations about its east server need. The clock stands still until it is moved.
struct ConversationFixture {
    ServiceFixture fixture;
    service::daemon::MessageRoom room{128 * 1024 * 1024};
    ManualExecutor requests;
    ManualExecutor logIns;
    service::daemon::LogInGuard guard{service::daemon::LogInSettings{}};
    service::daemon::Metrics metrics;
    QStringList logged;
    service::daemon::EventLog log{{service::daemon::ELogLevel::Debug, service::daemon::ELogFormat::Json},
                                  [this](const std::string& line) { logged << QString::fromStdString(line); }};
    service::daemon::HeldBytes held{1024 * 1024 * 1024};
    service::daemon::TimePoint now{std::chrono::hours(1)};
    service::DataEnginePtr engine{&fixture.east(), [](service::DataEngine*) {}};
    service::daemon::ChangeHub changes{engine, requests, log};
    service::daemon::ConversationContext context{engine, requests, logIns,  guard, metrics, log,
                                                 held,   room,     changes, {},    {},      [this] { return now; }};

    ConversationFixture()
    {
        addUser(fixture.store(), fixture.server(0), "admin", "right", everyRight(), None);
        addUser(fixture.store(), fixture.server(0), "reader", "right", {}, None);
    }
};

/// One conversation and its client.
class Talk
{
public:
    explicit Talk(ConversationFixture& fixture, const std::string& address = "192.0.2.1")
        : m_fixture(fixture),
          m_conversation(new service::daemon::Conversation(fixture.context, address, [this] { ++m_changes; }))
    {
    }

    service::daemon::Conversation& conversation() { return *m_conversation; }
    void destroy() { m_conversation.reset(); }
    /// How often the conversation said that something had changed.
    int changes() const { return m_changes; }

    void say(const wire::Frame& bytes) { m_conversation->receive(bytes.data(), bytes.size()); }
    template <typename Message>
    void say(const Message& message)
    {
        const bson::BSONObj bytes = wire::encode(message);
        m_conversation->receive(bytes.objdata(), static_cast<std::size_t>(bytes.objsize()));
    }
    void sayHello() { say(wire::Hello{wire::OldestProtocol, wire::NewestProtocol, wire::sdkVersion(), "test"}); }
    void askToLogIn(std::int64_t id, const std::string& user = "admin", const std::string& password = "right")
    {
        say(wire::LogIn{id, user, password});
        m_fixture.logIns.runAll();
    }
    void query(std::int64_t id, std::int32_t dataType = nvservice::DataType::Institution, const std::string& key = {})
    {
        wire::Query query;
        query.id = id;
        query.request.dataType = dataType;
        query.request.queryKey = key;
        say(query);
    }
    void addGroup(std::int64_t id, const std::string& name)
    {
        wire::Operate operate;
        operate.id = id;
        operate.request.dataType = nvservice::DataType::AccountGroup;
        operate.request.operation = EZvDataOperation::Add;
        operate.request.data = group(name, First, {future("8001")});
        operate.request.operationId = "op-" + name;
        say(operate);
    }
    /// Hello and log-in, with their answers taken.
    void enter(const std::string& user = "admin")
    {
        sayHello();
        askToLogIn(1, user);
        hear();
    }

    /// Everything that the server has to say now.
    std::vector<wire::Message> hear()
    {
        std::vector<wire::Message> messages;
        for (;;) {
            const bson::BSONObj bytes = m_conversation->takeMessage();
            if (bytes.isEmpty()) {
                return messages;
            }
            wire::Message message;
            const wire::Frame frame(bytes.objdata(), static_cast<std::size_t>(bytes.objsize()));
            const utils::NVError error = wire::decode(frame, wire::LimitsAfterLogIn, message);
            if (!error.isSuccess()) {
                throw std::runtime_error(error.errorMsg());
            }
            messages.push_back(std::move(message));
        }
    }
    /// The only message; throws when there is another number of messages or one of another kind.
    template <typename Message>
    Message hearOne()
    {
        std::vector<wire::Message> messages = hear();
        if (messages.size() != 1 || !std::holds_alternative<Message>(messages[0])) {
            throw std::runtime_error("expected one message of a kind, got " + describe(messages));
        }
        return std::get<Message>(std::move(messages[0]));
    }
    static std::string describe(const std::vector<wire::Message>& messages);

private:
    ConversationFixture& m_fixture;
    int m_changes = 0;
    std::unique_ptr<service::daemon::Conversation> m_conversation;
};

/// The same of a client that has logged in as "admin".
class UserTalk : public Talk
{
public:
    explicit UserTalk(ConversationFixture& fixture) : Talk(fixture) { enter(); }
};

/// A test each of whose functions has a server of its own.
class ServerTest : public support::FunctionTest
{
protected:
    void begin() override { m_server = std::make_unique<ConversationFixture>(); }
    void end() override { m_server.reset(); }

    std::unique_ptr<ConversationFixture> m_server;
};

/// "welcome", "replyEnd 3 (6)" and so on: the kind, the id and the error's code, if the message has them.
std::string describe(const wire::Message& message);

} // namespace testservice
