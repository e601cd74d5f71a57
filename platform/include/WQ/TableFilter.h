#pragma once

#include <QSet>
#include <QString>
#include <utility>

namespace WQ
{

/// How the texts of a `FilterPair` decide about a row.
enum EFilterType : int {
    FilterNone = 0,     ///< No filter; every row is admitted.
    FilterContains = 1, ///< The cell's text contains one of the texts, ignoring case. A text with Latin letters and, of
                        ///< others, only digits and Chinese characters also admits what `CSearchIndex` finds by it.
    FilterOneOf = 2     ///< The cell's filter text (`IBaseHpfTableData::getFilterQString`) equals one of the texts.
};

/// A filter of one column: its type (`EFilterType`) and its texts. A contains filter without any non-empty text admits
/// every row; a one-of filter with no texts admits none.
using FilterPair = std::pair<int, QSet<QString>>;

} // namespace WQ
