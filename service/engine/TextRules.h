// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>

#include <QString>

#include <string>

namespace service
{

/// Whether a text holds characters that nobody sees: control and format characters (among them those that turn the
/// direction of writing around), line separators, fillers, variation selectors and signs without ink.
bool hasInvisibleCharacters(const QString& text);

/// What is wrong with a name that people have to tell from others; empty: nothing. To follow what it is called.
std::string visibleTextProblem(const QString& text);

/// A text of a request as it may stand in a message, in quotation marks: valid and not endless.
std::string quoted(const std::string& text);

/// Texts that no database keeps whole: with NUL characters, anywhere in the document.
bool hasNulCharacters(const bson::BSONObj& document);

} // namespace service
