// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPointer>
#include <QWidget>

class QAbstractItemModel;
class QAbstractItemView;
class QLabel;
class QToolButton;

namespace QAV
{
class IkolmDockableWidget;
}

namespace workbench
{

/// In the status bar: how many rows the table has that is in use in the current panel. While they are filtered, how
/// many of them are shown, and a button to drop the filter.
class CRowCounts : public QWidget
{
    Q_OBJECT

public:
    explicit CRowCounts(QWidget* parent);

    /// Null: there is no panel.
    void watch(const QAV::IkolmDockableWidget* panel);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void watchTable(QAbstractItemView* table);
    void showCounts();

    QLabel* m_text;
    QToolButton* m_dropFilter;
    QPointer<const QAV::IkolmDockableWidget> m_panel;
    QPointer<QAbstractItemView> m_table;
    QPointer<QAbstractItemModel> m_model;
};

} // namespace workbench
