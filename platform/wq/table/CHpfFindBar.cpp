#include "table/CHpfFindBar.h"

#include "table/CHpfTableView.h"
#include "table/HpfModelPrivate.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <algorithm>
#include <map>

namespace WQ
{

namespace
{

/// This many rows are looked at one by one; further away the whole column is searched at once.
constexpr int nearRows = 5000;

QToolButton* toolButton(const QString& name, const QString& text, const QString& tip, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(name);
    button->setText(text);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    return button;
}

} // namespace

CHpfFindBar::CHpfFindBar(CHpfTableView& view, std::function<std::vector<int>()> columns)
    : QWidget(view.parentWidget()), m_view(view), m_columns(std::move(columns)), m_edit(new QLineEdit(this)),
      m_result(new QLabel(this))
{
    setObjectName(QStringLiteral("tableFindBar"));
    m_edit->setObjectName(QStringLiteral("tableFindEdit"));
    m_edit->setPlaceholderText(QStringLiteral("查找文字或拼音"));
    m_edit->setAccessibleName(QStringLiteral("查找"));
    m_edit->setClearButtonEnabled(true);
    m_edit->setMaximumWidth(260);
    m_edit->installEventFilter(this);
    m_result->setObjectName(QStringLiteral("tableFindResult"));
    auto* previous = toolButton(QStringLiteral("tableFindPrevious"), QStringLiteral("上一个"),
                                QStringLiteral("查找上一个 (Shift+F3)"), this);
    auto* next =
        toolButton(QStringLiteral("tableFindNext"), QStringLiteral("下一个"), QStringLiteral("查找下一个 (F3)"), this);
    auto* close =
        toolButton(QStringLiteral("tableFindClose"), QStringLiteral("关闭"), QStringLiteral("关闭查找 (Esc)"), this);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->addWidget(m_edit, 1);
    layout->addWidget(previous);
    layout->addWidget(next);
    layout->addWidget(m_result);
    layout->addStretch(1);
    layout->addWidget(close);
    connect(m_edit, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_view.setFindText(text);
        const bool found = text.isEmpty() || goTo(text, true, true);
        m_result->setText(found ? QString() : QStringLiteral("未找到"));
    });
    connect(previous, &QToolButton::clicked, this, [this] { findNext(false); });
    connect(next, &QToolButton::clicked, this, [this] { findNext(true); });
    connect(close, &QToolButton::clicked, this, &CHpfFindBar::closeBar);
    hide();
}

void CHpfFindBar::open()
{
    show();
    m_view.setFindText(m_edit->text());
    m_edit->setFocus(Qt::ShortcutFocusReason);
    m_edit->selectAll();
}

void CHpfFindBar::closeBar()
{
    hide();
    m_view.setFindText({});
    m_view.setFocus(Qt::OtherFocusReason);
}

void CHpfFindBar::findNext(bool forward)
{
    if (isHidden() || m_edit->text().isEmpty()) {
        open();
        return;
    }
    const bool found = goTo(m_edit->text(), forward, false);
    m_result->setText(found ? QString() : QStringLiteral("未找到"));
}

bool CHpfFindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_edit || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Escape:
        closeBar();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F3:
        findNext(!(key->modifiers() & Qt::ShiftModifier));
        return true;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

bool CHpfFindBar::goTo(const QString& text, bool forward, bool stay)
{
    auto* model = qobject_cast<IBaseHpfTableModel*>(m_view.model());
    const std::vector<int> columns = m_columns();
    const int rows = model ? model->rowCount() : 0;
    const int width = static_cast<int>(columns.size());
    if (rows == 0 || width == 0)
        return false;
    const QModelIndex current = m_view.currentIndex();
    const auto at = std::find(columns.begin(), columns.end(), current.column());
    int row = std::max(current.row(), 0);
    int place = at == columns.end() ? 0 : static_cast<int>(at - columns.begin());
    bool step = !stay && current.isValid();

    const CContainsMatcher matcher(text);
    std::map<int, std::vector<char>> whole;
    const std::int64_t cells = static_cast<std::int64_t>(rows) * width;
    for (std::int64_t looked = 0; looked < cells; ++looked) {
        if (step) {
            place += forward ? 1 : -1;
            if (place < 0 || place >= width) {
                place = forward ? 0 : width - 1;
                row += forward ? 1 : -1;
                row = row < 0 ? rows - 1 : row >= rows ? 0 : row;
            }
        }
        step = true;
        const int column = columns[static_cast<std::size_t>(place)];
        bool matches = false;
        if (looked < static_cast<std::int64_t>(nearRows) * width) {
            matches = matcher.matches(model->index(row, column).data().toString());
        } else {
            std::vector<char>& hits = whole[column];
            if (hits.empty())
                hits = HpfModelPrivate::of(*model).containing(column, text);
            matches = hits[static_cast<std::size_t>(model->getDataIndexByRow(row))] != 0;
        }
        if (!matches)
            continue;
        m_view.setCurrentIndex(model->index(row, column));
        return true;
    }
    return false;
}

} // namespace WQ
