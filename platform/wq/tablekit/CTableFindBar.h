// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

#include <functional>

class QAbstractItemView;
class QLabel;
class QLineEdit;

namespace WQ
{

/// The search functions of a table.
struct TableSearch {
    /// Marks the cells that contain the text; none for an empty text.
    std::function<void(const QString& text)> mark;
    /// Moves to the next or previous cell that contains the text; false if there is none. `stay`: the current cell
    /// counts too, because the user is still typing.
    std::function<bool(const QString& text, bool forward, bool stay)> goTo;
};

/// The search bar below a table. Enter and F3 find the next cell, with Shift the previous one; Esc closes the bar.
class CTableFindBar : public QWidget
{
    Q_OBJECT

public:
    CTableFindBar(QAbstractItemView& view, TableSearch search);

    void open();
    /// Finds the next or previous cell. Opens the bar if it is closed.
    void findNext(bool forward);
    void closeBar();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void goTo(bool forward, bool stay);

    QAbstractItemView& m_view;
    const TableSearch m_search;
    QLineEdit* m_edit;
    QLabel* m_result;
};

} // namespace WQ
