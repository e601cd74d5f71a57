// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/IChangeSource.h>

#include "platform/wire/Messages.h"

#include <functional>
#include <string>

namespace QAV
{

/// The changes that one server is to tell, over all connections to it.
class CChangeSubscription
{
public:
    using Report = std::function<void(IChangeSource::Changes)>;

    explicit CChangeSubscription(Report report) : m_report(std::move(report)) {}

    /// Whether somebody wants to hear of changes. Returns false if that is nothing new.
    bool setWanted(bool isWanted);
    bool isWanted() const { return m_isWanted; }
    /// What was told belongs to another user.
    void forget() { m_position.clear(); }
    /// What to ask the server for on a new connection or after a log-in.
    wire::Listen request();
    void take(wire::Changed& message);

private:
    const Report m_report;
    bool m_isWanted = false;
    std::string m_position; ///< of what was heard; empty: what follows the log-in is wanted
};

} // namespace QAV
