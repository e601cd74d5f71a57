#pragma once

#include <QWidget>

#include <functional>

class QAbstractItemView;
class QLabel;
class QLineEdit;

namespace WQ
{

/// How a table searches.
struct TableSearch {
    QString hint; ///< shown while nothing is typed
    /// Marks the cells that hold the text; none for an empty one.
    std::function<void(const QString& text)> mark;
    /// Goes to the next cell that holds the text, or the one before; false if there is none. `stay`: the user is
    /// typing, and the current cell counts too.
    std::function<bool(const QString& text, bool forward, bool stay)> goTo;
};

/// The line under a table in which the user looks for a text. Enter and F3 go on, with Shift they go back, Esc closes.
class CTableFindBar : public QWidget
{
    Q_OBJECT

public:
    CTableFindBar(QAbstractItemView& view, TableSearch search);

    void open();
    /// Opens first when it is closed.
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
