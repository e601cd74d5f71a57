// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace service::daemon
{

enum class EDiskState {
    Enough,
    Low, ///< less than 4 GiB and less than 5 % of the disk are free
    Full ///< no room for the largest change
};

/// The state of the disk with a SQLite file. `Enough` for a PostgreSQL database, whose server has its own disk, and if
/// the state is unknown.
EDiskState diskStateOf(const QString& store);

} // namespace service::daemon
