// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CCallbackGate.h>
#include <QAV/CKolmClient.h>
#include <nvservice/CQueryKey.h>

#include <QString>

#include <functional>

namespace QAV
{

/// One query, and an entry of the audit that is looked for in the pages of its answer.
struct QueryPart {
    std::int32_t dataType = 0;
    nvservice::CQueryKey key;
    std::int64_t entryId = 0; ///< 0: the first page is the answer
};

struct QueryAnswer {
    utils::NVError error;
    std::vector<nvservice::IDataPtr> records;
};

/// Sends a query to a server. The callback has passed the gate.
void sendQuery(const QString& serverName, std::int32_t dataType, const nvservice::CQueryKey& key,
               const QueryCallback& callback);
/// Ends the queries of this data type to a server: they are answered with `Cancelled`.
void cancelQueries(const QString& serverName, std::int32_t dataType);
/// The cursor of the next page; empty if this was the last one.
std::string nextCursor(const bson::BSONObj& document);

/// Asks several queries at once and hands over all answers together. Only the last `ask` is answered. UI thread only.
class CJointQuery
{
public:
    using Handler = std::function<void(const std::vector<QueryAnswer>&)>;

    /// @param gate  of the widget that owns this object
    explicit CJointQuery(const CCallbackGate& gate) : m_gate(gate) {}

    void ask(const QString& serverName, const std::vector<QueryPart>& parts, Handler handler);
    void drop() { ++m_number; }
    /// Another one after each `ask` and `drop`.
    int number() const { return m_number; }

private:
    void send(const QString& serverName, std::size_t index, QueryPart part);
    void take(std::size_t index, QueryAnswer answer);

    const CCallbackGate& m_gate;
    int m_number = 0;
    std::vector<QueryAnswer> m_answers;
    std::size_t m_open = 0;
    Handler m_handler;
};

/// A list that comes in pages. UI thread only.
class CPagedQuery
{
public:
    enum EState { Idle, Loading, HasMore, Complete, Failed };
    using Handler = std::function<void(const QueryAnswer&)>;

    /// @param gate     of the widget that owns this object
    /// @param handler  receives every page of the last `start`, and every failure
    CPagedQuery(const CCallbackGate& gate, Handler handler) : m_gate(gate), m_handler(std::move(handler)) {}

    /// Asks for the first page. Later answers to earlier questions have no effect.
    void start(const QString& serverName, std::int32_t dataType, const nvservice::CQueryKey& key);
    /// Asks for the next page, also after a failure; nothing while one is loading, or if there is none.
    void more();
    void stop();
    EState state() const { return m_state; }

private:
    void send();

    const CCallbackGate& m_gate;
    const Handler m_handler;
    EState m_state = Idle;
    int m_number = 0;
    QString m_serverName;
    std::int32_t m_dataType = 0;
    nvservice::CQueryKey m_key;
    std::string m_cursor;
};

} // namespace QAV
