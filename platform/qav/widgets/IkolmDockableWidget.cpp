// SPDX-License-Identifier: Apache-2.0
#include <QAV/IkolmDockableWidget.h>

#include <utility>

namespace QAV
{

struct IkolmDockableWidget::Private {
    bool followsServer;
    CCallbackGate callbackGate = {};
};

IkolmDockableWidget::IkolmDockableWidget(bool ownBackground, const QString& objectName, QWidget* parent,
                                         bool followsServer)
    : WQ::IDockableWidget(ownBackground, objectName, parent), m_d(new Private{followsServer})
{
}

IkolmDockableWidget::~IkolmDockableWidget() = default;

CCallbackGate& IkolmDockableWidget::callbackGate()
{
    return m_d->callbackGate;
}

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
    return m_d->followsServer;
}

} // namespace QAV
