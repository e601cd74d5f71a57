// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Export.h>
#include <utils/NVError.h>

#include <QByteArray>
#include <QString>

namespace utils
{

/// The encoding of a text file.
enum class ETextEncoding {
    Detected, ///< one of the two below, see `decodeText`
    Utf8,     ///< with or without byte order mark
    Gb18030
};

/// Decodes the bytes of a file into `text`. Errors: `Malformed` if the bytes are invalid in the encoding or contain
/// NUL; `Conflict` if the encoding is ambiguous. `text` is empty after an error. May be called from any thread.
///
/// How an encoding is detected:
/// - A UTF-8 byte order mark means UTF-8.
/// - So does a line whose non-ASCII characters are common Chinese when read as UTF-8, and are not when read as GB18030.
///   Common Chinese means the ideographs, punctuation marks and full-width forms of GB 2312.
/// - Otherwise, bytes that are valid in only one of the encodings have that one. Bytes that are valid in both are
///   ambiguous, unless both give the same text.
UTILS_EXPORT NVError decodeText(const QByteArray& bytes, ETextEncoding encoding, QString& text);

} // namespace utils
