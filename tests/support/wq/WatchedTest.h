// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/UnexpectedLog.h"
#include "support/wq/ScriptedPresenter.h"

#include <QObject>

#include <memory>

namespace support
{

/// A test whose functions fail for unexpected message boxes, dialogs and log lines.
class WatchedTest : public QObject
{
    Q_OBJECT

protected slots:
    void init()
    {
        m_log = std::make_unique<UnexpectedLog>();
        m_boxes = std::make_unique<ScriptedPresenter>();
    }
    void cleanup()
    {
        m_boxes.reset();
        m_log.reset();
    }

protected:
    std::unique_ptr<UnexpectedLog> m_log;
    std::unique_ptr<ScriptedPresenter> m_boxes;
};

} // namespace support
