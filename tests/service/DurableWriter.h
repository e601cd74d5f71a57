// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"

#include <QString>
#include <QStringList>

#include <set>
#include <string>

namespace testservice
{

/// A process whose threads add and modify groups of the first server without end, as the user "writer". It says the
/// operation id of every operation that was answered with success, one to a line, and begins every id with `run`. Gives
/// an exit code when an operation fails.
int writeWithoutEnd(const QString& location, const QString& run);

/// What became of the operations of a run.
struct Aftermath {
    QStringList findings; ///< whatever must not be; empty is good
    std::set<std::string> stored;
    int unacknowledged = 0; ///< stored all the same
};

/// Compares a store with what was acknowledged: all of that is stored, nothing twice, nothing by halves.
Aftermath aftermathOf(service::Store& store, const QString& run, const QStringList& acknowledged);

} // namespace testservice
