// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/FixtureTest.h"
#include "support/UnexpectedLog.h"
#include "support/wq/ScriptedPresenter.h"

#include <memory>

namespace support
{

/// A test whose functions fail for unexpected message boxes, dialogs and log lines.
class WatchedTest : public FunctionTest
{
    Q_OBJECT

protected:
    void begin() override
    {
        m_log = std::make_unique<UnexpectedLog>();
        m_boxes = std::make_unique<ScriptedPresenter>();
    }
    void end() override
    {
        m_boxes.reset();
        m_log.reset();
    }

    std::unique_ptr<UnexpectedLog> m_log;
    std::unique_ptr<ScriptedPresenter> m_boxes;
};

} // namespace support
