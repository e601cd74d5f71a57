// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace samples
{

/// The fields of every record class, the enumerations in them and the codes of data types and rights, as Markdown:
/// names, types and defaults from the descriptions that the codec works with, meanings from the comments in the public
/// headers of `headerFolder`.
QString recordTables(const QString& headerFolder);

} // namespace samples
