// SPDX-License-Identifier: Apache-2.0
#include "RuleEditorWindow.h"

#include "support/qav/Client.h"
#include "support/wq/Widgets.h"

#include <boost/make_shared.hpp>

#include <QApplication>
#include <QListView>

#include <algorithm>

namespace rule_editor_test
{

RuleEditorWindow::RuleEditorWindow() : CBaseWidget(QStringLiteral("window"), true, nullptr)
{
    useTheme(QStringLiteral("dark"));
}

RuleEditorWindow::~RuleEditorWindow() = default;

void RuleEditorWindow::showWith(QWidget* editor, const QSize& size)
{
    setInnerStretchWidget(editor, 0, 0, 0, 0);
    resize(size);
    show();
    activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(this));
}

bool RuleEditorWindow::handleEvent(int, int, int, QString, void*)
{
    ++m_escapedEvents;
    return true;
}

OneServer::OneServer() : m_transport(boost::make_shared<support::CFakeTransport>())
{
    if (!support::centre().addServer("深圳", "SZ", m_transport).isSuccess()) {
        qFatal("a server of an earlier test is still there");
    }
}

OneServer::~OneServer()
{
    support::centre().shutDown();
}

support::CFakeTransport::Query OneServer::takeQuery(int dataType, const std::string& queryKey)
{
    auto query = m_transport->takeQuery();
    if (query.request.dataType != dataType || query.request.queryKey != queryKey) {
        qFatal("query %d %s came", query.request.dataType, query.request.queryKey.c_str());
    }
    return query;
}

bool OneServer::isSilent()
{
    return m_transport->waitingQueries() == 0;
}

QStringList offers()
{
    QStringList lines;
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        const auto* const list = qobject_cast<QListView*>(window);
        for (int row = 0; list && list->isVisible() && row < list->model()->rowCount(); ++row) {
            lines << list->model()->index(row, 0).data().toString();
        }
    }
    return lines;
}

void type(QWidget& edit, const QString& text)
{
    edit.setFocus();
    support::typeText(edit, text);
}

} // namespace rule_editor_test
