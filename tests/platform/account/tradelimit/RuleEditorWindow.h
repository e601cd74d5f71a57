// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/qav/CFakeTransport.h"
#include "support/wq/ThemePicture.h"
#include "support/wq/WatchedTest.h"

#include <WQ/CBaseWidget.h>

#include <boost/shared_ptr.hpp>

#include <QPushButton>
#include <QtTest>

namespace rule_editor_test
{

using support::takePicture;
using support::useTheme;

/// A window as the risk settings dialog is one: it holds an editor and notes every event that comes up to it.
class RuleEditorWindow : public WQ::CBaseWidget
{
public:
    RuleEditorWindow();
    ~RuleEditorWindow() override;

    /// Makes `editor` the contents and shows the window with the keyboard focus.
    void showWith(QWidget* editor, const QSize& size = {1000, 560});
    bool handleEvent(int type, int id, int param, QString text, void* data) override;
    /// Events that came out of the editor.
    int escapedEvents() const { return m_escapedEvents; }

    template <typename Widget>
    Widget& part(const char* name) const
    {
        auto* const found = findChild<Widget*>(QLatin1String(name));
        if (!found) {
            qFatal("there is no part %s", name);
        }
        return *found;
    }
    void click(const char* name) { QTest::mouseClick(&part<QPushButton>(name), Qt::LeftButton); }

private:
    int m_escapedEvents = 0;
};

/// The one server of the client, "深圳" with the tag "SZ", as long as it lives.
class OneServer
{
public:
    OneServer();
    ~OneServer();
    support::CFakeTransport& transport() { return *m_transport; }
    /// Takes the query that the editor has sent. Fails the test when it asks for something else.
    support::CFakeTransport::Query takeQuery(int dataType, const std::string& queryKey);
    /// Whether no query waits. A query is there as soon as the call that sends it returns.
    bool isSilent();

private:
    boost::shared_ptr<support::CFakeTransport> m_transport;
};

/// What the list that is open offers; nothing when none is.
QStringList offers();
/// Gives the focus to `edit` and types: Latin letters key by key, Chinese text as an input method commits it.
void type(QWidget& edit, const QString& text);

} // namespace rule_editor_test
