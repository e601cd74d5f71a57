// SPDX-License-Identifier: Apache-2.0
#include "lookup/CCheckListPopup.h"

#include "lookup/CCheckListModel.h"
#include "lookup/CListRowDelegate.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CAutoKeyboardLineEdit.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QBoxLayout>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPainter>
#include <QScreen>
#include <QSet>

namespace QAV
{

namespace
{

constexpr int MinimumWidth = 340;
constexpr int Height = 360;
constexpr int Margin = 8;

} // namespace

CCheckListPopup::CCheckListPopup(CCheckListModel* model, const QString& typeText, QWidget* box)
    : QFrame(box, Qt::Popup), m_box(box), m_model(model), m_typeText(typeText)
{
    setAccessibleName(QCoreApplication::translate("QAV", "选择%1").arg(typeText));
    createUi();
    connect(m_search, &QLineEdit::textEdited, this, &CCheckListPopup::search);
    connect(m_list, &QListView::clicked, m_model, &CCheckListModel::toggle);
    connect(m_model, &CCheckListModel::sigCheckedChanged, this, &CCheckListPopup::showCount);
    connect(m_model, &QAbstractItemModel::modelReset, this, &CCheckListPopup::showCount);
}

void CCheckListPopup::createUi()
{
    m_search = new WQ::CAutoKeyboardLineEdit(this);
    m_search->setObjectName(QStringLiteral("search"));
    m_search->setEmptyHintText(QCoreApplication::translate("QAV", "输入%1、名称、拼音或首字母搜索").arg(m_typeText));
    m_search->setAccessibleName(QCoreApplication::translate("QAV", "搜索%1").arg(m_typeText));
    m_search->installEventFilter(this);

    m_list = new QListView(this);
    m_list->setObjectName(QStringLiteral("items"));
    m_list->setAccessibleName(QCoreApplication::translate("QAV", "%1列表").arg(m_typeText));
    m_list->setUniformItemSizes(true);
    m_list->setItemDelegate(new CListRowDelegate(m_list));
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->setModel(m_model);
    m_list->installEventFilter(this);

    m_count = new QLabel(this);

    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(6);
    const auto addButton = [&](const QString& text, const QString& tip, CCheckListModel::ECheck check) {
        auto* const button = new WQ::CSmallNormalButton(int(check), true, WQ::NormalButton, this);
        button->setText(text);
        button->setToolTip(tip);
        connect(button, &QPushButton::clicked, m_model, [this, check] { m_model->checkShown(check); });
        buttons->addWidget(button);
    };
    addButton(QCoreApplication::translate("QAV", "全选"),
              QCoreApplication::translate("QAV", "勾选列出的全部%1").arg(m_typeText), CCheckListModel::ECheck::All);
    addButton(QCoreApplication::translate("QAV", "全不选"),
              QCoreApplication::translate("QAV", "取消勾选列出的全部%1").arg(m_typeText),
              CCheckListModel::ECheck::None);
    addButton(QCoreApplication::translate("QAV", "反选"),
              QCoreApplication::translate("QAV", "列出的%1中，勾选的取消，未勾选的勾选").arg(m_typeText),
              CCheckListModel::ECheck::Invert);
    buttons->addStretch();
    buttons->addWidget(m_count);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->setSpacing(6);
    layout->addWidget(m_search);
    layout->addLayout(buttons);
    layout->addWidget(m_list, 1);
}

void CCheckListPopup::open(const QString& input)
{
    m_search->setText(input);
    search(input);
    showCount();
    setGeometry(placeOnScreen());
    show();
    m_search->setFocus(Qt::PopupFocusReason);
    m_model->prepareSearch();
}

QRect CCheckListPopup::placeOnScreen() const
{
    const QRect box(m_box->mapToGlobal(QPoint(0, 0)), m_box->size());
    const QRect screen = m_box->screen()->availableGeometry();
    QRect place(box.left(), box.bottom() + 1, qMax(box.width(), MinimumWidth), Height);
    if (place.bottom() > screen.bottom() && box.top() - Height >= screen.top()) {
        place.moveBottom(box.top() - 1);
    }
    place.moveRight(qMin(place.right(), screen.right()));
    place.moveLeft(qMax(place.left(), screen.left()));
    return place;
}

void CCheckListPopup::search(const QString& input)
{
    m_model->search(input);
    if (!m_list->currentIndex().isValid()) {
        m_list->setCurrentIndex(m_model->index(0));
    }
}

void CCheckListPopup::showCount()
{
    const QString checked = QString::number(m_model->checkedCount());
    const QString all = QString::number(m_model->itemCount());
    const int shown = m_model->rowCount();
    m_count->setText(
        shown == m_model->itemCount()
            ? QCoreApplication::translate("QAV", "已选 %1 / %2").arg(checked, all)
            : QCoreApplication::translate("QAV", "列出 %1，已选 %2 / %3").arg(QString::number(shown), checked, all));
}

bool CCheckListPopup::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress) {
        return QFrame::eventFilter(watched, event);
    }
    auto* const key = static_cast<QKeyEvent*>(event);
    const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    const bool space = watched == m_list && key->key() == Qt::Key_Space;
    if (enter || space) {
        if (!key->isAutoRepeat()) {
            m_model->toggle(m_list->currentIndex());
        }
        return true;
    }
    static const QSet<int> moves{Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown};
    const bool isPlain = (key->modifiers() & ~Qt::KeypadModifier) == 0;
    if (watched != m_search || !isPlain || !moves.contains(key->key())) {
        return false;
    }
    QCoreApplication::sendEvent(m_list, event);
    return true;
}

void CCheckListPopup::mousePressEvent(QMouseEvent* event)
{
    if (rect().contains(event->pos())) {
        QFrame::mousePressEvent(event);
        return;
    }
    // A click on the box closes the list and must not open it again.
    const QRect box(m_box->mapToGlobal(QPoint(0, 0)), m_box->size());
    setAttribute(Qt::WA_NoMouseReplay, box.contains(event->globalPos()));
    hide();
}

void CCheckListPopup::keyPressEvent(QKeyEvent* event)
{
    const bool closes = event->key() == Qt::Key_Escape || event->key() == Qt::Key_F4 ||
                        (event->key() == Qt::Key_Up && event->modifiers() == Qt::AltModifier);
    if (closes) {
        hide();
    } else {
        QFrame::keyPressEvent(event);
    }
}

void CCheckListPopup::paintEvent(QPaintEvent*)
{
    const WQ::CUiResourceManager* const resources = WQ::CUiResourceManager::instance();
    QPainter painter(this);
    painter.setPen(resources->colour(WQ::key::BorderStrong));
    painter.setBrush(resources->colour(WQ::key::PanelBackground));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace QAV
