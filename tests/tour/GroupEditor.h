// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Stages.h"

#include <QAV/CManagerSearchLineEdit.h>
#include <QAV/CUserCombobox.h>
#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CStandardSimpleTable.h>

#include <QStringList>

namespace tour
{

enum MemberColumn { MemberTypeColumn, MemberAccountColumn, MemberServerColumn, MemberProductColumn };

/// The group dialog as the user sees and uses it.
class GroupEditor
{
public:
    /// Waits until the dialog has loaded.
    explicit GroupEditor(QWidget& dialog);

    WQ::CLineEdit& name() const;
    QAV::CManagerSearchLineEdit& institution() const;
    /// Null where there is no choice of servers.
    WQ::CComboBox* server() const;
    WQ::CStandardSimpleTable& table() const;
    /// The red text beside the name.
    QString nameTip() const;
    /// The tip that floats at the institution; empty without one.
    QString institutionTip() const;
    QStringList accounts(MemberColumn column = MemberAccountColumn) const;

    void typeName(const QString& text) const;
    /// Types what finds one institution and settles it with Enter.
    void typeInstitution(const QString& text) const;
    /// Types, and clicks the line with this text in the list that opens.
    void pickInstitution(const QString& text, const QString& line) const;
    /// Opens the picker, and takes over the accounts that the searches find first.
    void pick(const QString& type, const QStringList& searches) const;
    /// Opens the picker; `act` ends it.
    void pick(const std::function<void(QWidget&)>& act) const;
    /// Presses 删除 in the account's row and answers the question.
    void removeAccount(const QString& account, const QString& answer) const;
    void save() const;
    void close() const;

private:
    QWidget& m_dialog;
};

/// The dialog for a new group, and the one for a group that is there. `act` is played once it has loaded, and closes
/// it.
Stage adding(const std::function<void(const GroupEditor&)>& act);
Stage editing(const std::function<void(const GroupEditor&)>& act);

/// The account picker as the user sees and uses it.
class AccountPicker
{
public:
    explicit AccountPicker(QWidget& dialog);

    WQ::CComboBox& type() const;
    QStringList types() const;
    QAV::CUserCombobox& box() const;
    /// Checks or unchecks in the open list the first account that each search finds, or the one at another row.
    void toggle(const QStringList& searches, int row = 0) const;
    /// The texts of the accounts in the list.
    QStringList offers() const;

private:
    QWidget& m_dialog;
};

} // namespace tour
