// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <nvservice/CChangeInfo.h>

#include <QString>

#include <vector>

namespace QAV
{

/// A panel that inherits this class beside IkolmDockableWidget hears what changes on the servers. UI thread only.
class QAV_EXPORT IChangeListener
{
public:
    virtual ~IChangeListener();

    /// Called by the client, from the event loop, for changes that the user may read: by others, and by the user, here
    /// (`CKolmClientCenter::isOwnChange`) or elsewhere. It is called while the panel is hidden, too, and for every
    /// server, whichever the panel shows.
    /// @param serverName  the server that has changed
    /// @param changes     at most one per data type and group: the latest that the user may read
    /// @param isComplete  false: anything on the server may have changed, and `changes` is empty
    virtual void onChanged(const QString& serverName, const std::vector<nvservice::CChangeInfoPtr>& changes,
                           bool isComplete) = 0;
};

} // namespace QAV
