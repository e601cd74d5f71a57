#pragma once

#include <QSet>
#include <QString>
#include <utility>

namespace WQ
{

/// How the texts of a `FilterPair` decide about a row.
enum EFilterType : int {
    FilterNone = 0,     ///< No filter; every row is admitted.
    FilterContains = 1, ///< The cell's text contains one of the texts, ignoring case. A text of Latin letters (digits
                        ///< may be among them) also admits a cell whose pinyin, syllables or initials, contains it.
    FilterOneOf = 2     ///< The cell's filter text (`IBaseHpfTableData::getFilterQString`) equals one of the texts.
};

/// A filter of one column: its type (`EFilterType`) and its texts. A contains filter without any non-empty text admits
/// every row; a one-of filter with no texts admits none.
using FilterPair = std::pair<int, QSet<QString>>;

} // namespace WQ
