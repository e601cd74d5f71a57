// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/wire/FrameReader.h"
#include "platform/wire/MessageCodec.h"
#include "platform/wire/Messages.h"
#include "platform/wire/Protocol.h"

#include <QSslSocket>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace testservice
{

/// A client of the daemon without any of the client's code: sends what it is told to, and shows everything that comes.
/// Every operation waits on the calling thread.
class RawClient
{
public:
    /// TLS to "localhost", trusting `authority` alone; without an authority no TLS. False when that fails.
    bool open(int port, const QString& authority = {}, QSsl::SslProtocol protocol = QSsl::TlsV1_2OrLater);
    QString errorText() const { return m_socket.errorString(); }

    void send(const bson::BSONObj& message);
    void sendBytes(const char* data, std::size_t size);
    /// The next message of the daemon that isn't a ping; empty when the connection is closed or nothing came in time.
    std::optional<wire::Message> next(int milliseconds = 60000);
    /// The same, and empty too for a message of another kind.
    template <typename Message>
    std::optional<Message> expect()
    {
        std::optional<wire::Message> message = next();
        if (message && std::holds_alternative<Message>(*message)) {
            return std::get<Message>(std::move(*message));
        }
        return std::nullopt;
    }
    bool waitUntilClosed(int milliseconds = 60000);
    /// Closes at once, without a farewell.
    void cut() { m_socket.abort(); }

    struct Answer {
        utils::NVError error;
        std::vector<nvservice::IDataPtr> records;
        std::int32_t totalCount = 0;
        int chunks = 0;
    };

    bool hello();
    utils::NVError logIn(const std::string& user, const std::string& password, const std::string& language = {});
    std::int64_t sendQuery(std::int32_t dataType, const std::string& key = {});
    std::int64_t sendOperation(std::int32_t dataType, nvservice::EZvDataOperation operation, nvservice::IDataPtr record,
                               const std::string& operationId);
    Answer query(std::int32_t dataType, const std::string& key = {});
    Answer operate(std::int32_t dataType, nvservice::EZvDataOperation operation, nvservice::IDataPtr record,
                   const std::string& operationId);
    /// Reads the answer of the only request that is under way. The error is `NotConnected` when the connection ended.
    Answer answerTo(std::int64_t id);

    std::int64_t nextId() { return ++m_lastId; }
    QSslSocket& socket() { return m_socket; }

private:
    QSslSocket m_socket;
    wire::FrameReader m_reader{wire::LimitsAfterLogIn.bytes};
    QByteArray m_bytes;
    std::int64_t m_lastId = 0;
};

} // namespace testservice
