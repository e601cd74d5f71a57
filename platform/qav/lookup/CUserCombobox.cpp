// SPDX-License-Identifier: Apache-2.0
#include <QAV/CUserCombobox.h>

#include "lookup/CCheckListModel.h"
#include "lookup/CCheckListPopup.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace QAV
{

struct CUserCombobox::Private {
    int id;
    QString typeText;
    CCheckListModel* model;
    CCheckListPopup* popup = nullptr;
};

CUserCombobox::CUserCombobox(int id, const QString& typeText, QWidget* parent)
    : QComboBox(parent), m_d(new Private{id, typeText, new CCheckListModel(this)})
{
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    QComboBox::addItem(QString());
    connect(m_d->model, &CCheckListModel::sigCheckedChanged, this, &CUserCombobox::showCheckedCount);
    connect(m_d->model, &CCheckListModel::sigCheckedChanged, this, &CUserCombobox::sigCheckedChanged);
    showCheckedCount();
}

CUserCombobox::~CUserCombobox() = default;

int CUserCombobox::id() const
{
    return m_d->id;
}

void CUserCombobox::clear()
{
    m_d->model->clear();
}

void CUserCombobox::addItems(const QMap<QString, QString>& items)
{
    m_d->model->addItems(items);
    if (isPopupOpen()) {
        m_d->model->prepareSearch();
    }
}

void CUserCombobox::setCheckItems(const QSet<QString>& keys)
{
    m_d->model->setCheckedKeys(keys);
}

QSet<QString> CUserCombobox::checkKeys() const
{
    return m_d->model->checkedKeys();
}

int CUserCombobox::itemCount() const
{
    return m_d->model->itemCount();
}

int CUserCombobox::checkedCount() const
{
    return m_d->model->checkedCount();
}

void CUserCombobox::showCheckedCount()
{
    const int checked = m_d->model->checkedCount();
    QComboBox::setItemText(
        0, checked == 0
               ? QCoreApplication::translate("QAV", "请选择%1").arg(m_d->typeText)
               : QCoreApplication::translate("QAV", "已选 %1 个%2").arg(QString::number(checked), m_d->typeText));
}

void CUserCombobox::showPopup()
{
    openPopup(QString());
}

void CUserCombobox::openPopup(const QString& searchInput)
{
    if (!m_d->popup) {
        m_d->popup = new CCheckListPopup(m_d->model, m_d->typeText, this);
    }
    m_d->popup->open(searchInput);
}

void CUserCombobox::hidePopup()
{
    if (m_d->popup) {
        m_d->popup->hide();
    }
    QComboBox::hidePopup();
}

bool CUserCombobox::isPopupOpen() const
{
    return m_d->popup && m_d->popup->isVisible();
}

void CUserCombobox::onUiResourceChanged()
{
    update();
}

void CUserCombobox::mousePressEvent(QMouseEvent* event)
{
    // The base class would open the list of its own items.
    if (event->button() == Qt::LeftButton) {
        showPopup();
    }
}

void CUserCombobox::keyPressEvent(QKeyEvent* event)
{
    const bool plain = (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0;
    const bool altArrow =
        (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up) && (event->modifiers() & Qt::AltModifier);
    if (altArrow || (plain && (event->key() == Qt::Key_Space || event->key() == Qt::Key_F4))) {
        showPopup();
    } else if (plain && !event->text().isEmpty() && event->text().front().isPrint()) {
        openPopup(event->text());
    } else {
        // In the base class, arrow keys choose another of its own items.
        event->ignore();
    }
}

void CUserCombobox::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

} // namespace QAV
