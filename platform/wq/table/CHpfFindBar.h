#pragma once

#include <QWidget>

#include <functional>
#include <vector>

class QLabel;
class QLineEdit;

namespace WQ
{

class CHpfTableView;

/// The line under a table in which the user looks for a text in any of its listed columns. Contains, ignoring case, or
/// by pinyin, as filters do; marks what is found and makes the next match current.
class CHpfFindBar : public QWidget
{
    Q_OBJECT

public:
    CHpfFindBar(CHpfTableView& view, std::function<std::vector<int>()> columns);

    void open();
    void findNext(bool forward);
    void closeBar();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool goTo(const QString& text, bool forward, bool stay);

    CHpfTableView& m_view;
    std::function<std::vector<int>()> m_columns;
    QLineEdit* m_edit;
    QLabel* m_result;
};

} // namespace WQ
