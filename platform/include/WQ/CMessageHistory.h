// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

#include <QDateTime>
#include <QObject>
#include <QVector>

namespace WQ
{

/// The messages that were shown lately: CMessageBox and CMessageTip add theirs, the client those of its status bar. One
/// per process. UI thread only.
class WQ_EXPORT CMessageHistory : public QObject
{
    Q_OBJECT

public:
    /// Older messages are dropped.
    static constexpr int Capacity = 200;

    struct Message {
        QDateTime time;
        QString title; ///< of a box, else empty
        QString text;
    };

    static CMessageHistory& instance();

    void add(const QString& title, const QString& text);
    /// The oldest first.
    const QVector<Message>& messages() const { return m_messages; }
    /// For the next user.
    void clear();

Q_SIGNALS:
    void sigChanged();

private:
    CMessageHistory();
    ~CMessageHistory() override;

    QVector<Message> m_messages;
};

} // namespace WQ
