// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/RawClient.h"

#include <QDeadlineTimer>
#include <QSslConfiguration>

namespace testservice
{

using utils::EErrorCode;
using utils::NVError;

bool RawClient::open(int port, const QString& authority, QSsl::SslProtocol protocol)
{
    const auto portNumber = static_cast<quint16>(port);
    if (authority.isEmpty()) {
        m_socket.connectToHost(QStringLiteral("127.0.0.1"), portNumber);
        return m_socket.waitForConnected(30000);
    }
    QSslConfiguration configuration;
    configuration.setProtocol(protocol);
    configuration.setCaCertificates(QSslCertificate::fromPath(authority));
    m_socket.setSslConfiguration(configuration);
    m_socket.connectToHostEncrypted(QStringLiteral("127.0.0.1"), portNumber, QStringLiteral("localhost"));
    return m_socket.waitForEncrypted(30000);
}

void RawClient::send(const bson::BSONObj& message)
{
    sendBytes(message.objdata(), static_cast<std::size_t>(message.objsize()));
}

void RawClient::sendBytes(const char* data, std::size_t size)
{
    m_socket.write(data, static_cast<qint64>(size));
    while (m_socket.state() == QAbstractSocket::ConnectedState &&
           m_socket.bytesToWrite() + m_socket.encryptedBytesToWrite() > 0 && m_socket.waitForBytesWritten(30000)) {
    }
}

std::optional<wire::Message> RawClient::next(int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    for (;;) {
        NVError error;
        while (!m_reader.hasFrame() && !m_bytes.isEmpty()) {
            const std::size_t taken =
                m_reader.feed(m_bytes.constData(), static_cast<std::size_t>(m_bytes.size()), error);
            if (!error.isSuccess()) {
                return std::nullopt;
            }
            m_bytes.remove(0, static_cast<int>(taken));
        }
        if (m_reader.hasFrame()) {
            wire::Message message;
            if (!wire::decode(m_reader.take(), wire::LimitsAfterLogIn, message).isSuccess()) {
                return std::nullopt;
            }
            if (!std::holds_alternative<wire::Ping>(message)) {
                return message;
            }
            continue;
        }
        if (m_socket.bytesAvailable() == 0 && !m_socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())) &&
            m_socket.bytesAvailable() == 0) {
            return std::nullopt;
        }
        m_bytes += m_socket.readAll();
    }
}

bool RawClient::waitUntilClosed(int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    while (m_socket.state() != QAbstractSocket::UnconnectedState && !deadline.hasExpired()) {
        m_socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
        m_socket.readAll();
    }
    return m_socket.state() == QAbstractSocket::UnconnectedState;
}

bool RawClient::hello()
{
    send(wire::encode(wire::Hello{wire::OldestProtocol, wire::NewestProtocol, wire::sdkVersion(), "raw client"}));
    return expect<wire::Welcome>().has_value();
}

NVError RawClient::logIn(const std::string& user, const std::string& password, const std::string& language)
{
    send(wire::encode(wire::LogIn{nextId(), user, password, language}));
    const auto reply = expect<wire::LogInReply>();
    return reply ? reply->error : NVError(EErrorCode::NotConnected, "no answer");
}

std::int64_t RawClient::sendQuery(std::int32_t dataType, const std::string& key)
{
    wire::Query query;
    query.id = nextId();
    query.request.dataType = dataType;
    query.request.queryKey = key;
    send(wire::encode(query));
    return query.id;
}

std::int64_t RawClient::sendOperation(std::int32_t dataType, nvservice::EZvDataOperation operation,
                                      nvservice::IDataPtr record, const std::string& operationId)
{
    wire::Operate operate;
    operate.id = nextId();
    operate.request.dataType = dataType;
    operate.request.operation = operation;
    operate.request.data = std::move(record);
    operate.request.operationId = operationId;
    send(wire::encode(operate));
    return operate.id;
}

RawClient::Answer RawClient::query(std::int32_t dataType, const std::string& key)
{
    return answerTo(sendQuery(dataType, key));
}

RawClient::Answer RawClient::operate(std::int32_t dataType, nvservice::EZvDataOperation operation,
                                     nvservice::IDataPtr record, const std::string& operationId)
{
    return answerTo(sendOperation(dataType, operation, std::move(record), operationId));
}

RawClient::Answer RawClient::answerTo(std::int64_t id)
{
    Answer answer;
    while (const std::optional<wire::Message> message = next()) {
        if (const auto* begin = std::get_if<wire::ReplyBegin>(&*message)) {
            answer.totalCount = begin->totalCount;
        } else if (const auto* chunk = std::get_if<wire::ReplyChunk>(&*message)) {
            ++answer.chunks;
            answer.error = chunk->records(answer.records);
            if (!answer.error.isSuccess()) {
                return answer;
            }
        } else if (const auto* end = std::get_if<wire::ReplyEnd>(&*message); end && end->id == id) {
            answer.error = end->error;
            return answer;
        } else {
            answer.error = NVError(EErrorCode::Malformed, "another message");
            return answer;
        }
    }
    answer.error = NVError(EErrorCode::NotConnected, "connection ended");
    return answer;
}

} // namespace testservice
