// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVarLengthArray>

namespace WQ::pinyin
{

/// PinyinKeys as bytes, for those who make very many.
struct SearchKeys {
    QVarLengthArray<char, 256> syllables;
    QVarLengthArray<char, 64> initials;
};

SearchKeys searchKeys(const QString& text);

} // namespace WQ::pinyin
