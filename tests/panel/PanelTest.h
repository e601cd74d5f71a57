// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PanelFixture.h"

#include "support/wq/WatchedTest.h"

namespace panel_test
{

/// A test of the panel: for each function a client of its own.
class PanelTest : public support::WatchedTest
{
    Q_OBJECT

protected slots:
    void init()
    {
        WatchedTest::init();
        m_client = std::make_unique<PanelFixture>();
    }
    void cleanup()
    {
        m_client.reset();
        WatchedTest::cleanup();
    }

protected:
    std::unique_ptr<PanelFixture> m_client;
};

} // namespace panel_test
