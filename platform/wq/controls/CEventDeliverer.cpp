// SPDX-License-Identifier: Apache-2.0
#include <WQ/CEventDeliverer.h>

#include <QWidget>

namespace WQ
{

CEventDeliverer::~CEventDeliverer() = default;

bool CEventDeliverer::handleEvent(int type, int id, int param, QString text, void* data)
{
    const auto* const self = dynamic_cast<const QWidget*>(this);
    return self && deliverEvent(self, type, id, param, text, data);
}

CEventDeliverer* delivererAbove(const QWidget* from)
{
    while (from && !from->isWindow()) {
        QWidget* const above = from->parentWidget();
        if (auto* const deliverer = dynamic_cast<CEventDeliverer*>(above)) {
            return deliverer;
        }
        from = above;
    }
    return nullptr;
}

bool deliverEvent(const QWidget* from, int type, int id, int param, const QString& text, void* data)
{
    CEventDeliverer* const deliverer = delivererAbove(from);
    return deliverer && deliverer->handleEvent(type, id, param, text, data);
}

} // namespace WQ
