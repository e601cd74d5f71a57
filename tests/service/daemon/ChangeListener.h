// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/RawClient.h"

#include <map>
#include <set>
#include <string>

namespace testservice
{

/// What a client was told, merged as the server merges: the latest by group and data type.
class HeardChanges
{
public:
    void add(const std::vector<nvservice::CChangeInfoPtr>& changes, bool isComplete)
    {
        m_isComplete = m_isComplete && isComplete;
        for (const nvservice::CChangeInfoPtr& change : changes) {
            const std::int64_t last = m_revisions[{change->groupId, change->dataType}];
            m_isInOrder = m_isInOrder && change->revision() > last;
            m_revisions[{change->groupId, change->dataType}] = change->revision();
            m_names.insert(change->groupName);
        }
    }

    bool isComplete() const { return m_isComplete; }
    bool isInOrder() const { return m_isInOrder; } ///< nothing was told twice or too late
    bool knows(const std::string& name) const { return m_names.count(name) > 0; }
    const std::map<std::pair<int, int>, std::int64_t>& revisions() const { return m_revisions; }

private:
    bool m_isComplete = true;
    bool m_isInOrder = true;
    std::map<std::pair<int, int>, std::int64_t> m_revisions;
    std::set<std::string> m_names;
};

/// A client without the client's code that listens.
struct ChangeListener {
    RawClient client;
    HeardChanges heard;
    std::string position;

    bool begin(int port, const std::string& user)
    {
        if (!client.open(port) || !client.hello() || !client.logIn(user, "right").isSuccess()) {
            return false;
        }
        client.send(wire::encode(wire::Listen{position}));
        return take();
    }
    bool take()
    {
        const std::optional<wire::Changed> changed = client.expect<wire::Changed>();
        if (changed) {
            position = changed->position;
            heard.add(changed->changes, changed->isComplete);
        }
        return changed.has_value();
    }
    bool takeUntil(const std::string& name)
    {
        while (!heard.knows(name)) {
            if (!take()) {
                return false;
            }
        }
        return true;
    }
};

} // namespace testservice
