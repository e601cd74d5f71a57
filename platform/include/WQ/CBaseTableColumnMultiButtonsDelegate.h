// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "WQ/ButtonData.h"
#include "WQ/CBaseTableColumnDelegate.h"

#include <memory>

namespace WQ
{

class CEventDeliverer;

/// A column of painted push buttons, any number per row. A click, or Space or Enter on the focused button, calls
/// `handleEvent(RowButtonClicked, column, button id, row key, nullptr)` of the sink exactly once. Left and Right move
/// the focus between the buttons of the current row.
class WQ_EXPORT CBaseTableColumnMultiButtonsDelegate : public CBaseTableColumnDelegate
{
    Q_OBJECT
public:
    /// `sink` receives the clicks. It must outlive the delegate, as a parent of the table does.
    CBaseTableColumnMultiButtonsDelegate(int column, CEventDeliverer* sink, QObject* parent = nullptr);
    ~CBaseTableColumnMultiButtonsDelegate() override;

    /// Replaces the buttons of the row with this key, in the order shown. The row need not be in the model yet. Rows
    /// with equal buttons share one list.
    void setItemButtons(const QString& rowKey, const QVector<ButtonData>& buttons);
    /// Empty if the row has none.
    QVector<ButtonData> itemButtons(const QString& rowKey) const;
    /// Removes the buttons of all rows.
    void clear() override;

    /// Reports a click on a button of the row; nothing if the row has no such button.
    void press(const QString& rowKey, int buttonId);
    /// The rectangle of button number `position` in a cell, in the coordinates of `cell`; null if there is none.
    QRect buttonRect(const QModelIndex& index, const QRect& cell, int position) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    int contentWidth(const QModelIndex& index) const override;
    QString accessibleText(const QModelIndex& index) const override;
    QString toolTipAt(const QModelIndex& index, const QRect& cell, const QPoint& position) const override;
    bool mouseEvent(QMouseEvent* event, const QModelIndex& index, const QRect& cell) override;
    void mouseLeft() override;
    bool keyEvent(QKeyEvent* event, const QModelIndex& index) override;
    void currentChanged(bool current, bool forward) override;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
