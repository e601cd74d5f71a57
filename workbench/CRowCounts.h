// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPointer>
#include <QWidget>

class QAbstractItemModel;
class QLabel;
class QToolButton;

namespace QAV
{
class IkolmDockableWidget;
}

namespace workbench
{

/// In the status bar: how many rows the first table of the current panel has. While they are filtered, how many of them
/// are shown, and a button to drop the filter.
class CRowCounts : public QWidget
{
    Q_OBJECT

public:
    explicit CRowCounts(QWidget* parent);

    /// Null: there is no panel.
    void watch(const QAV::IkolmDockableWidget* panel);

private:
    void showCounts();

    QLabel* m_text;
    QToolButton* m_dropFilter;
    QPointer<QAbstractItemModel> m_model;
};

} // namespace workbench
