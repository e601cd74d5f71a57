// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CTableFindBar.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace WQ
{

namespace
{

QToolButton* toolButton(const QString& name, const QString& text, const QString& tip, QWidget* parent)
{
    auto* const button = new QToolButton(parent);
    button->setObjectName(name);
    button->setText(text);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    return button;
}

} // namespace

CTableFindBar::CTableFindBar(QAbstractItemView& view, TableSearch search)
    : QWidget(view.parentWidget()), m_view(view), m_search(std::move(search)), m_edit(new QLineEdit(this)),
      m_result(new QLabel(this))
{
    setObjectName(QStringLiteral("tableFindBar"));
    m_edit->setObjectName(QStringLiteral("tableFindEdit"));
    m_edit->setPlaceholderText(QCoreApplication::translate("WQ", "查找文字或拼音"));
    m_edit->setAccessibleName(QCoreApplication::translate("WQ", "查找"));
    m_edit->setClearButtonEnabled(true);
    m_edit->setMaximumWidth(260);
    m_edit->installEventFilter(this);
    m_result->setObjectName(QStringLiteral("tableFindResult"));
    auto* const previous = toolButton(QStringLiteral("tableFindPrevious"), QCoreApplication::translate("WQ", "上一个"),
                                      QCoreApplication::translate("WQ", "查找上一个（Shift+F3）"), this);
    auto* const next = toolButton(QStringLiteral("tableFindNext"), QCoreApplication::translate("WQ", "下一个"),
                                  QCoreApplication::translate("WQ", "查找下一个（F3）"), this);
    auto* const close = toolButton(QStringLiteral("tableFindClose"), QCoreApplication::translate("WQ", "关闭"),
                                   QCoreApplication::translate("WQ", "关闭查找（Esc）"), this);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->addWidget(m_edit, 1);
    layout->addWidget(previous);
    layout->addWidget(next);
    layout->addWidget(m_result);
    layout->addStretch(1);
    layout->addWidget(close);
    connect(m_edit, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_search.mark(text);
        goTo(true, true);
    });
    connect(previous, &QToolButton::clicked, this, [this] { findNext(false); });
    connect(next, &QToolButton::clicked, this, [this] { findNext(true); });
    connect(close, &QToolButton::clicked, this, &CTableFindBar::closeBar);
    hide();
}

void CTableFindBar::open()
{
    show();
    m_search.mark(m_edit->text());
    m_edit->setFocus(Qt::ShortcutFocusReason);
    m_edit->selectAll();
}

void CTableFindBar::closeBar()
{
    hide();
    m_search.mark({});
    m_view.setFocus(Qt::OtherFocusReason);
}

void CTableFindBar::findNext(bool forward)
{
    if (isHidden() || m_edit->text().isEmpty()) {
        open();
    } else {
        goTo(forward, false);
    }
}

void CTableFindBar::goTo(bool forward, bool stay)
{
    const bool found = m_edit->text().isEmpty() || m_search.goTo(m_edit->text(), forward, stay);
    m_result->setText(found ? QString() : QCoreApplication::translate("WQ", "未找到"));
}

bool CTableFindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_edit || event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const auto* const key = static_cast<QKeyEvent*>(event);
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

} // namespace WQ
