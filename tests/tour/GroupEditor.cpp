// SPDX-License-Identifier: Apache-2.0
#include "GroupEditor.h"

#include "support/wq/Widgets.h"

#include "Hands.h"

#include <WQ/CMessageTip.h>
#include <WQ/CSimpleTextWidget.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QLineEdit>
#include <QtTest>

namespace tour
{

GroupEditor::GroupEditor(QWidget& dialog) : m_dialog(dialog)
{
    const auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
    QTRY_VERIFY_WITH_TIMEOUT(mask->isHidden(), 60000);
}

WQ::CLineEdit& GroupEditor::name() const
{
    return *m_dialog.findChild<WQ::CLineEdit*>();
}

QAV::CManagerSearchLineEdit& GroupEditor::institution() const
{
    return *m_dialog.findChild<QAV::CManagerSearchLineEdit*>();
}

WQ::CComboBox* GroupEditor::server() const
{
    return m_dialog.findChild<WQ::CComboBox*>();
}

WQ::CStandardSimpleTable& GroupEditor::table() const
{
    return *m_dialog.findChild<WQ::CStandardSimpleTable*>();
}

QString GroupEditor::nameTip() const
{
    for (const auto* const label : m_dialog.findChildren<WQ::CSimpleTextWidget*>()) {
        if (label->colorKey() == QLatin1String("clr_global_rise")) {
            return label->text();
        }
    }
    return QStringLiteral("no tip");
}

QString GroupEditor::institutionTip() const
{
    const WQ::CMessageTip* const tip = WQ::CMessageTip::tipOf(&institution());
    return tip ? tip->text() : QString();
}

QStringList GroupEditor::accounts(MemberColumn column) const
{
    return support::shown(table(), column);
}

void GroupEditor::typeName(const QString& text) const
{
    retype(name(), text);
}

void GroupEditor::typeInstitution(const QString& text) const
{
    retype(institution(), text);
    QTest::keyClick(&institution(), Qt::Key_Enter);
}

void GroupEditor::pickInstitution(const QString& text, const QString& line) const
{
    retype(institution(), text);
    auto* const list = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
    QVERIFY2(list, qPrintable(QString("no list opened for “%1”").arg(text)));
    const QAbstractItemModel& lines = *list->model();
    for (int row = 0; row < lines.rowCount(); ++row) {
        if (lines.index(row, 0).data().toString() == line) {
            click(*list->viewport(), list->visualRect(lines.index(row, 0)).center());
            return;
        }
    }
    QFAIL(qPrintable(QString("“%1” is not in the list").arg(line)));
}

void GroupEditor::pick(const QString& type, const QStringList& searches) const
{
    pick([&](QWidget& dialog) {
        const AccountPicker picker(dialog);
        choose(picker.type(), type);
        picker.toggle(searches);
        clickButton(dialog, QStringLiteral("确定"));
    });
}

void GroupEditor::pick(const std::function<void(QWidget&)>& act) const
{
    play([&] { clickButton(m_dialog, QStringLiteral("添加账号")); }, {dialog(QStringLiteral("添加"), act)});
}

void GroupEditor::removeAccount(const QString& account, const QString& answer) const
{
    play([&] { clickRowButton(table(), MemberAccountColumn, account); },
         {box(QStringLiteral("删除"), QStringLiteral("确认删除? "), answer)});
}

void GroupEditor::save() const
{
    clickButton(m_dialog, QStringLiteral("保存"));
}

void GroupEditor::close() const
{
    clickButton(m_dialog, QStringLiteral("关闭"));
}

Stage adding(const std::function<void(const GroupEditor&)>& act)
{
    return dialog(QStringLiteral("添加账号组"), [act](QWidget& shown) { act(GroupEditor(shown)); });
}

Stage editing(const std::function<void(const GroupEditor&)>& act)
{
    return dialog(QStringLiteral("编辑账号组"), [act](QWidget& shown) { act(GroupEditor(shown)); });
}

AccountPicker::AccountPicker(QWidget& dialog) : m_dialog(dialog) {}

WQ::CComboBox& AccountPicker::type() const
{
    return *m_dialog.findChild<WQ::CComboBox*>();
}

QStringList AccountPicker::types() const
{
    QStringList texts;
    for (int i = 0; i < type().count(); ++i) {
        texts << type().itemText(i);
    }
    return texts;
}

QAV::CUserCombobox& AccountPicker::box() const
{
    return *m_dialog.findChild<QAV::CUserCombobox*>();
}

void AccountPicker::toggle(const QStringList& searches, int row) const
{
    click(box());
    QVERIFY(box().isPopupOpen());
    auto* const search = box().findChild<QLineEdit*>(QStringLiteral("search"));
    auto* const items = box().findChild<QAbstractItemView*>(QStringLiteral("items"));
    for (const QString& text : searches) {
        retype(*search, text);
        QVERIFY2(items->model()->rowCount() > row, qPrintable(text));
        click(*items->viewport(), items->visualRect(items->model()->index(row, 0)).center());
    }
    QTest::keyClick(search, Qt::Key_Escape);
    QVERIFY(!box().isPopupOpen());
}

QStringList AccountPicker::offers() const
{
    box().showPopup();
    const auto* const items = box().findChild<QAbstractItemView*>(QStringLiteral("items"));
    QStringList texts;
    for (int row = 0; row < items->model()->rowCount(); ++row) {
        texts << items->model()->index(row, 0).data().toString();
    }
    box().hidePopup();
    return texts;
}

} // namespace tour
