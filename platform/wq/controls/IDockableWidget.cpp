// SPDX-License-Identifier: Apache-2.0
#include <WQ/IDockableWidget.h>

namespace WQ
{

IDockableWidget::IDockableWidget(bool ownBackground, const QString& objectName, QWidget* parent)
    : CBaseWidget(objectName, ownBackground, parent)
{
}

IDockableWidget::~IDockableWidget() = default;

QString IDockableWidget::title() const
{
    return windowTitle();
}

void IDockableWidget::setTitle(const QString& title)
{
    setWindowTitle(title);
}

void IDockableWidget::setParam(const QString&) {}

QString IDockableWidget::param() const
{
    return QString();
}

} // namespace WQ
