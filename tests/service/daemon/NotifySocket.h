// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <boost/noncopyable.hpp>

#include <algorithm>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace testservice
{

/// What a service manager would hear.
class NotifySocket : private boost::noncopyable
{
public:
    explicit NotifySocket(const QString& path) : m_path(path), m_socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, m_path.toLocal8Bit().constData(), sizeof address.sun_path);
        m_isOpen = ::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    ~NotifySocket() { ::close(m_socket); }

    bool isOpen() const { return m_isOpen; }
    const QString& path() const { return m_path; }
    /// Every assignment so far: "READY=1".
    QStringList heard()
    {
        char bytes[4096];
        for (ssize_t size = 0; (size = ::recv(m_socket, bytes, sizeof bytes, MSG_DONTWAIT)) > 0;) {
            m_heard << QString::fromUtf8(bytes, static_cast<int>(size)).split('\n', Qt::SkipEmptyParts);
        }
        return m_heard;
    }
    int count(const QString& start)
    {
        const QStringList all = heard();
        return static_cast<int>(
            std::count_if(all.begin(), all.end(), [&start](const QString& line) { return line.startsWith(start); }));
    }

private:
    QString m_path;
    int m_socket;
    bool m_isOpen = false;
    QStringList m_heard;
};

} // namespace testservice
