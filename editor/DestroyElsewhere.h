// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QThreadPool>

#include <utility>

namespace QAV
{

/// Destroys long lists of records on another thread: it takes longer than the user may wait for an event.
template <typename Records>
void destroyElsewhere(Records records)
{
    QThreadPool::globalInstance()->start([dropped = std::move(records)] {});
}

} // namespace QAV
