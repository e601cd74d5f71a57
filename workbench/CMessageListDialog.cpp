// SPDX-License-Identifier: Apache-2.0
#include "CMessageListDialog.h"

#include <WQ/CMediumNormalButton.h>
#include <WQ/CMessageHistory.h>
#include <WQ/EventType.h>

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QListWidget>

namespace workbench
{

namespace
{

QString lineOf(const WQ::CMessageHistory::Message& message)
{
    const QString time = message.time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    const QString text =
        message.title.isEmpty() ? message.text : CMessageListDialog::tr("%1：%2").arg(message.title, message.text);
    return time + QStringLiteral("  ") + text;
}

} // namespace

CMessageListDialog::CMessageListDialog(QWidget* parent) : CClosableDialog(parent), m_list(new QListWidget)
{
    setObjectName("messages");
    setTitle(tr("最近的消息"));
    m_list->setObjectName("messageList");
    m_list->setAccessibleName(tr("最近的消息"));
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setWordWrap(true);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    contents().addWidget(m_list);
    addButton(CopyButton, tr("复制")).setKeys(QKeySequence::Copy);
    resize(720, 460);
    connect(&WQ::CMessageHistory::instance(), &WQ::CMessageHistory::sigChanged, this, &CMessageListDialog::fill);
    fill();
    m_list->setFocus();
}

void CMessageListDialog::fill()
{
    m_list->clear();
    for (const WQ::CMessageHistory::Message& message : WQ::CMessageHistory::instance().messages()) {
        m_list->insertItem(0, lineOf(message));
    }
    if (m_list->count() == 0) {
        auto* const nothing = new QListWidgetItem(tr("还没有消息"), m_list);
        nothing->setFlags(Qt::NoItemFlags);
    }
}

void CMessageListDialog::copy()
{
    const bool all = m_list->selectedItems().isEmpty();
    QStringList lines;
    for (int row = 0; row < m_list->count(); ++row) {
        if (all || m_list->item(row)->isSelected()) {
            lines << m_list->item(row)->text();
        }
    }
    QApplication::clipboard()->setText(lines.join('\n'));
}

bool CMessageListDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && id == CopyButton) {
        copy();
        return true;
    }
    return CClosableDialog::handleEvent(type, id, param, std::move(text), data);
}

} // namespace workbench
