#include "CSimpleFindBar.h"

#include "CSimpleCellDelegate.h"
#include "CSimpleTableView.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

namespace WQ
{

CSimpleFindBar::CSimpleFindBar(CSimpleTableView& view, CSimpleCellDelegate& delegate,
                               std::function<QVector<int>()> columns)
    : QWidget(view.parentWidget()), m_view(view), m_delegate(delegate), m_columns(std::move(columns)),
      m_edit(new QLineEdit(this)), m_state(new QLabel(this))
{
    hide();
    m_edit->setAccessibleName(QStringLiteral("查找"));
    m_edit->setPlaceholderText(QStringLiteral("查找"));
    m_edit->setClearButtonEnabled(true);
    m_edit->setFixedHeight(24);
    m_edit->installEventFilter(this);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(6);
    layout->addWidget(m_edit, 1);
    layout->addWidget(m_state);
    connect(m_edit, &QLineEdit::textChanged, this, [this] {
        mark();
        m_state->setText(QString());
    });
}

void CSimpleFindBar::open()
{
    show();
    mark();
    m_edit->setFocus(Qt::ShortcutFocusReason);
    m_edit->selectAll();
}

void CSimpleFindBar::close()
{
    hide();
    m_delegate.setFindText(QString());
    m_view.viewport()->update();
    m_view.setFocus(Qt::OtherFocusReason);
}

void CSimpleFindBar::mark()
{
    m_delegate.setFindText(m_edit->text());
    m_view.viewport()->update();
}

void CSimpleFindBar::findNext(bool forward)
{
    if (isHidden() || m_edit->text().isEmpty()) {
        open();
        return;
    }
    m_view.sync();
    const CSimpleTableModel& rows = m_view.rows();
    const QVector<int> columns = m_columns();
    const int cells = rows.rowCount() * columns.size();
    if (cells == 0)
        return;
    const QModelIndex current = m_view.currentIndex();
    int position = forward ? -1 : cells;
    if (current.isValid() && columns.contains(current.column()))
        position = current.row() * columns.size() + columns.indexOf(current.column());
    for (int step = 1; step <= cells; ++step) {
        const int at = ((position + (forward ? step : -step)) % cells + cells) % cells;
        const int rowId = rows.idOfRow(at / columns.size());
        const int column = columns[at % columns.size()];
        if (!rows.text(rowId, column).contains(m_edit->text(), Qt::CaseInsensitive))
            continue;
        m_view.goTo(rowId, column);
        m_state->setText(QString());
        return;
    }
    m_state->setText(QStringLiteral("未找到"));
}

bool CSimpleFindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_edit && event->type() == QEvent::KeyPress) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        switch (key->key()) {
        case Qt::Key_Escape:
            close();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_F3:
            findNext(!(key->modifiers() & Qt::ShiftModifier));
            return true;
        default:
            break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace WQ
