#pragma once

#include <QFontMetrics>
#include <QStyledItemDelegate>

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
    void setFindText(const QString& text) { m_findText = text; }

    /// What a text needs, margins included.
    static int textWidth(const QFontMetrics& metrics, const QString& text);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    CSimpleTableView& m_view;
    QString m_findText;
    bool m_grid = true;
    bool m_alternating = true;
};

} // namespace WQ
