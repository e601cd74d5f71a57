#pragma once

#include <QString>

namespace service
{

/// Whether a text holds characters that nobody sees: control and format characters (among them those that turn the
/// direction of writing around), line separators, lone surrogates.
bool hasInvisibleCharacters(const QString& text);

} // namespace service
