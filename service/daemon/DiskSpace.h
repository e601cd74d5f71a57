#pragma once

#include <QString>

namespace service::daemon
{

enum class EDiskState {
    Enough,
    Low, ///< less than a twentieth of the disk and than 4 GiB is free
    Full ///< no room for a change of the largest size
};

/// The state of the disk that a SQLite file lies on. `Enough` for a PostgreSQL database, whose server has its own disk,
/// and where the system cannot tell.
EDiskState diskStateOf(const QString& store);

} // namespace service::daemon
