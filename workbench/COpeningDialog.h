// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CCommonDialog.h>

#include <utils/CMailbox.h>
#include <utils/NVError.h>

#include <atomic>
#include <functional>

class QLabel;
class QProgressBar;

namespace WQ
{
class CMediumNormalButton;
}

namespace workbench
{

/// Shows how far the opening of a database is, and lets the user cancel it.
class COpeningDialog : public WQ::CCommonDialog
{
    Q_OBJECT

public:
    /// Opens the database. `progress` says how far it is; if that returns false, opening has been cancelled.
    using Opening =
        std::function<utils::NVError(const std::function<bool(std::int64_t done, std::int64_t total)>& progress)>;

    COpeningDialog();

    /// Runs `opening` on a thread of its own and returns its outcome. Appears only if that takes a while.
    utils::NVError run(const Opening& opening);
    /// Cancels what still runs; the dialog closes when that has ended.
    void done(int result) override;
    bool handleEvent(int type, int id, int param, QString text, void* data) override;

signals:
    void sigFinished();

private:
    void showProgress(int percent);

    QLabel* m_text;
    QProgressBar* m_bar;
    WQ::CMediumNormalButton* m_cancel;
    std::atomic<bool> m_isCancelled{false};
    bool m_isFinished = false;
    utils::CMailbox m_mailbox;
};

} // namespace workbench
