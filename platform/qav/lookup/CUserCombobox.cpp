// SPDX-License-Identifier: Apache-2.0
#include <QAV/CUserCombobox.h>

#include "lookup/CCheckListModel.h"
#include "lookup/CCheckListPopup.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace QAV
{

CUserCombobox::CUserCombobox(int id, const QString& typeText, QWidget* parent)
    : QComboBox(parent), m_id(id), m_typeText(typeText), m_model(new CCheckListModel(this))
{
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    QComboBox::addItem(QString());
    connect(m_model, &CCheckListModel::sigCheckedChanged, this, &CUserCombobox::showCheckedCount);
    connect(m_model, &CCheckListModel::sigCheckedChanged, this, &CUserCombobox::sigCheckedChanged);
    showCheckedCount();
}

CUserCombobox::~CUserCombobox() = default;

void CUserCombobox::clear()
{
    m_model->clear();
}

void CUserCombobox::addItems(const QMap<QString, QString>& items)
{
    m_model->addItems(items);
    if (isPopupOpen()) {
        m_model->prepareSearch();
    }
}

void CUserCombobox::setCheckItems(const QSet<QString>& keys)
{
    m_model->setCheckedKeys(keys);
}

QSet<QString> CUserCombobox::checkKeys() const
{
    return m_model->checkedKeys();
}

int CUserCombobox::itemCount() const
{
    return m_model->itemCount();
}

int CUserCombobox::checkedCount() const
{
    return m_model->checkedCount();
}

void CUserCombobox::showCheckedCount()
{
    const int checked = m_model->checkedCount();
    QComboBox::setItemText(
        0, checked == 0 ? QCoreApplication::translate("QAV", "请选择%1").arg(m_typeText)
                        : QCoreApplication::translate("QAV", "已选 %1 个%2").arg(QString::number(checked), m_typeText));
}

void CUserCombobox::showPopup()
{
    openPopup(QString());
}

void CUserCombobox::openPopup(const QString& searchInput)
{
    if (!m_popup) {
        m_popup = new CCheckListPopup(m_model, m_typeText, this);
    }
    m_popup->open(searchInput);
}

void CUserCombobox::hidePopup()
{
    if (m_popup) {
        m_popup->hide();
    }
    QComboBox::hidePopup();
}

bool CUserCombobox::isPopupOpen() const
{
    return m_popup && m_popup->isVisible();
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
