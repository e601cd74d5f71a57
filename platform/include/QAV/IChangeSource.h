// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <nvservice/CChangeInfo.h>

#include <functional>
#include <vector>

namespace QAV
{

/// What a transport can do beside ITransport: tell what changes on its server. A transport that inherits this class,
/// too, offers it to the client centre.
///
/// Threads: as for ITransport.
class QAV_EXPORT IChangeSource
{
public:
    /// Changes since those that the handler was told before.
    struct Changes {
        std::vector<nvservice::CChangeInfoPtr> records; ///< at most one per data type and group: the latest
        bool isComplete = true; ///< false: anything on the server may have changed, and `records` is empty
    };
    using ChangeHandler = std::function<void(Changes)>;

    virtual ~IChangeSource() = default;

    /// Replaces the handler for changes that the logged-in user may read, from now on; an empty one ends it. A
    /// concurrent change may still reach the old handler.
    ///
    /// Between two log-ins nothing is told. After a lost connection the handler is told at once what it has missed.
    virtual void setChangeHandler(ChangeHandler handler) = 0;
};

} // namespace QAV
