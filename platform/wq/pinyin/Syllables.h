// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <vector>

namespace WQ
{

/// For each UTF-16 unit of the text, the syllable of its character, with v for ü; null if it has none.
std::vector<const char*> pinyinSyllables(const QString& text);

} // namespace WQ
