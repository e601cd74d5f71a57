// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClient.h>
#include <utils/CMailbox.h>

#include <functional>
#include <string>
#include <vector>

namespace QAV
{

/// Queries records for an object of the user-interface thread, which has this as a member. Only the reply to the latest
/// query is delivered.
class CLatestQuery
{
public:
    /// Runs on the service thread. The returned task runs on the user-interface thread, unless the query is overtaken.
    using Prepare = std::function<std::function<void()>(const utils::NVError& error,
                                                        const std::vector<nvservice::IDataPtr>& records)>;

    /// @param client  null: all servers
    void send(const boost::shared_ptr<CKolmClient>& client, int dataType, const std::string& key, Prepare prepare);
    /// Drops the reply to the query that is under way.
    void drop() { ++m_number; }

private:
    unsigned m_number = 0;
    utils::CMailbox m_mailbox;
};

} // namespace QAV
