#pragma once

#include <QObject>

#include <functional>
#include <memory>

namespace workbench
{

/// Brings work from any thread to the UI thread: the data crosses in a mutex-guarded queue, Qt only wakes the thread.
/// Work that is left when the inbox is destroyed is dropped.
class CUiInbox : public QObject
{
    struct Box;

public:
    using Task = std::function<void()>;

    /// Where other threads post to. It may outlive the inbox; what is posted then is dropped.
    class Address
    {
    public:
        void post(Task task) const;

    private:
        friend class CUiInbox;
        std::shared_ptr<Box> m_box;
    };

    explicit CUiInbox(QObject* parent = nullptr);
    ~CUiInbox() override;

    Address address() const { return m_address; }

    bool event(QEvent* event) override;

private:
    Address m_address;
};

} // namespace workbench
