// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"

#include <QtTest>

namespace panel_test
{

void PanelTest::init()
{
    m_log = std::make_unique<support::UnexpectedLog>();
    m_boxes = std::make_unique<support::ScriptedPresenter>();
    m_client = std::make_unique<PanelFixture>();
}

void PanelTest::cleanup()
{
    m_client.reset();
    m_boxes->verify();
    m_boxes.reset();
    const QStringList unexpected = m_log->unexpected();
    m_log.reset();
    QCOMPARE(unexpected, QStringList());
}

} // namespace panel_test
