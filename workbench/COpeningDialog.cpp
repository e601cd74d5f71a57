// SPDX-License-Identifier: Apache-2.0
#include "COpeningDialog.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/EventType.h>

#include <QEventLoop>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <QVBoxLayout>

#include <thread>

namespace workbench
{

namespace
{

constexpr int CancelButton = 1;
constexpr int MillisecondsUntilShown = 300;

} // namespace

COpeningDialog::COpeningDialog()
{
    setObjectName("opening");
    setTitle(tr("风控管理客户端"));
    auto* page = new QWidget(this);
    m_text = new QLabel(tr("正在打开数据库…"), page);
    m_text->setObjectName("openingText");
    m_bar = new QProgressBar(page);
    m_bar->setObjectName("openingBar");
    m_bar->setAccessibleName(tr("进度"));
    m_bar->setRange(0, 0);
    m_cancel = new WQ::CMediumNormalButton(CancelButton, WQ::NormalButton, page);
    m_cancel->setObjectName("openingCancel");
    m_cancel->setText(tr("取消"));
    m_cancel->setMinimumWidth(90);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(24, 24, 24, 20);
    layout->setSpacing(12);
    layout->addWidget(m_text);
    layout->addWidget(m_bar);
    layout->addWidget(m_cancel, 0, Qt::AlignRight);
    setInnerWidget(page);
    for (const QString& text : {tr("首次启动，正在创建示例数据…"), tr("正在取消…"), m_text->text()}) {
        m_text->setMinimumWidth(qMax(m_text->minimumWidth(), m_text->fontMetrics().horizontalAdvance(text)));
    }
    setFixedSize(QSize(400, 180).expandedTo(minimumSizeHint()));
}

utils::NVError COpeningDialog::run(const Opening& opening)
{
    utils::NVError outcome;
    std::thread worker([this, &opening, &outcome, mailbox = m_mailbox.address(), shown = -1]() mutable {
        outcome = opening([&](std::int64_t done, std::int64_t total) {
            const int percent = static_cast<int>(100 * done / total);
            if (percent != shown) {
                shown = percent;
                mailbox.post([this, percent] { showProgress(percent); });
            }
            return !m_isCancelled;
        });
        mailbox.post([this] {
            m_isFinished = true;
            emit sigFinished();
            done(1);
        });
    });
    QEventLoop patience;
    QTimer::singleShot(MillisecondsUntilShown, &patience, &QEventLoop::quit);
    connect(this, &COpeningDialog::sigFinished, &patience, &QEventLoop::quit);
    patience.exec();
    if (!m_isFinished) {
        exec();
    }
    m_isCancelled = m_isCancelled || !m_isFinished;
    worker.join();
    return outcome;
}

void COpeningDialog::done(int result)
{
    if (m_isFinished) {
        WQ::CCommonDialog::done(result);
        return;
    }
    m_isCancelled = true;
    m_cancel->setEnabled(false);
    m_text->setText(tr("正在取消…"));
}

bool COpeningDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && id == CancelButton) {
        done(0);
        return true;
    }
    return WQ::CCommonDialog::handleEvent(type, id, param, std::move(text), data);
}

void COpeningDialog::showProgress(int percent)
{
    if (!m_isCancelled) {
        m_text->setText(tr("首次启动，正在创建示例数据…"));
    }
    m_bar->setRange(0, 100);
    m_bar->setValue(percent);
}

} // namespace workbench
