// SPDX-License-Identifier: Apache-2.0
#include <QAV/IkolmDockableWidget.h>

#include <utility>

namespace QAV
{

IkolmDockableWidget::IkolmDockableWidget(bool ownBackground, const QString& objectName, QWidget* parent,
                                         bool followsServer)
    : WQ::IDockableWidget(ownBackground, objectName, parent), m_followsServer(followsServer)
{
}

IkolmDockableWidget::~IkolmDockableWidget() = default;

void IkolmDockableWidget::switchSystem(int, QString serverName)
{
    m_qsServerName = std::move(serverName);
}

void IkolmDockableWidget::onActive() {}

QString IkolmDockableWidget::serverName() const
{
    return m_qsServerName;
}

bool IkolmDockableWidget::followsServer() const
{
    return m_followsServer;
}

} // namespace QAV
