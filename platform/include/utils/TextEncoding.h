#pragma once

#include <utils/Export.h>
#include <utils/NVError.h>

#include <QByteArray>
#include <QString>

namespace utils
{

/// How the bytes of a text file are to be read.
enum class ETextEncoding {
    Detected, ///< whichever of the two it is; see `decodeText`
    Utf8,     ///< with or without byte order mark
    Gb18030
};

/// Gives the text of a file. `Malformed` when it isn't in the encoding, or holds NUL bytes; `Conflict` when both
/// encodings are possible and nothing tells which is right. `text` is empty then. May be called from any thread.
///
/// A byte order mark of UTF-8 decides. Without one a line may decide, for UTF-8: read as UTF-8 its characters beyond
/// ASCII are everyday Chinese, and read as GB18030 they are not. Everyday Chinese are the ideographs, punctuation marks
/// and full-width forms of GB 2312. Without such a line, bytes that are valid in one encoding only are in that one, and
/// bytes that are valid in both are ambiguous, unless both give the same text.
UTILS_EXPORT NVError decodeText(const QByteArray& bytes, ETextEncoding encoding, QString& text);

} // namespace utils
