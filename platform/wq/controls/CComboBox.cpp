// SPDX-License-Identifier: Apache-2.0
#include <WQ/CComboBox.h>
#include <WQ/CEventDeliverer.h>

#include <QAbstractItemView>
#include <QScrollBar>
#include <QWheelEvent>

namespace WQ
{

struct CComboBox::Private {
    int id;
};

CComboBox::CComboBox(int id, QWidget* parent) : QComboBox(parent), m_d(new Private{id})
{
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    connect(this, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this](int index) { deliverEvent(this, ComboIndexChanged, m_d->id, index, itemText(index)); });
}

CComboBox::~CComboBox()
{
    // The base class removes the items when it is destroyed; nobody is told.
    disconnect(this, nullptr, this, nullptr);
}

int CComboBox::id() const
{
    return m_d->id;
}

void CComboBox::showPopup()
{
    if (!isEnabled()) { // assistive technology asks without looking
        return;
    }
    int width = view()->sizeHintForColumn(modelColumn()) + 2 * view()->frameWidth();
    if (count() > maxVisibleItems()) {
        width += view()->verticalScrollBar()->sizeHint().width();
    }
    view()->setMinimumWidth(qBound(0, width, 4 * qMax(200, this->width())));
    QComboBox::showPopup();
}

void CComboBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus()) {
        QComboBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

void CComboBox::onUiResourceChanged()
{
    update();
}

} // namespace WQ
