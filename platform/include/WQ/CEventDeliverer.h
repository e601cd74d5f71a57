// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/EventType.h>
#include <WQ/Export.h>

#include <QString>

class QWidget;

namespace WQ
{

/// A mix-in for a QWidget subclass that receives the user actions of the controls below it (see CEventWidgetT). A
/// deliverer that is not a widget ends the chain.
///
/// One user action is one event. UI thread only.
class WQ_EXPORT CEventDeliverer
{
public:
    virtual ~CEventDeliverer();

    /// Handles one event. Returns true if it was handled. An override passes other events to its base class.
    /// The base class passes the event unchanged to the next deliverer above in the chain of QWidget parents and
    /// returns its result, or false if there is none. The chain ends at a window: events in a dialog or pop-up never
    /// reach the panel that opened it.
    /// @param type  what happened, see EEventType
    /// @param id    the control id given at construction
    /// @param param, text, data  depend on `type`; `data` belongs to the sender and is valid only during the call
    virtual bool handleEvent(int type, int id, int param, QString text, void* data);

protected:
    CEventDeliverer() = default;
    CEventDeliverer(const CEventDeliverer&) = default;
    CEventDeliverer& operator=(const CEventDeliverer&) = default;
};

/// The nearest deliverer above `from` (not `from` itself) in the chain of QWidget parents; null if there is none.
WQ_EXPORT CEventDeliverer* delivererAbove(const QWidget* from);

/// Reports a user action of the control `from` to the nearest deliverer above it. Returns its result, or false if there
/// is none. The handler may delete `from` with deleteLater().
WQ_EXPORT bool deliverEvent(const QWidget* from, int type, int id, int param = 0, const QString& text = QString(),
                            void* data = nullptr);

} // namespace WQ
