// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CCellWidgets.h"
#include "CSimpleTableModel.h"

#include <QTableView>

namespace WQ
{

/// The view inside a simple table. Keeps Qt's view up to date with the rows, and moves cell widgets to and from the
/// screen.
class CSimpleTableView : public QTableView
{
    Q_OBJECT

public:
    /// `owner` is the table that owns parked cell widgets.
    explicit CSimpleTableView(QWidget* owner);
    ~CSimpleTableView() override;

    CSimpleTableModel& rows() { return m_model; }
    CCellWidgets& cells() { return m_cells; }

    void setRowHeights(int height);
    void setEmptyText(const QString& text);
    void setEmptyTextShown(bool on);

    /// Makes sync() run before the next user event.
    void requestSync();
    void requestFit();
    /// Announces the changes of the rows; keeps selection, current row and scroll position. Fits the columns if that
    /// was requested.
    void sync();

    /// The width of a cell's text. Cached, because fitting and painting ask for the same texts.
    int textWidth(const QString& text) const;

    int hoveredRow() const { return m_hoveredRow; }
    bool isRowHoverOn() const { return m_rowHover; }
    void setRowHover(bool on);
    /// Makes the cell current without selecting anything and scrolls to it.
    void goTo(int rowId, int column);

signals:
    void sigFitColumns();
    void sigActivated(int rowId);

public:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void updateGeometries() override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct SelectedCells {
        int rowId, left, right;
    };

    void syncRows();
    QVector<SelectedCells> selectedCells() const;
    void select(const QVector<SelectedCells>& cells);
    bool clickCurrentButton();
    bool cellKeyPress(QWidget* widget, QKeyEvent* event);
    void setHoveredRow(int row);
    void showElidedText(const QPoint& position, const QPoint& globalPosition);

    CSimpleTableModel m_model;
    CCellWidgets m_cells;
    QString m_emptyText;
    mutable QHash<QString, int> m_textWidths;
    int m_hoveredRow = -1;
    bool m_rowHover = true;
    bool m_emptyTextShown = true;
    bool m_syncRequested = false;
    bool m_fitRequested = false;
    bool m_syncing = false;
};

} // namespace WQ
