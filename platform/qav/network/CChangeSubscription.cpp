// SPDX-License-Identifier: Apache-2.0
#include "network/CChangeSubscription.h"

#include <utility>

namespace QAV
{

namespace
{

// No server gives this one.
constexpr char UnknownPosition[] = "unknown";

} // namespace

bool CChangeSubscription::setWanted(bool isWanted)
{
    const bool isOther = std::exchange(m_isWanted, isWanted) != isWanted;
    if (isOther) {
        forget();
    }
    return isOther;
}

wire::Listen CChangeSubscription::request()
{
    wire::Listen listen{m_position};
    // What is missed before the server tells a position is missed for good.
    if (m_position.empty()) {
        m_position = UnknownPosition;
    }
    return listen;
}

void CChangeSubscription::take(wire::Changed& message)
{
    if (!m_isWanted) {
        return;
    }
    m_position = message.position;
    if (!message.isComplete || !message.changes.empty()) {
        m_report({std::move(message.changes), message.isComplete});
    }
}

} // namespace QAV
