#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QLineEdit;

namespace WQ
{

class CSimpleCellDelegate;
class CSimpleTableView;

/// The search line below a simple table: marks the cells that contain the text and goes from one to the next. Enter and
/// F3 go on, Shift with them goes back, Esc closes.
class CSimpleFindBar : public QWidget
{
    Q_OBJECT

public:
    /// `columns` gives the columns that are searched, left to right.
    CSimpleFindBar(CSimpleTableView& view, CSimpleCellDelegate& delegate, std::function<QVector<int>()> columns);

    void open();
    void close();
    /// Opens first when it is closed.
    void findNext(bool forward);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void mark();

    CSimpleTableView& m_view;
    CSimpleCellDelegate& m_delegate;
    std::function<QVector<int>()> m_columns;
    QLineEdit* m_edit;
    QLabel* m_state;
};

} // namespace WQ
