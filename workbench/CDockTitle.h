// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QWidget>

class QToolButton;
class QDockWidget;

namespace workbench
{

/// The title bar of a dock: its title, a button to float or dock it, and a button to close it.
class CDockTitle : public QWidget, public WQ::CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CDockTitle(QDockWidget& dock);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void onUiResourceChanged() override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QDockWidget& m_dock;
    QToolButton* m_float;
    QToolButton* m_close;
};

} // namespace workbench
