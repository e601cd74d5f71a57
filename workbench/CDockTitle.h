// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QWidget>

class QToolButton;
class QDockWidget;
class QSpacerItem;

namespace workbench
{

/// The title bar of a dock: its title, a notice that asks to refresh, a button to float or dock it, and a button to
/// close it.
class CDockTitle : public QWidget, public WQ::CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CDockTitle(QDockWidget& dock);

    /// Shows the notice beside the buttons; an empty text removes it.
    void setNotice(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void onUiResourceChanged() override;

signals:
    /// The user has pressed the notice.
    void sigRefresh();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QDockWidget& m_dock;
    QSpacerItem* m_titleSpace;
    QToolButton* m_notice;
    QToolButton* m_float;
    QToolButton* m_close;
};

} // namespace workbench
