// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/wire/FrameReader.h"
#include "service/daemon/ConversationContext.h"

#include <boost/noncopyable.hpp>

#include <functional>
#include <string>

namespace service::daemon
{

/// Cuts the bytes of a client into messages. A message beyond 4 KiB is read when there is a share of the MessageRoom
/// for it; until then, and while nobody reads, its bytes wait.
///
/// Used on one thread.
class FrameIntake : private boost::noncopyable
{
public:
    /// @param granted  called when there is room for a message that had to wait for it, while those who returned the
    ///                 room are still at work
    FrameIntake(ConversationContext& context, std::function<void()> granted);
    ~FrameIntake();

    void append(const char* data, std::size_t size);
    void clear();
    /// The limit for the messages that begin from now on.
    void setMaxFrameBytes(std::size_t bytes) { m_reader.setMaxFrameBytes(bytes); }

    bool hasInput() const { return m_taken < m_input.size(); }
    /// Reads on, at most to the end of a message. The error is that of lost framing.
    utils::NVError read();
    bool hasFrame() const { return m_reader.hasFrame(); }
    wire::Frame takeFrame() { return m_reader.take(); }
    /// Of the message that was taken last. Empty for a short one.
    MessageRoom::Share takeRoom() { return std::move(m_room); }
    void releaseRoom() { m_room = {}; }

    bool isInFrame() const { return m_reader.isInFrame(); }
    bool isWaitingForRoom() const { return m_isWaitingForRoom; }
    /// Whether a message has begun and arrives too slowly.
    bool isLate() const;

private:
    void askForRoom();

    ConversationContext& m_context;
    std::function<void()> m_granted;
    wire::FrameReader m_reader;
    std::string m_input;
    std::size_t m_taken = 0;   ///< bytes of the input that the reader has
    MessageRoom::Share m_room; ///< for a large message that is being received or handled
    TimePoint m_began;         ///< of the message
    bool m_isWaitingForRoom = false;
};

} // namespace service::daemon
