// SPDX-License-Identifier: Apache-2.0
#include "Hands.h"
#include "Stages.h"
#include "TourTest.h"

#include "workbench/CLogInDialog.h"
#include "workbench/COpeningDialog.h"

#include <WQ/CMessageBox.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>

using namespace tour;
using namespace workbench;

/// Assistive technology finds in every window what a user can operate: each control has a name and its actions.
class TourAccessibleTest : public TourTest
{
    Q_OBJECT

    /// What a user operates, by its role.
    static bool isControl(QAccessible::Role role)
    {
        switch (role) {
        case QAccessible::PushButton:
        case QAccessible::CheckBox:
        case QAccessible::RadioButton:
        case QAccessible::ComboBox:
        case QAccessible::EditableText:
        case QAccessible::SpinBox:
        case QAccessible::Slider:
        case QAccessible::Table:
        case QAccessible::List:
        case QAccessible::Tree:
        case QAccessible::PageTab:
        case QAccessible::MenuItem:
        case QAccessible::ColumnHeader:
        case QAccessible::ProgressBar:
            return true;
        default:
            return false;
        }
    }

    static bool isPressed(QAccessible::Role role)
    {
        return role == QAccessible::PushButton || role == QAccessible::CheckBox || role == QAccessible::RadioButton;
    }

    /// Qt names a box on Linux by what was chosen in it, which does not say what it is for.
    static QString nameOf(QAccessibleInterface& item)
    {
        const auto* const box = qobject_cast<const QComboBox*>(item.object());
        return (box ? box->accessibleName() : item.text(QAccessible::Name)).trimmed();
    }

    static QString label(QAccessibleInterface& item)
    {
        const QObject* const object = item.object();
        return QString("%1 %2 role %3")
            .arg(object ? object->metaObject()->className() : "-", object ? object->objectName() : QString(),
                 QString::number(item.role()));
    }

    struct Walk {
        int controls = 0;
        QStringList problems;
    };

    static void look(QAccessibleInterface* item, const QString& path, Walk& walk, int depth = 0)
    {
        if (!item || !item->isValid() || item->state().invisible || depth > 40) {
            return;
        }
        const QString here = path + " / " + label(*item);
        const bool isEnabled = !item->state().disabled;
        if (isControl(item->role())) {
            ++walk.controls;
            // An edit inside a box has the name of the box.
            const bool isPart = item->parent() && item->parent()->role() == QAccessible::ComboBox;
            if (nameOf(*item).isEmpty() && !isPart) {
                walk.problems << "no name: " + here;
            }
        }
        if (isPressed(item->role()) && isEnabled) {
            QAccessibleActionInterface* const actions = item->actionInterface();
            if (!actions || actions->actionNames().isEmpty()) {
                walk.problems << "no action: " + here;
            }
        }
        // Of a long table some lines tell as much as all.
        const int most = item->role() == QAccessible::Table ? 120 : 2000;
        for (int i = 0; i < std::min(item->childCount(), most); ++i) {
            look(item->child(i), here, walk, depth + 1);
        }
    }

    static void check(QWidget& window, int least)
    {
        QCoreApplication::processEvents();
        Walk walk;
        look(QAccessible::queryAccessibleInterface(&window), QString(), walk);
        walk.problems.removeDuplicates();
        QVERIFY2(walk.problems.isEmpty(), qPrintable("\n" + walk.problems.join('\n')));
        QVERIFY2(walk.controls >= least, qPrintable(QString::number(walk.controls)));
    }

    /// Checks a dialog, then closes it.
    static Stage checked(const QString& title, int least)
    {
        return dialog(title, [least](QWidget& window) {
            check(window, least);
            static_cast<QDialog&>(window).done(0);
        });
    }

    void trigger(const QString& text)
    {
        for (QAction* const action : m_client->window().findChildren<QAction*>()) {
            if (action->text() == text) {
                action->trigger();
                return;
            }
        }
        QFAIL(qPrintable(text));
    }

private slots:
    void initTestCase() { startAsAdmin("8-accessible"); }

    void theLogIn()
    {
        CLogInDialog window(m_client->session(), m_client->settings(), nullptr);
        window.show();
        check(window, 4);
    }

    void theFirstStart()
    {
        COpeningDialog window;
        window.show();
        check(window, 2);
    }

    void theMainWindowWithThePanel()
    {
        check(m_client->window(), 15);
        QAbstractItemView* const view = m_client->table().view();
        QApplication::setActiveWindow(&m_client->window());
        view->setFocus();
        QTest::keyClick(view, Qt::Key_Up);
        QVERIFY(m_client->table().header()->hasFocus());
        m_client->pictures("header-by-keys");
        QAccessibleInterface* const table = QAccessible::queryAccessibleInterface(m_client->table().view());
        QAccessibleInterface* const buttons = table->tableInterface()->cellAt(0, 4);
        QCOMPARE(buttons->actionInterface()->actionNames(), QStringList({"风控设置", "编辑", "删除"}));
    }

    void theDialogsOfTheClient()
    {
        play([this] { trigger("插件(&P)…"); }, {checked("插件", 3)});
        play([this] { trigger("最近的消息(&R)…"); }, {dialog("最近的消息", [this](QWidget& window) {
                 check(window, 3);
                 m_client->pictures("messages");
                 static_cast<QDialog&>(window).done(0);
             })});
        play([this] { m_client->window().showAbout(); }, {checked("关于", 1)});
        m_client->window().showManual();
        auto* const manual = m_client->window().findChild<QDialog*>("manual");
        check(*manual, 3);
        m_client->pictures("manual");
        manual->close();
    }

    void theDialogsOfThePanel()
    {
        const QString group = m_client->shown(NameColumn).first();
        play([this] { clickButton(m_client->panel(), "添加账号组"); }, {dialog("添加账号组", [](QWidget& window) {
                 QTRY_VERIFY(findButton(window, "添加账号")->isEnabled());
                 check(window, 6);
                 play([&window] { clickButton(window, "添加账号"); }, {checked("添加", 5)});
                 static_cast<QDialog&>(window).done(0);
             })});
        m_client->waitUntilLoaded();
        play([&] { m_client->clickGroupButton(group, "风控设置"); },
             {dialog(group + "组 - 风控设置", [](QWidget& window) {
                 QTRY_VERIFY(findButton(window, "保存设置")->isEnabled());
                 auto* const tabs = window.findChild<QTabWidget*>();
                 for (int page = 0; page < tabs->count(); ++page) {
                     tabs->setCurrentIndex(page);
                     check(window, 5);
                 }
                 tabs->setCurrentIndex(2);
                 play([&window] { clickButton(window, "设置豁免分类"); }, {checked("选择证券分类", 6)});
                 static_cast<QDialog&>(window).done(0);
             })});
    }

    void thePanelOfTheHistory()
    {
        m_client->window().openPanel("QAV::CHistoryPanel");
        QAV::IkolmDockableWidget& panel = *m_client->window().panel("QAV::CHistoryPanel");
        const auto table = [&panel](const QString& name) {
            const auto tables = panel.findChildren<WQ::CStandardHpfTable*>();
            return *std::find_if(tables.begin(), tables.end(),
                                 [&](const auto* found) { return found->accessibleName() == name; });
        };
        auto& groups = *table("账号组列表");
        QTRY_VERIFY_WITH_TIMEOUT(groups.dataModel()->rowCount() > 1, Patience);
        check(panel, 25);
        // A state that can be restored, then what a restore would change.
        groups.view()->setFocus();
        groups.setCurrentKey(groups.dataModel()->getDataByRow(1)->getKey());
        const auto edits = panel.findChildren<WQ::CLineEdit*>();
        const auto at = std::find_if(edits.begin(), edits.end(),
                                     [](const auto* edit) { return edit->accessibleName() == "查看状态的时间"; });
        QVERIFY(at != edits.end());
        type(**at, QDate::currentDate().toString(Qt::ISODate));
        clickButton(panel, "查看当时状态");
        QTRY_VERIFY_WITH_TIMEOUT(findButton(panel, "恢复到此版本"), Patience);
        check(panel, 30);
        clickButton(panel, "恢复到此版本");
        QTRY_VERIFY_WITH_TIMEOUT(findButton(panel, "放弃恢复"), Patience);
        check(panel, 30);
        panel.findChild<QTabWidget*>()->setCurrentIndex(1);
        const auto& findings = *table("一致性检查结果");
        QTRY_VERIFY_WITH_TIMEOUT(findings.dataModel()->rowCount() > 0, Patience);
        check(panel, 20);
        QAccessibleInterface* const cells = QAccessible::queryAccessibleInterface(findings.view());
        QAccessibleInterface* const button = cells->tableInterface()->cellAt(0, 2);
        QCOMPARE(button->actionInterface()->actionNames(), QStringList("查看历史"));
        QCOMPARE(QAccessible::queryAccessibleInterface(table("修改记录")->view())->text(QAccessible::Name),
                 QString("修改记录"));
    }
};

TEST_WITH_WIDGETS(TourAccessibleTest)
#include "tst_tour_accessible.moc"
