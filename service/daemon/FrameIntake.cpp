// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/FrameIntake.h"

#include "platform/wire/Protocol.h"

#include <algorithm>
#include <utility>

namespace service::daemon
{

namespace
{

// Shorter messages need no room. Before a log-in no longer ones are allowed.
constexpr std::size_t ShortMessageBytes = wire::LimitsBeforeLogIn.bytes;

} // namespace

FrameIntake::FrameIntake(ConversationContext& context, std::function<void()> granted)
    : m_context(context), m_granted(std::move(granted)), m_reader(ShortMessageBytes)
{
}

FrameIntake::~FrameIntake()
{
    m_context.room.forget(this);
}

void FrameIntake::append(const char* data, std::size_t size)
{
    m_input.erase(0, std::exchange(m_taken, 0));
    m_input.append(data, size);
}

void FrameIntake::clear()
{
    m_input.clear();
    m_taken = 0;
}

utils::NVError FrameIntake::read()
{
    if (!m_reader.isInFrame()) {
        m_began = m_context.now();
    }
    // Reads only the length at first, because a long message needs room before it is read.
    const bool isLengthKnown = m_reader.length() != 0;
    const std::size_t rest = m_input.size() - m_taken;
    utils::NVError error;
    m_taken += m_reader.feed(m_input.data() + m_taken, isLengthKnown ? rest : std::min(rest, bson::LengthBytes), error);
    const bool needsRoom = !isLengthKnown && m_reader.length() > ShortMessageBytes;
    if (error.isSuccess() && !m_reader.hasFrame() && needsRoom) {
        askForRoom();
    }
    return error;
}

void FrameIntake::askForRoom()
{
    m_isWaitingForRoom = true;
    const auto isAsking = std::make_shared<bool>(true);
    m_context.room.ask(this, m_reader.length(), [this, isAsking](MessageRoom::Share share) {
        m_room = std::move(share);
        m_began = m_context.now();
        m_isWaitingForRoom = false;
        if (!*isAsking) {
            m_granted();
        }
    });
    *isAsking = false;
}

bool FrameIntake::isLate() const
{
    if (!m_reader.isInFrame() || m_isWaitingForRoom) {
        return false;
    }
    const std::chrono::duration<double> due(static_cast<double>(m_reader.received()) / SlowBytesPerSecond);
    return m_context.now() - m_began - due > std::chrono::seconds(m_context.timeouts.messageSeconds);
}

} // namespace service::daemon
