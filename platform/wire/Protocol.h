#pragma once

#include <nvservice/Codec.h>
#include <utils/NVError.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace wire
{

struct Hello;

/// The protocol as docs/wire-protocol.md tells it: versions and limits.

constexpr std::int32_t OldestProtocol = 1; ///< this side still speaks it
constexpr std::int32_t NewestProtocol = 1;

using nvservice::MaxRecordBytes;
/// One record of the largest size and its surroundings, below the 16 MiB at which the document classes throw.
constexpr std::size_t MaxMessageBytes = MaxRecordBytes + std::size_t{512} * 1024;
/// A chunk of a reply is closed once it holds that much; only a single larger record makes a larger chunk.
constexpr std::size_t ReplyChunkBytes = std::size_t{256} * 1024;
constexpr std::size_t MaxOperationIdBytes = 128;
constexpr std::size_t MaxNameBytes = 1024; ///< of user, password, names and versions
/// Of every text outside records; what is longer is cut when it is sent.
constexpr std::size_t MaxTextBytes = std::size_t{64} * 1024;

/// Documents and arrays of a message: more than the largest record needs that a service keeps.
constexpr std::size_t MaxDocuments = std::size_t{256} * 1024;

/// What the server accepts of a peer that nobody knows yet.
constexpr nvservice::DocumentLimits LimitsBeforeLogIn{4, std::size_t{4} * 1024, 64, MaxNameBytes};
/// What the server accepts of a user, and the client of a server that has welcomed it.
constexpr nvservice::DocumentLimits LimitsAfterLogIn{nvservice::MaxDocumentDepth, MaxMessageBytes,
                                                     nvservice::MaxDocumentElements, MaxTextBytes, MaxDocuments};

/// The SDK version of this side, "major.minor".
std::string sdkVersion();

/// Server: chooses the newest protocol that both sides speak. The error (`Unsupported`) says in Chinese which versions
/// do not fit; an SDK of another major version does not.
utils::NVError chooseProtocol(const Hello& hello, std::int32_t& protocol);

} // namespace wire
