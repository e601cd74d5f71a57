// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>

#include <QString>

#include <string>

namespace service
{

/// True if a text has invisible characters: control and format characters (such as those that change the direction of
/// writing), line separators, fillers, variation selectors and blank symbols.
bool hasInvisibleCharacters(const QString& text);

/// Why a text cannot be a name, to be put after the name of the field; empty if it can.
std::string visibleTextProblem(const QString& text);

/// A text of a request for a message: in quotation marks, valid UTF-8, shortened.
std::string quoted(const std::string& text);

/// True if a text anywhere in the document has NUL characters, which databases cannot store.
bool hasNulCharacters(const bson::BSONObj& document);

} // namespace service
