// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSet>
#include <QString>
#include <utility>

namespace WQ
{

/// How a `FilterPair` uses its texts.
enum EFilterType : int {
    FilterNone = 0,     ///< No filter; every row passes.
    FilterContains = 1, ///< The cell's text contains one of the texts, ignoring case. If a text has Latin letters, and
                        ///< otherwise only digits and Chinese characters, rows that `CSearchIndex` finds pass too.
    FilterOneOf = 2     ///< The cell's filter text (`IBaseHpfTableData::getFilterQString`) equals one of the texts.
};

/// The filter of one column: its type (`EFilterType`) and its texts. With a contains filter without a non-empty text,
/// every row passes; with a one-of filter without texts, none does.
using FilterPair = std::pair<int, QSet<QString>>;

} // namespace WQ
