// SPDX-License-Identifier: Apache-2.0
#include "CRowCounts.h"

#include "PanelTables.h"

#include <QAV/IkolmDockableWidget.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace workbench
{

CRowCounts::CRowCounts(QWidget* parent) : QWidget(parent), m_text(new QLabel(this)), m_dropFilter(new QToolButton(this))
{
    m_text->setObjectName("rowCounts");
    m_dropFilter->setObjectName("dropFilter");
    m_dropFilter->setText(tr("清除筛选"));
    m_dropFilter->setAutoRaise(true);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 0, 6, 0);
    layout->addWidget(m_text);
    layout->addWidget(m_dropFilter);
    connect(m_dropFilter, &QToolButton::clicked, this, [this] {
        if (auto* const model = qobject_cast<WQ::IBaseHpfTableModel*>(m_model.data())) {
            model->clearFilter();
        }
    });
    showCounts();
}

void CRowCounts::watch(const QAV::IkolmDockableWidget* panel)
{
    m_panel = panel;
    watchTable(panel ? tableInUse(*panel, m_table) : nullptr);
}

bool CRowCounts::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_table && event->type() == QEvent::Hide) {
        // Another page of the panel comes to the front, or another panel.
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (m_panel && m_panel->isVisible()) {
                    watch(m_panel);
                }
            },
            Qt::QueuedConnection);
    }
    return QWidget::eventFilter(watched, event);
}

void CRowCounts::watchTable(QAbstractItemView* table)
{
    if (table != m_table) {
        if (m_table) {
            m_table->removeEventFilter(this);
        }
        m_table = table;
        if (table) {
            table->installEventFilter(this);
        }
    }
    QAbstractItemModel* const model = table ? table->model() : nullptr;
    if (model == m_model) {
        return;
    }
    if (m_model) {
        m_model->disconnect(this);
    }
    m_model = model;
    if (model) {
        connect(model, &QAbstractItemModel::rowsInserted, this, &CRowCounts::showCounts);
        connect(model, &QAbstractItemModel::rowsRemoved, this, &CRowCounts::showCounts);
        connect(model, &QAbstractItemModel::modelReset, this, &CRowCounts::showCounts);
        connect(model, &QObject::destroyed, this, &CRowCounts::showCounts);
        if (const auto* const fast = qobject_cast<WQ::IBaseHpfTableModel*>(model)) {
            connect(fast, &WQ::IBaseHpfTableModel::sigFilterChanged, this, &CRowCounts::showCounts);
        }
    }
    showCounts();
}

void CRowCounts::showCounts()
{
    const auto* const fast = qobject_cast<WQ::IBaseHpfTableModel*>(m_model.data());
    const bool isFiltered = fast && fast->isFiltered();
    QString text;
    if (isFiltered) {
        text = tr("筛选出%1条，共%2条").arg(QString::number(fast->rowCount()), QString::number(fast->getDataCount()));
    } else if (m_model) {
        text = tr("共%1条").arg(m_model->rowCount());
    }
    m_text->setText(text);
    m_dropFilter->setVisible(isFiltered);
}

} // namespace workbench
