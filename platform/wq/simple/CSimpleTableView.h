// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "simple/CCellWidgets.h"
#include "simple/CSimpleTableModel.h"
#include "tablekit/CTableView.h"

#include <QHash>

namespace WQ
{

/// The view inside a simple table. Keeps itself up to date with the rows, and moves cell widgets to and from the
/// screen.
class CSimpleTableView : public CTableView
{
    Q_OBJECT

public:
    /// `owner` is the table that owns parked cell widgets.
    explicit CSimpleTableView(QWidget* owner);

    CSimpleTableModel& rows() { return m_model; }
    CCellWidgets& cells() { return m_cells; }
    void setEmptyText(const QString& text);

    /// Makes sync() run before the next user event.
    void requestSync();
    void requestFit();
    /// Announces the changes of the rows; keeps selection, current row and scroll position. Fits the columns if that
    /// was requested.
    void sync() override;

    int idOfRow(int row) const override { return m_model.idOfRow(row); }
    int rowOfId(int id) const override { return m_model.rowOfId(id); }
    /// The row itself, or if it was removed the next one that stays, else the last before it.
    int idOfNextCurrent(int row) const override;
    TableActions cellActions(const QModelIndex& index) const override;
    QWidget* cellWidget(const QModelIndex& index) const override;
    QColor rowBackground(int row) const override;
    QString emptyText() const override { return m_emptyText ? *m_emptyText : CTableView::emptyText(); }
    /// Cached, because fitting and painting ask for the same texts.
    int textWidth(const QString& text) const override;

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void sigFitColumns();

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void scrollContentsBy(int dx, int dy) override;
    void updateGeometries() override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    bool clickCurrentButton();
    /// Puts the cursor into the editor of the current cell; true if there is one. `popUp`: opens its list.
    bool enterCurrentEditor(bool popUp);
    /// Not a button, which is no editor.
    bool isEditorOfCell(const QWidget* widget) const;
    bool cellKeyPress(QWidget* widget, QKeyEvent* event);

    CSimpleTableModel m_model;
    mutable CCellWidgets m_cells;       ///< creates widgets when they are asked for
    std::optional<QString> m_emptyText; ///< chosen by the program
    mutable QHash<QString, int> m_textWidths;
    bool m_syncRequested = false;
    bool m_fitRequested = false;
    bool m_syncing = false;
};

} // namespace WQ
