// SPDX-License-Identifier: Apache-2.0
#include "history/CPickList.h"

#include "history/CTextModel.h"
#include "history/CTextRow.h"
#include "history/ControlId.h"

#include <WQ/CLineEdit.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/EventType.h>
#include <WQ/ResourceKeys.h>

#include <QAbstractItemView>
#include <QHeaderView>
#include <QVBoxLayout>

#include <boost/make_shared.hpp>

namespace QAV
{

namespace
{

/// The keys of rows begin with a letter, so that the row that stands for all has one, too.
QString rowKey(const QString& key)
{
    return QLatin1Char('k') + key;
}

} // namespace

CPickList::CPickList(int tableId, const QString& name, const QString& hint, const QString& allText, bool takesText,
                     QWidget* parent)
    : CBaseWidget(QString(), false, parent), m_edit(new WQ::CLineEdit(PickEditId, this)),
      m_table(new WQ::CStandardHpfTable(tableId, this, WQ::MenuCopy | WQ::MenuExport)), m_model(new CTextModel({name})),
      m_allText(allText), m_takesText(takesText)
{
    m_edit->setEmptyHintText(hint);
    m_edit->setAccessibleName(name);
    m_table->setDataModel(m_model);
    m_table->setFlags((m_table->flags() &
                       ~(WQ::TableCellSelection | WQ::TableHeaderFilter | WQ::TableShowHeader | WQ::TableShowGrid)));
    m_table->setAccessibleName(name + QStringLiteral("列表"));
    m_table->header()->setStretchLastSection(true);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_edit);
    layout->addWidget(m_table, 1);
    connect(m_table, &WQ::CStandardHpfTable::sigCurrentKeyChanged, this, &CPickList::pick);
    setItems({});
}

void CPickList::append(const QString& key, const QString& text)
{
    m_model->addData(boost::make_shared<CTextRow>(rowKey(key), QStringList{text}, nvservice::IDataPtr(),
                                                  key.isEmpty() ? QString(WQ::key::TextWeak) : QString()));
}

void CPickList::setItems(const QVector<QPair<QString, QString>>& items)
{
    const QString text = chosenText();
    m_isSetting = true;
    m_model->clear();
    append({}, m_allText);
    bool hasChosen = m_chosen.isEmpty();
    for (const auto& item : items) {
        append(item.first, item.second);
        hasChosen = hasChosen || item.first == m_chosen;
    }
    if (!hasChosen) {
        append(m_chosen, text);
    }
    m_model->announce();
    m_table->search({0}, m_edit->getText());
    showChosen();
    m_isSetting = false;
}

void CPickList::addItem(const QString& key, const QString& text)
{
    if (m_model->getDataIndexByKey(rowKey(key)) < 0) {
        append(key, text);
    }
}

QString CPickList::chosenText() const
{
    const WQ::IBaseHpfTableDataPtr row = m_model->getDataByKey(rowKey(m_chosen));
    return row && !m_chosen.isEmpty() ? row->getDisplayQString(0) : QString();
}

void CPickList::choose(const QString& key)
{
    m_isSetting = true;
    m_chosen = key;
    m_edit->clear();
    m_model->announce();
    m_table->search({0}, {});
    showChosen();
    m_isSetting = false;
}

void CPickList::showChosen()
{
    m_table->setCurrentKey(rowKey(m_chosen));
}

void CPickList::pick(const QString& picked)
{
    // Without a row there is no key: the text hides the current one.
    if (m_isSetting || picked.isEmpty() || picked == rowKey(m_chosen)) {
        return;
    }
    m_chosen = picked.mid(1);
    emit sigChosen();
}

void CPickList::pickTyped(bool isEntered)
{
    m_isSetting = true;
    m_model->announce();
    m_table->search({0}, m_edit->getText());
    showChosen();
    m_isSetting = false;
    const QString text = m_edit->getText().trimmed();
    if (text.isEmpty()) {
        return;
    }
    if (m_model->rowCount() == 1 || (isEntered && m_model->rowCount() > 0)) {
        const QString first = m_model->getDataByRow(0)->getKey();
        m_table->setCurrentKey(first);
        pick(first);
    } else if (isEntered && m_takesText) {
        addItem(text, text);
        m_model->announce();
        pick(rowKey(text));
    }
}

bool CPickList::handleEvent(int type, int, int, QString, void*)
{
    if (!m_isSetting && (type == WQ::LineEditTextChanged || type == WQ::ButtonOrEnter)) {
        pickTyped(type == WQ::ButtonOrEnter);
    }
    return true;
}

} // namespace QAV
