// SPDX-License-Identifier: Apache-2.0
#include "editor/EditorFixture.h"
#include "support/TestProgram.h"

#include <QAbstractItemView>
#include <QAccessible>

using namespace editor_test;

/// The dialogs without a mouse, and for those who cannot see them.
class EditorKeyboardTest : public EditorTest
{
    Q_OBJECT

private slots:
    void init()
    {
        EditorTest::init();
        m_client->addBothServers();
    }

    void aGroupIsCreatedWithoutTheMouse()
    {
        const int ended = m_client->addLoaded("", [&](WQ::CBaseDialog& dialog) {
            QApplication::setActiveWindow(&dialog);
            QCOMPARE(focused(dialog), m_client->nameEdit());
            support::typeText(*focused(dialog), "稳健一组");

            tabTo(dialog, m_client->institutionEdit());
            QTest::keyClicks(focused(dialog), "nhxt");
            QTest::keyClick(m_client->institutionEdit(), Qt::Key_Enter);
            QCOMPARE(m_client->institutionEdit()->text(), QString("南海信托"));

            tabTo(dialog, m_client->button("添加账号"));
            m_client->boxes.expectDialog([&](WQ::CBaseDialog& picker) {
                QApplication::setActiveWindow(&picker);
                auto* const box = picker.findChild<QAV::CUserCombobox*>();
                tabTo(picker, picker.findChild<WQ::CComboBox*>());
                tabTo(picker, box);
                // A character opens the list and begins the search.
                QTest::keyClick(box, Qt::Key_2);
                QVERIFY(box->isPopupOpen());
                QWidget* const search = focused(picker);
                QTest::keyClicks(search, "0002");
                QTest::keyClick(search, Qt::Key_Enter);
                QTest::keyClick(search, Qt::Key_Escape);
                QVERIFY(!box->isPopupOpen());
                QCOMPARE(box->currentText(), QString("已选 1 个账号"));
                tabTo(picker, buttonOf(picker, "确定"));
                QTest::keyClick(focused(picker), Qt::Key_Space);
            });
            QTest::keyClick(focused(dialog), Qt::Key_Space);
            QCOMPARE(m_client->column(1), QStringList("20002"));

            QApplication::setActiveWindow(&dialog);
            tabTo(dialog, m_client->button("保存"));
            QTest::keyClick(focused(dialog), Qt::Key_Enter);
        });
        QCOMPARE(ended, 1);
        const auto group = m_client->result();
        QCOMPARE(group->groupName, std::string("稳健一组"));
        QCOMPARE(group->institutionId, 201);
        QCOMPARE(group->getSystemTag(), ShenzhenTag);
        QCOMPARE(group->accounts.size(), std::size_t(1));
        QCOMPARE(group->accounts[0]->accountId, std::string("20002"));
    }

    void anAccountIsDeletedWithoutTheMouse()
    {
        const auto group =
            makeGroup("组", ShanghaiTag, 101, {makeAccount(2, "1", ShanghaiTag), makeAccount(2, "2", ShanghaiTag)});
        m_client->editLoaded(group, "上海分系统", [&](WQ::CBaseDialog& dialog) {
            QApplication::setActiveWindow(&dialog);
            tabTo(dialog, m_client->button("添加账号"));
            QTest::keyClick(focused(dialog), Qt::Key_Tab);
            QAbstractItemView* const view = m_client->table()->view();
            QCOMPARE(focused(dialog), view);
            m_client->table()->setCurrentRow(m_client->table()->rowID(1), 4);
            m_client->boxes.expectQuestion(QMessageBox::Information, "删除", "确认删除? ", QMessageBox::Yes);
            QTest::keyClick(focused(dialog), Qt::Key_Space);
            QCOMPARE(m_client->column(1), QStringList("1"));
            m_client->click("关闭");
        });
    }

    void theKeyboardStartsInTheName()
    {
        m_client->add("上海分系统", [&](WQ::CBaseDialog& dialog) {
            QApplication::setActiveWindow(&dialog);
            m_client->waitUntilLoaded();
            QCOMPARE(dialog.focusWidget(), m_client->nameEdit());
            m_client->button("关闭")->setFocus();
            m_client->click("关闭");
        });
        m_client->again([&](WQ::CBaseDialog& dialog) {
            QApplication::setActiveWindow(&dialog);
            m_client->waitUntilLoaded();
            QCOMPARE(dialog.focusWidget(), m_client->nameEdit());
            m_client->click("关闭");
        });
    }

    void everyInteractiveWidgetHasAnAccessibleName()
    {
        const auto group = makeGroup("组", ShanghaiTag, 101, {makeAccount(2, "1", ShanghaiTag)});
        m_client->createDialog().setServerName("");
        m_client->editLoaded(group, "上海分系统", [&](WQ::CBaseDialog& dialog) {
            QCOMPARE(nameless(dialog), QStringList());
            QCOMPARE(m_client->nameEdit()->accessibleName(), QString("账号组名"));
            QCOMPARE(m_client->institutionEdit()->accessibleName(), QString("所属机构"));
            QCOMPARE(m_client->systemCombo()->accessibleName(), QString("分系统"));
            QCOMPARE(m_client->table()->itemWidget(m_client->table()->rowID(0), 4)->accessibleName(),
                     QString("删除账号 1"));
            m_client->boxes.expectDialog([&](WQ::CBaseDialog& picker) {
                auto* const box = picker.findChild<QAV::CUserCombobox*>();
                box->showPopup();
                QCOMPARE(nameless(picker), QStringList());
                QCOMPARE(nameless(*box->findChild<QWidget*>("search")->window()), QStringList());
                box->hidePopup();
                clickButton(picker, "取消");
            });
            m_client->click("添加账号");
            m_client->click("关闭");
        });
    }

private:
    /// What has the keyboard: of the open list if there is one, else of the dialog.
    static QWidget* focused(QWidget& dialog)
    {
        QWidget* const popup = QApplication::activePopupWidget();
        QWidget* const window = popup ? popup : &dialog;
        return window->focusWidget() ? window->focusWidget() : window;
    }

    /// Tab, until the widget has the keyboard.
    static void tabTo(QWidget& dialog, const QWidget* widget)
    {
        QWidget* const start = focused(dialog);
        for (int i = 0; i < 50 && focused(dialog) != widget; ++i) {
            QTest::keyClick(focused(dialog), Qt::Key_Tab);
            QVERIFY2(i == 0 || focused(dialog) != start, "the widget is not in the Tab order");
        }
        QCOMPARE(static_cast<const QWidget*>(focused(dialog)), widget);
    }

    static QStringList nameless(const QWidget& window)
    {
        QStringList found;
        for (QWidget* const widget : window.findChildren<QWidget*>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisibleTo(&window) || widget->focusProxy()) {
                continue;
            }
            const QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(widget);
            if (!interface || interface->text(QAccessible::Name).isEmpty()) {
                found << widget->metaObject()->className() + QString(" in ") +
                             widget->parent()->metaObject()->className();
            }
        }
        return found;
    }
};

TEST_WITH_WIDGETS(EditorKeyboardTest)
#include "tst_editor_keyboard.moc"
