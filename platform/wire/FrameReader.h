#pragma once

#include <nvservice/Codec.h>
#include <utils/NVError.h>

#include <cstddef>
#include <string>

namespace wire
{

/// The bytes of one message. It is a document, whose first four bytes are its length.
using Frame = std::string;

/// Cuts a stream of bytes into frames. Looks at lengths only: what a frame holds is nobody's knowledge before
/// decode(). Not thread-safe.
///
/// A length is compared with the limit before anything is allocated, and memory grows with the bytes that have come,
/// so that a peer who announces much and sends little costs little.
class FrameReader
{
public:
    /// @param maxFrameBytes  the longest frame that is accepted.
    explicit FrameReader(std::size_t maxFrameBytes);

    /// Holds for frames whose length has not been read yet.
    void setMaxFrameBytes(std::size_t bytes);

    /// Takes bytes up to the end of one frame and says how many it took. It takes none while a complete frame waits to
    /// be taken, and none after an error. The error (Malformed, ResourceExhausted) means that framing is lost: the
    /// connection must be closed.
    std::size_t feed(const char* data, std::size_t size, utils::NVError& error);

    /// Whether a frame is complete.
    bool hasFrame() const;
    /// The complete frame; the reader begins the next one.
    Frame take();
    /// Whether a part of a frame has come: an end of the stream now is a cut.
    bool isInFrame() const;
    /// What the present frame will be; 0 while its length has not come.
    std::size_t length() const { return m_length; }
    /// How much of the present frame has come.
    std::size_t received() const { return m_frame.size(); }

private:
    utils::NVError readLength();

    std::size_t m_maxFrameBytes;
    std::size_t m_length = 0; ///< of the present frame; 0 while it is not known
    Frame m_frame;
    utils::NVError m_broken;
};

} // namespace wire
