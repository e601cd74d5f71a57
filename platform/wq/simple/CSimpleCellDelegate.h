// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/CContainsMatcher.h"

#include <QStyledItemDelegate>

#include <optional>

namespace WQ
{

class CSimpleTableView;

/// Paints the cells of a simple table in the colours of the theme.
class CSimpleCellDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit CSimpleCellDelegate(CSimpleTableView& view);

    void setGrid(bool on) { m_grid = on; }
    void setAlternating(bool on) { m_alternating = on; }
    void setFindText(const QString& text)
    {
        m_find.reset();
        if (!text.isEmpty()) {
            m_find.emplace(text);
        }
    }

    /// The margin at both sides of a text, the same as in the header.
    static constexpr int TextMargin = 4;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    CSimpleTableView& m_view;
    std::optional<CContainsMatcher> m_find;
    bool m_grid = true;
    bool m_alternating = true;
};

} // namespace WQ
