// SPDX-License-Identifier: Apache-2.0
#include <WQ/EmptyReason.h>

#include "tablekit/CTableView.h"

#include <QVariant>

namespace WQ
{

namespace
{

constexpr const char* Property = "wqEmptyReason";

} // namespace

void setEmptyReason(QWidget& root, const QString& reason)
{
    if (root.property(Property).toString() == reason) {
        return;
    }
    root.setProperty(Property, reason);
    for (const CTableView* const view : root.findChildren<CTableView*>()) {
        view->viewport()->update();
    }
}

QString emptyReason(const QWidget& inside)
{
    for (const QWidget* widget = &inside; widget; widget = widget->isWindow() ? nullptr : widget->parentWidget()) {
        const QString reason = widget->property(Property).toString();
        if (!reason.isEmpty()) {
            return reason;
        }
    }
    return {};
}

} // namespace WQ
