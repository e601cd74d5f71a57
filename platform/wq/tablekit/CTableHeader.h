// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHeaderView>

namespace WQ
{

/// The header of a table. Up from the first row leads into it; Left and Right go through the columns, Enter and Space
/// sort by the current one, Alt+Down filters it, Down and Esc lead back.
class CTableHeader : public QHeaderView
{
    Q_OBJECT

public:
    explicit CTableHeader(QWidget* parent = nullptr);

    /// Takes the focus, at this column.
    void enter(int column);

signals:
    void sigSortRequested(int column);
    void sigFilterRequested(int column);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

private:
    void step(int by);
    void announce();
    QRect focusedRect() const;

    int m_focused = -1;
};

} // namespace WQ
