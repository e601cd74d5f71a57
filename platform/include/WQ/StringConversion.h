#pragma once

#include <WQ/Export.h>

#include <QString>

#include <string>

namespace WQ
{

/// UTF-8 of the records to the text of the widgets. Bytes that are no UTF-8 become U+FFFD.
WQ_EXPORT QString sToQs(const std::string& utf8);
/// The other way; exact for every text without unpaired surrogates.
WQ_EXPORT std::string qsToS(const QString& text);

} // namespace WQ
