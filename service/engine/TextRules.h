#pragma once

#include <nvservice/Bson.h>

#include <QString>

#include <string>

namespace service
{

/// Whether a text holds characters that nobody sees: control and format characters (among them those that turn the
/// direction of writing around), line separators, lone surrogates.
bool hasInvisibleCharacters(const QString& text);

/// A text of a request as it may stand in a message, in quotation marks: valid and not endless.
std::string quoted(const std::string& text);

/// Texts that no database keeps whole: with NUL characters, anywhere in the document.
bool hasNulCharacters(const bson::BSONObj& document);

} // namespace service
