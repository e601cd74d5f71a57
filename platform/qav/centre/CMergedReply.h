// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "centre/CRequestLedger.h"

#include <string>
#include <vector>

namespace QAV
{

/// Collects the replies of several servers to one query and answers once. Service thread only.
class CMergedReply
{
public:
    /// @param serverNames  the order of the records
    CMergedReply(std::vector<std::string> serverNames, PendingRequest::Done done);

    /// Adds the reply of the server at `index`. The last one triggers the callback.
    void take(std::size_t index, ITransport::Reply reply, bool errorNamesServer);

private:
    struct Part {
        std::string serverName;
        ITransport::Reply reply;
        bool errorNamesServer = false;
    };

    utils::NVError mergedError() const;
    std::vector<nvservice::IDataPtr> mergedRecords() const;

    std::vector<Part> m_parts;
    std::size_t m_missing;
    PendingRequest::Done m_done;
};

} // namespace QAV
