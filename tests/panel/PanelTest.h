// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PanelFixture.h"

#include "support/UnexpectedLog.h"
#include "support/wq/ScriptedPresenter.h"

#include <QObject>

#include <memory>

namespace panel_test
{

/// A test of the panel: for each function a client of its own. Unexpected boxes and log lines fail it.
class PanelTest : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<support::UnexpectedLog> m_log;
    std::unique_ptr<support::ScriptedPresenter> m_boxes;
    std::unique_ptr<PanelFixture> m_client;

protected slots:
    void init();
    void cleanup();
};

} // namespace panel_test
