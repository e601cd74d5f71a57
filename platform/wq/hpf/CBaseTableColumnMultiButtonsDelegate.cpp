// SPDX-License-Identifier: Apache-2.0
#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>

#include "hpf/CButtonFaces.h"
#include "hpf/CRowButtons.h"

#include <WQ/CEventDeliverer.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPersistentModelIndex>

#include <algorithm>

namespace WQ
{

struct CBaseTableColumnMultiButtonsDelegate::Private {
    /// A button on screen: its cell and its number in the cell.
    struct Place {
        QPersistentModelIndex index;
        int position = -1;
    };

    explicit Private(CEventDeliverer* eventSink) : sink(eventSink) {}

    /// Number of the row's list of buttons, -1 if it has none.
    int listOf(const QModelIndex& index)
    {
        const auto* model = qobject_cast<const IBaseHpfTableModel*>(index.model());
        const IBaseHpfTableDataPtr record = model ? model->getDataByRow(index.row()) : IBaseHpfTableDataPtr();
        return record ? rows.listOf(record->getKey()) : -1;
    }

    const CButtonFaces::Strip* stripOf(const QModelIndex& index, const QRect& cell, const QFont& font,
                                       int* list = nullptr)
    {
        const int number = listOf(index);
        if (list) {
            *list = number;
        }
        if (number < 0 || rows.list(number).isEmpty()) {
            return nullptr;
        }
        return &faces.strip(number, rows.list(number), cell.height(), font);
    }

    CEventDeliverer* sink;
    CRowButtons rows;
    CButtonFaces faces;
    Place hovered;
    Place pressed;
    QString pressedKey;
    bool pressedInside = false;
    int focused = 0;
};

namespace
{

QString keyOf(const QModelIndex& index)
{
    const auto* model = qobject_cast<const IBaseHpfTableModel*>(index.model());
    const IBaseHpfTableDataPtr record = model ? model->getDataByRow(index.row()) : IBaseHpfTableDataPtr();
    return record ? record->getKey() : QString();
}

} // namespace

CBaseTableColumnMultiButtonsDelegate::CBaseTableColumnMultiButtonsDelegate(int column, CEventDeliverer* sink,
                                                                           QObject* parent)
    : CBaseTableColumnDelegate(column, parent), m_d(std::make_unique<Private>(sink))
{
}

CBaseTableColumnMultiButtonsDelegate::~CBaseTableColumnMultiButtonsDelegate() = default;

void CBaseTableColumnMultiButtonsDelegate::setItemButtons(const QString& rowKey, const QVector<ButtonData>& buttons)
{
    m_d->rows.set(rowKey, buttons);
    requestRepaint();
}

QVector<ButtonData> CBaseTableColumnMultiButtonsDelegate::itemButtons(const QString& rowKey) const
{
    const int list = m_d->rows.listOf(rowKey);
    return list < 0 ? QVector<ButtonData>() : m_d->rows.list(list);
}

void CBaseTableColumnMultiButtonsDelegate::press(const QString& rowKey, int buttonId)
{
    const QVector<ButtonData> buttons = itemButtons(rowKey);
    const bool isThere = std::any_of(buttons.begin(), buttons.end(),
                                     [buttonId](const ButtonData& button) { return button.id == buttonId; });
    if (m_d->sink && isThere) {
        m_d->sink->handleEvent(RowButtonClicked, column(), buttonId, rowKey, nullptr);
    }
}

void CBaseTableColumnMultiButtonsDelegate::clear()
{
    m_d->rows.clear();
    m_d->faces.clear();
    m_d->hovered = {};
    m_d->pressed = {};
    m_d->focused = 0;
    requestRepaint();
}

QRect CBaseTableColumnMultiButtonsDelegate::buttonRect(const QModelIndex& index, const QRect& cell, int position) const
{
    const QFont font = table() ? table()->view()->font() : QFont();
    const CButtonFaces::Strip* strip = m_d->stripOf(index, cell, font);
    if (!strip || position < 0 || position >= strip->rects.size()) {
        return {};
    }
    return strip->rects.at(position).translated(cell.topLeft());
}

void CBaseTableColumnMultiButtonsDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                                 const QModelIndex& index) const
{
    int list = -1;
    const CButtonFaces::Strip* strip = m_d->stripOf(index, option.rect, option.font, &list);
    if (!strip) {
        return;
    }
    const bool narrow = strip->width > option.rect.width();
    if (narrow) {
        painter->save();
        painter->setClipRect(option.rect, Qt::IntersectClip);
    }
    painter->drawPixmap(option.rect.topLeft(), strip->image);
    const bool current = option.state.testFlag(QStyle::State_HasFocus);
    for (int i = 0; i < strip->rects.size(); ++i) {
        unsigned states = ButtonRests;
        if (m_d->pressed.position == i && m_d->pressed.index == index) {
            if (m_d->pressedInside) {
                states |= ButtonPressed;
            }
        } else if (m_d->hovered.position == i && m_d->hovered.index == index && m_d->pressed.position < 0) {
            states |= ButtonHovered;
        }
        if (current && m_d->focused == i) {
            states |= ButtonFocused;
        }
        if (states != ButtonRests) {
            CButtonFaces::paint(*painter, strip->rects.at(i).translated(option.rect.topLeft()),
                                m_d->rows.list(list).at(i), states, option.font);
        }
    }
    if (narrow) {
        painter->restore();
    }
}

int CBaseTableColumnMultiButtonsDelegate::contentWidth(const QModelIndex& index) const
{
    const QFont font = table() ? table()->view()->font() : QFont();
    const QRect cell = table() ? table()->view()->visualRect(index) : QRect(0, 0, 0, 28);
    const CButtonFaces::Strip* strip = m_d->stripOf(index, cell, font);
    return strip ? strip->width : 0;
}

QString CBaseTableColumnMultiButtonsDelegate::accessibleText(const QModelIndex& index) const
{
    const int list = m_d->listOf(index);
    QStringList texts;
    if (list >= 0) {
        for (const ButtonData& button : m_d->rows.list(list)) {
            texts.append(button.text);
        }
    }
    return texts.join(QCoreApplication::translate("WQ", "、"));
}

QString CBaseTableColumnMultiButtonsDelegate::toolTipAt(const QModelIndex& index, const QRect& cell,
                                                        const QPoint& position) const
{
    const int list = m_d->listOf(index);
    if (list < 0) {
        return {};
    }
    const QVector<ButtonData>& buttons = m_d->rows.list(list);
    for (int i = 0; i < buttons.size(); ++i) {
        if (buttonRect(index, cell, i).contains(position)) {
            return buttons.at(i).text;
        }
    }
    return {};
}

bool CBaseTableColumnMultiButtonsDelegate::mouseEvent(QMouseEvent* event, const QModelIndex& index, const QRect& cell)
{
    int under = -1;
    for (int i = 0;; ++i) {
        const QRect rect = buttonRect(index, cell, i);
        if (rect.isNull()) {
            break;
        }
        if (cell.contains(event->pos()) && rect.contains(event->pos())) {
            under = i;
        }
    }
    QAbstractItemView* view = table() ? table()->view() : nullptr;
    if (!view) {
        return false;
    }
    const auto repaint = [view](const QPersistentModelIndex& place) {
        if (place.isValid()) {
            view->update(place);
        }
    };
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (event->button() != Qt::LeftButton || under < 0) {
            return false;
        }
        m_d->pressed = {index, under};
        m_d->pressedKey = keyOf(index);
        m_d->pressedInside = true;
        m_d->focused = under;
        repaint(index);
        return true;
    case QEvent::MouseMove: {
        if (m_d->pressed.position >= 0) {
            m_d->pressedInside = under == m_d->pressed.position && m_d->pressed.index == index;
            repaint(m_d->pressed.index);
            return true;
        }
        const Private::Place before = m_d->hovered;
        m_d->hovered = {index, under};
        if (before.index != index) {
            repaint(before.index);
        }
        if (before.index != index || before.position != under) {
            repaint(index);
        }
        return false;
    }
    case QEvent::MouseButtonRelease: {
        if (event->button() != Qt::LeftButton || m_d->pressed.position < 0) {
            return false;
        }
        const Private::Place released = m_d->pressed;
        m_d->pressed = {};
        m_d->hovered = {index, under};
        repaint(released.index);
        // A table that was filled anew while the button was down may show another row here.
        const QString key = keyOf(index);
        if (under != released.position || released.index != index || key != m_d->pressedKey) {
            return true;
        }
        const QVector<ButtonData> buttons = itemButtons(key);
        // The handler may run dialogs or refill the table: nothing here is used after it.
        if (m_d->sink && under < buttons.size()) {
            m_d->sink->handleEvent(RowButtonClicked, column(), buttons.at(under).id, key, nullptr);
        }
        return true;
    }
    default:
        return false;
    }
}

void CBaseTableColumnMultiButtonsDelegate::mouseLeft()
{
    const Private::Place before = m_d->hovered;
    m_d->hovered = {};
    if (before.index.isValid() && table()) {
        table()->view()->update(before.index);
    }
}

bool CBaseTableColumnMultiButtonsDelegate::keyEvent(QKeyEvent* event, const QModelIndex& index)
{
    const QString key = keyOf(index);
    const QVector<ButtonData> buttons = itemButtons(key);
    if (buttons.isEmpty() || (event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
        return false;
    }
    m_d->focused = qBound(0, m_d->focused, buttons.size() - 1);
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const int to = m_d->focused + (event->key() == Qt::Key_Right ? 1 : -1);
        if (to < 0 || to >= buttons.size()) {
            return false;
        }
        m_d->focused = to;
        table()->view()->setAccessibleDescription(
            QCoreApplication::translate("WQ", "当前按钮：%1").arg(buttons.at(to).text));
        table()->view()->update(index);
        return true;
    }
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_d->sink && !event->isAutoRepeat()) {
            m_d->sink->handleEvent(RowButtonClicked, column(), buttons.at(m_d->focused).id, key, nullptr);
        }
        return true;
    default:
        return false;
    }
}

void CBaseTableColumnMultiButtonsDelegate::currentChanged(bool current, bool forward)
{
    if (!current) {
        return;
    }
    const QModelIndex index = table() ? table()->view()->currentIndex() : QModelIndex();
    const QVector<ButtonData> buttons = itemButtons(keyOf(index));
    m_d->focused = forward || buttons.isEmpty() ? 0 : buttons.size() - 1;
    if (!buttons.isEmpty()) {
        table()->view()->setAccessibleDescription(
            QCoreApplication::translate("WQ", "当前按钮：%1").arg(buttons.at(m_d->focused).text));
    }
}

} // namespace WQ
