// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Codec.h>
#include <utils/NVError.h>

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>
#include <string>

namespace wire
{

struct Hello;

/// Versions and limits of the protocol, see docs/wire-protocol.md.

constexpr std::int32_t OldestProtocol = 1; ///< the oldest supported version
constexpr std::int32_t NewestProtocol = 2;
/// The first version with changes.
constexpr std::int32_t ChangesProtocol = 2;

using nvservice::MaxRecordBytes;
/// The largest record with the message around it.
constexpr std::size_t MaxMessageBytes = MaxRecordBytes + std::size_t{512} * 1024;
/// A chunk of a reply ends when it reaches this size. Only a single larger record makes a larger chunk.
constexpr std::size_t ReplyChunkBytes = std::size_t{256} * 1024;
constexpr std::size_t MaxOperationIdBytes = 128;
constexpr std::size_t MaxNameBytes = 1024; ///< of user, password, names and versions
/// The maximum of all texts outside records; longer texts are cut when they are sent.
constexpr std::size_t MaxTextBytes = std::size_t{64} * 1024;

/// A side that hears nothing for this many keep-alive intervals closes the connection.
constexpr int SilentIntervals = 3;

/// The text of `NotLoggedIn` for a request without a valid log-in, to be translated.
constexpr char NotLoggedInText[] = QT_TRANSLATE_NOOP("wire", "您尚未登录或登录已失效，请重新登录");

/// The text of `Unsupported` for a message of an unknown kind, to be translated.
constexpr char UnknownKindText[] = QT_TRANSLATE_NOOP("wire", "消息类型未知");

/// The maximum number of documents and arrays in a message; more than any stored record needs.
constexpr std::size_t MaxDocuments = std::size_t{256} * 1024;

/// Limits of the server for a client that has not logged in.
constexpr nvservice::DocumentLimits LimitsBeforeLogIn{4, std::size_t{4} * 1024, 64, MaxNameBytes};
/// Limits of the server for a logged-in client, and of the client after the welcome.
constexpr nvservice::DocumentLimits LimitsAfterLogIn{nvservice::MaxDocumentDepth, MaxMessageBytes,
                                                     nvservice::MaxDocumentElements, MaxTextBytes, MaxDocuments};

/// The SDK version of this side, "major.minor".
std::string sdkVersion();

/// Server: chooses the newest protocol version that both sides support. The error (`Unsupported`) names the versions in
/// Chinese. An SDK of another major version is refused too.
utils::NVError chooseProtocol(const Hello& hello, std::int32_t& protocol);

} // namespace wire
