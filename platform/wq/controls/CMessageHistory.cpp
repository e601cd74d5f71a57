// SPDX-License-Identifier: Apache-2.0
#include <WQ/CMessageHistory.h>

namespace WQ
{

CMessageHistory::CMessageHistory() = default;

CMessageHistory::~CMessageHistory() = default;

CMessageHistory& CMessageHistory::instance()
{
    static CMessageHistory history;
    return history;
}

void CMessageHistory::add(const QString& title, const QString& text)
{
    if (m_messages.size() == Capacity) {
        m_messages.removeFirst();
    }
    m_messages.append({QDateTime::currentDateTime(), title, text});
    emit sigChanged();
}

void CMessageHistory::clear()
{
    m_messages.clear();
    emit sigChanged();
}

} // namespace WQ
