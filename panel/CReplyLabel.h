// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include <optional>
#include <utility>

namespace QAV
{

/// Tells a slot to which request a reply belongs.
///
/// The signal of a reply has no argument for that, so the label is sent right before it in the same way: directly on
/// the receiver's thread, queued from another thread. So a reply that is still queued when a later request is sent can
/// be distinguished from the later reply. All callbacks with one label must run on one thread.
template <typename Label>
class CReplyLabel
{
public:
    /// Call it in the callback right before the signal is emitted. `receiver` has the slot and owns this label.
    void sendAhead(QObject* receiver, Label label)
    {
        QMetaObject::invokeMethod(receiver, [this, label = std::move(label)] { m_label = label; });
    }

    /// Call it first thing in the slot. Empty if no label was sent.
    std::optional<Label> take() { return std::exchange(m_label, std::nullopt); }

private:
    std::optional<Label> m_label;
};

} // namespace QAV
