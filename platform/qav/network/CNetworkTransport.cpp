// SPDX-License-Identifier: Apache-2.0
#include <QAV/CNetworkTransport.h>

#include "network/CReplyDecoder.h"
#include "network/CServerLink.h"

#include <utils/CMailbox.h>
#include <utils/Translation.h>

#include <QEventLoop>
#include <QHostAddress>
#include <QNetworkSession>
#include <QSharedPointer>

#include <atomic>
#include <future>
#include <mutex>
#include <thread>
#include <utility>

namespace QAV
{

namespace
{

bool isLoopback(const std::string& host)
{
    return host == "localhost" || QHostAddress(QString::fromStdString(host)).isLoopback();
}

/// Sockets register this type at their first use. Two threads that do so at once make Qt warn in the log.
void registerTypeOfSockets()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    static const int type = qRegisterMetaType<QSharedPointer<QNetworkSession>>();
    QT_WARNING_POP
    Q_UNUSED(type)
}

} // namespace

struct CNetworkTransport::Private : IChangeSource {
    explicit Private(NetworkServer where) : server(std::move(where)), thread([this] { run(); })
    {
        mailbox = ready.get_future().get();
    }

    ~Private() override
    {
        mailbox.post([this] { loop->quit(); });
        thread.join();
    }

    void run()
    {
        QEventLoop events;
        utils::CMailbox box;
        loop = &events;
        CServerLink connection(
            server, decoder, [this](EConnectionState now, const std::string& why) { report(now, why); },
            [this](Changes changes) { tell(std::move(changes)); });
        link = &connection;
        ready.set_value(box.address());
        connection.start();
        events.exec();
    }

    void report(EConnectionState now, const std::string& why)
    {
        state.store(now);
        StateHandler handler;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            reason = why;
            handler = stateHandler;
        }
        if (handler) {
            handler(now);
        }
    }

    void tell(Changes changes)
    {
        ChangeHandler handler;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            handler = changeHandler;
        }
        if (handler) {
            handler(std::move(changes));
        }
    }

    RequestId take(decltype(NetworkRequest::what) what, ReplyHandler handler)
    {
        const RequestId id = ++lastRequest;
        // Tasks are copyable, and so must be what they capture.
        const auto request = std::make_shared<NetworkRequest>();
        request->what = std::move(what);
        request->handler = std::move(handler);
        request->id = id;
        mailbox.post([this, request] { link->take(std::make_unique<NetworkRequest>(std::move(*request))); });
        return id;
    }

    void setChangeHandler(ChangeHandler handler) override
    {
        mailbox.post([this, listens = static_cast<bool>(handler)] { link->setListening(listens); });
        ChangeHandler old; // destroyed outside the lock
        const std::lock_guard<std::mutex> lock(mutex);
        old = std::exchange(changeHandler, std::move(handler));
    }

    const NetworkServer server;
    std::atomic<EConnectionState> state{EConnectionState::Connecting};
    std::atomic<RequestId> lastRequest{0};
    std::mutex mutex;
    StateHandler stateHandler;
    ChangeHandler changeHandler;
    std::string reason;

    CReplyDecoder decoder{server.maxReplyDocuments};
    // Both belong to the network thread and live until it ends.
    QEventLoop* loop = nullptr;
    CServerLink* link = nullptr;
    utils::CMailbox::Address mailbox;
    std::promise<utils::CMailbox::Address> ready;
    std::thread thread;
};

utils::NVError CNetworkTransport::check(const NetworkServer& server)
{
    if (server.host.empty() || server.port == 0) {
        return {utils::EErrorCode::InvalidValue, utils::text("QAV", "服务端的主机或端口为空")};
    }
    if (!server.encrypted && !isLoopback(server.host)) {
        return {utils::EErrorCode::InvalidValue,
                utils::filled(utils::text("QAV", "未加密的连接只能用于本机：%1"), server.host)};
    }
    if (server.encrypted && !QSslSocket::supportsSsl()) {
        return {utils::EErrorCode::Unsupported, utils::text("QAV", "本机缺少TLS库，无法建立加密连接")};
    }
    return {};
}

CNetworkTransport::CNetworkTransport(NetworkServer server)
{
    registerTypeOfSockets();
    m_d = std::make_unique<Private>(std::move(server));
}

CNetworkTransport::~CNetworkTransport() = default;

ITransport::RequestId CNetworkTransport::logIn(const std::string& user, const std::string& password,
                                               LogInHandler handler)
{
    return m_d->take(LogInRequest{user, password}, [handler = std::move(handler)](const Reply& reply) {
        boost::shared_ptr<nvservice::CUserInfo> info;
        if (!reply.records.empty()) {
            info = boost::dynamic_pointer_cast<nvservice::CUserInfo>(reply.records.front());
        }
        handler(reply.error, info);
    });
}

ITransport::RequestId CNetworkTransport::query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler)
{
    return m_d->take(request, std::move(handler));
}

ITransport::RequestId CNetworkTransport::operate(const nvservice::COperateDataReq& request, ReplyHandler handler)
{
    return m_d->take(request, std::move(handler));
}

void CNetworkTransport::cancel(RequestId request) noexcept
{
    m_d->mailbox.post([this, request] { m_d->link->cancel(request); });
}

EConnectionState CNetworkTransport::state() const
{
    return m_d->state.load();
}

std::string CNetworkTransport::stateReason() const
{
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    return m_d->reason;
}

void CNetworkTransport::setStateHandler(StateHandler handler)
{
    StateHandler old; // destroyed outside the lock
    const std::lock_guard<std::mutex> lock(m_d->mutex);
    old = std::exchange(m_d->stateHandler, std::move(handler));
}

IChangeSource& CNetworkTransport::changeSource()
{
    return *m_d;
}

} // namespace QAV
