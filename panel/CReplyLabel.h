#pragma once

#include <QObject>

#include <optional>
#include <utility>

namespace QAV
{

/// Tells a slot which request the reply that it gets answers.
///
/// A reply travels as a signal whose arguments have no room for that, so the label goes right ahead of it by the same
/// way: at once on the thread of the receiver, queued from another one. A reply that is still queued when a later
/// request is sent can so be told from the reply to that one. The callbacks of one label come on one thread.
template <typename Label>
class CReplyLabel
{
public:
    /// To be called in the callback, right before it emits the signal. `receiver` has the slot and owns this label.
    void sendAhead(QObject* receiver, Label label)
    {
        QMetaObject::invokeMethod(receiver, [this, label = std::move(label)] { m_label = label; });
    }

    /// To be called first thing in the slot. Empty when no label came ahead.
    std::optional<Label> take() { return std::exchange(m_label, std::nullopt); }

private:
    std::optional<Label> m_label;
};

} // namespace QAV
