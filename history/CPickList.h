// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CBaseWidget.h>

#include <QPair>
#include <QVector>

namespace WQ
{
class CLineEdit;
class CStandardHpfTable;
} // namespace WQ

namespace QAV
{

class CTextModel;

/// An edit above a list: the list shows what the text finds, also by pinyin. The user chooses an item of the list, or
/// all. A text that finds one item chooses it at once, Enter the first one found.
class CPickList final : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    /// @param allText    the item that stands for no choice: "全部账号组"
    /// @param takesText  Enter with a text that finds nothing chooses the text itself
    CPickList(int tableId, const QString& name, const QString& hint, const QString& allText, bool takesText,
              QWidget* parent);

    /// Replaces the items, given as texts by key. A choice that is not among them stays, and is offered.
    void setItems(const QVector<QPair<QString, QString>>& items);
    /// Adds an item unless it is there.
    void addItem(const QString& key, const QString& text);
    /// Empty: all.
    const QString& chosen() const { return m_chosen; }
    QString chosenText() const;
    /// Chooses an item that is there; empty: all. Reports nothing.
    void choose(const QString& key);

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

Q_SIGNALS:
    /// The user has chosen.
    void sigChosen();

private:
    void append(const QString& key, const QString& text);
    void pick(const QString& rowKey);
    void pickTyped(bool isEntered);
    void showChosen();

    WQ::CLineEdit* m_edit;
    WQ::CStandardHpfTable* m_table;
    CTextModel* m_model;
    const QString m_allText;
    const bool m_takesText;
    QString m_chosen;
    bool m_isSetting = false;
};

} // namespace QAV
