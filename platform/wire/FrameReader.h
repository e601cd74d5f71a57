// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Codec.h>
#include <utils/NVError.h>

#include <cstddef>
#include <string>

namespace wire
{

/// The bytes of one message: a document, whose first four bytes are its length.
using Frame = std::string;

/// Splits a stream of bytes into frames. It reads only lengths; decode() reads the contents. Not thread-safe.
///
/// A length is compared with the limit before anything is allocated. Memory grows with the received bytes, so a peer
/// that announces much and sends little costs little.
class FrameReader
{
public:
    /// @param maxFrameBytes  the maximum length of a frame
    explicit FrameReader(std::size_t maxFrameBytes);

    /// Applies to frames whose length has not been read yet.
    void setMaxFrameBytes(std::size_t bytes);

    /// Reads bytes up to the end of one frame and returns their number. Reads none while a complete frame waits for
    /// take(), and none after an error. An error (Malformed, ResourceExhausted) means that framing is lost: close the
    /// connection.
    std::size_t feed(const char* data, std::size_t size, utils::NVError& error);

    /// True if a frame is complete.
    bool hasFrame() const;
    /// Returns the complete frame and begins the next one.
    Frame take();
    /// True if a part of a frame was received: the stream must not end now.
    bool isInFrame() const;
    /// The length of the current frame; 0 until it was received.
    std::size_t length() const { return m_length; }
    /// The number of received bytes of the current frame.
    std::size_t received() const { return m_frame.size(); }

private:
    utils::NVError readLength();

    std::size_t m_maxFrameBytes;
    std::size_t m_length = 0; ///< of the current frame; 0 while it is unknown
    Frame m_frame;
    utils::NVError m_broken;
};

} // namespace wire
