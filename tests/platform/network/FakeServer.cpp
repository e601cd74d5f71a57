// SPDX-License-Identifier: Apache-2.0
#include "platform/network/FakeServer.h"

#include "support/records/Requests.h"

#include "platform/wire/ReplyEncoder.h"
#include "platform/wire/WireSamples.h"

#include <nvservice/DataType.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSslCertificate>
#include <QSslKey>
#include <QTimer>

namespace support
{

namespace
{

QByteArray contentOf(const QString& file)
{
    QFile source(file);
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

} // namespace

FakePeer::FakePeer(QSslSocket* socket) : m_socket(socket), m_reader(wire::MaxMessageBytes)
{
    m_socket->setParent(this);
    connect(m_socket, &QSslSocket::readyRead, this, [this] { read(); });
}

void FakePeer::sendRaw(const std::string& bytes)
{
    m_socket->write(bytes.data(), static_cast<qint64>(bytes.size()));
    m_socket->flush();
}

void FakePeer::close()
{
    m_socket->disconnectFromHost();
}

void FakePeer::abort()
{
    m_socket->abort();
}

bool FakePeer::isOpen() const
{
    return m_socket->state() == QAbstractSocket::ConnectedState;
}

void FakePeer::read()
{
    const QByteArray bytes = m_socket->readAll();
    receivedBytes += static_cast<std::size_t>(bytes.size());
    for (std::size_t at = 0; at < static_cast<std::size_t>(bytes.size());) {
        utils::NVError error;
        at += m_reader.feed(bytes.constData() + at, static_cast<std::size_t>(bytes.size()) - at, error);
        if (!error.isSuccess()) {
            qFatal("the client lost the framing: %s", error.errorMsg().c_str());
        }
        if (!m_reader.hasFrame()) {
            continue;
        }
        wire::Message message;
        const utils::NVError unreadable = wire::decode(m_reader.take(), wire::LimitsAfterLogIn, message);
        if (!unreadable.isSuccess()) {
            qFatal("the client sent what cannot be read: %s", unreadable.errorMsg().c_str());
        }
        if (!onMessage || !onMessage(*this, message)) {
            received.push_back(std::move(message));
        }
    }
}

FakeServer::FakeServer()
{
    welcome.protocol = wire::NewestProtocol;
    welcome.sdkVersion = wire::sdkVersion();
    welcome.serverName = "上海分系统";
    welcome.systemTag = "SH01";
    welcome.keepAliveSeconds = 600;
}

void FakeServer::useTls(TestCertificates& certificates, TestCertificates::EKind kind)
{
    m_tls = QSslConfiguration::defaultConfiguration();
    m_tls->setLocalCertificate(QSslCertificate(contentOf(certificates.certificate(kind))));
    m_tls->setPrivateKey(QSslKey(contentOf(certificates.key()), QSsl::Ec));
    m_tls->setPeerVerifyMode(QSslSocket::VerifyNone);
}

bool FakeServer::start()
{
    if (!listen(QHostAddress::LocalHost, m_port)) {
        return false;
    }
    m_port = serverPort();
    return true;
}

QAV::NetworkServer FakeServer::address() const
{
    QAV::NetworkServer server;
    server.host = "127.0.0.1";
    server.port = m_port;
    server.encrypted = m_tls.has_value();
    server.firstPause = std::chrono::milliseconds(1);
    server.longestPause = std::chrono::milliseconds(20);
    return server;
}

void FakeServer::incomingConnection(qintptr handle)
{
    auto* socket = new QSslSocket;
    socket->setSocketDescriptor(handle);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_peers.push_back(std::make_unique<FakePeer>(socket));
    m_peers.back()->onMessage = [this](FakePeer& peer, const wire::Message& message) { return answer(peer, message); };
    if (m_tls) {
        socket->setSslConfiguration(*m_tls);
        socket->startServerEncryption();
    }
}

bool FakeServer::answer(FakePeer& peer, const wire::Message& message)
{
    if (greets && std::holds_alternative<wire::Hello>(message)) {
        peer.send(wire::encode(welcome));
        return true;
    }
    const auto* logIn = std::get_if<wire::LogIn>(&message);
    if (logsIn && logIn) {
        auto user = boost::make_shared<nvservice::CUserInfo>();
        user->userId = logIn->user;
        peer.send(wire::encode(wire::LogInReply{logIn->id, {}, user}));
        return true;
    }
    return onMessage && onMessage(peer, message);
}

QAV::ITransport::ReplyHandler Answers::onReply() const
{
    return [state = m_state](Reply reply) {
        const std::lock_guard<std::mutex> lock(state->mutex);
        state->replies.push_back(std::move(reply));
    };
}

QAV::ITransport::LogInHandler Answers::onLogIn() const
{
    return [state = m_state](const utils::NVError& error, const boost::shared_ptr<nvservice::CUserInfo>& user) {
        Reply reply;
        reply.error = error;
        if (user) {
            reply.records.push_back(user);
        }
        const std::lock_guard<std::mutex> lock(state->mutex);
        state->replies.push_back(std::move(reply));
    };
}

std::size_t Answers::count() const
{
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->replies.size();
}

Answers::Reply Answers::at(std::size_t index) const
{
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->replies.at(index);
}

bool waitUntil(const std::function<bool()>& condition)
{
    QTimer tick;
    tick.start(1);
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(30000)) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

nvservice::CKolmQueryDataReq queryOf(const std::string& key)
{
    return queryOf(nvservice::DataType::AccountGroup, key);
}

nvservice::COperateDataReq operationOf(const std::string& operationId)
{
    return operationOn(nvservice::DataType::AccountGroup, {}, samples::groupOf(1, 2), operationId);
}

std::string beginOf(std::int64_t id, int totalCount)
{
    return samples::frameOf(wire::encode(wire::ReplyBegin{id, totalCount}));
}

std::string chunkOf(std::int64_t id, int groupNumber)
{
    wire::ReplyEncoder encoder(id);
    encoder.add(*samples::groupOf(groupNumber, 1));
    return samples::frameOf(encoder.take());
}

std::string endOf(std::int64_t id, std::int64_t recordCount)
{
    return samples::frameOf(wire::encode(wire::ReplyEnd{id, {}, recordCount, {}}));
}

std::string groupsReply(std::int64_t id, int groups)
{
    std::string bytes = beginOf(id, groups);
    wire::ReplyEncoder encoder(id, 2048);
    for (int i = 0; i < groups; ++i) {
        encoder.add(*samples::groupOf(i, 2));
        if (encoder.isFull()) {
            bytes += samples::frameOf(encoder.take());
        }
    }
    if (!encoder.isEmpty()) {
        bytes += samples::frameOf(encoder.take());
    }
    return bytes + endOf(id, encoder.recordCount());
}

bson::BSONObj doneReply(std::int64_t id)
{
    return wire::encode(wire::ReplyEnd{id, {}, 0, {}});
}

bool answerAtOnce(FakePeer& peer, const wire::Message& message)
{
    if (const auto* query = std::get_if<wire::Query>(&message)) {
        peer.sendRaw(groupsReply(query->id, 2));
    } else if (const auto* operate = std::get_if<wire::Operate>(&message)) {
        peer.send(doneReply(operate->id));
    } else {
        return false;
    }
    return true;
}

} // namespace support
