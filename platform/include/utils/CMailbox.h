// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Export.h>

#include <QObject>

#include <functional>
#include <memory>

namespace utils
{

/// Runs tasks from any thread on the thread that created the mailbox, which needs an event loop. Tasks run one by one,
/// in the order in which they were posted. When the mailbox is destroyed, the remaining tasks are dropped. So an object
/// with a mailbox as a member can safely post tasks that use the object.
///
/// Threads: create and destroy a mailbox on the same thread. A task may destroy its own mailbox.
class UTILS_EXPORT CMailbox : public QObject
{
    struct Box;

public:
    using Task = std::function<void()>;

    /// Posts tasks to the mailbox. Thread-safe. An address may outlive its mailbox; it drops tasks then.
    class UTILS_EXPORT Address
    {
    public:
        void post(Task task) const;

    private:
        friend class CMailbox;
        std::shared_ptr<Box> m_box;
    };

    CMailbox();
    ~CMailbox() override;

    const Address& address() const { return m_address; }

    bool event(QEvent* event) override;

private:
    Address m_address;
};

} // namespace utils
