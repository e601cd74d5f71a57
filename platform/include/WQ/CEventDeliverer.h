#pragma once

#include <WQ/EventType.h>
#include <WQ/Export.h>

#include <QString>

class QWidget;

namespace WQ
{

/// A widget that receives the user actions of the controls below it. It is mixed into a QWidget subclass
/// (see CEventWidgetT); a deliverer that is no widget is the end of its chain.
///
/// One user action is one event. Everything runs on the UI thread.
class WQ_EXPORT CEventDeliverer
{
public:
    virtual ~CEventDeliverer();

    /// Takes one event. Returns true when it was handled. An override passes what it does not take to its base.
    /// The base passes the event, unchanged, to the next deliverer above in the chain of QWidget parents and returns
    /// that one's answer, false when there is none. The chain ends at a window: what happens in a dialog or in a pop-up
    /// never reaches the panel that opened it.
    /// @param type  what happened, see EEventType
    /// @param id    control id given at construction
    /// @param param, text, data  depend on `type`; `data` is owned by the sender and valid during the call only
    virtual bool handleEvent(int type, int id, int param, QString text, void* data);

protected:
    CEventDeliverer() = default;
    CEventDeliverer(const CEventDeliverer&) = default;
    CEventDeliverer& operator=(const CEventDeliverer&) = default;
};

/// The nearest deliverer above `from` (not `from` itself) in the chain of QWidget parents, null when there is none.
WQ_EXPORT CEventDeliverer* delivererAbove(const QWidget* from);

/// Reports a user action of the control `from` to the nearest deliverer above it. Returns its answer, false when there
/// is none. The handler may delete `from` with deleteLater().
WQ_EXPORT bool deliverEvent(const QWidget* from, int type, int id, int param = 0, const QString& text = QString(),
                            void* data = nullptr);

} // namespace WQ
