// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"
#include "support/TestProgram.h"

#include <WQ/CSimpleTextWidget.h>
#include <WQ/CUiResourceManager.h>

using namespace panel_test;

/// What the panel is made of, and for whom.
class PanelLayoutTest : public PanelTest
{
    Q_OBJECT

    static bool hasColumn(const WQ::CStandardHpfTable& table, int column)
    {
        return !table.isColumnRemoved(column) && table.isColumnVisible(column) &&
               !table.header()->isSectionHidden(column);
    }

private slots:
    void theTopBarHoldsLabelSearchFieldAndButtons()
    {
        const auto& panel = m_client->createPanel();
        QStringList labels;
        for (const auto* const label : panel.findChildren<WQ::CSimpleTextWidget*>()) {
            labels << label->text();
        }
        QVERIFY(labels.contains("查询组名: "));

        const WQ::CLineEdit* const search = m_client->searchEdit();
        QCOMPARE(search->width(), 190);
        QCOMPARE(search->emptyHintText(), QString("请输入账号组名, 按Enter键查询"));
        QCOMPARE(search->emptyHintColor(), WQ::CUiResourceManager::instance()->colour("clr_lineedit_empty_hint"));
        const auto* const add = m_client->button("添加账号组");
        const auto* const refresh = m_client->button("立即刷新");
        QVERIFY(add && refresh);
        QCOMPARE(add->size(), QSize(70, 26));
        QCOMPARE(refresh->size(), QSize(71, 26));
        QCOMPARE(add->x() - (search->x() + search->width()), 15);
        QCOMPARE(refresh->x() - (add->x() + add->width()), 20);
        QCOMPARE(refresh->parentWidget()->height(), 36);
        QCOMPARE(refresh->parentWidget()->minimumWidth(), 950);
        QCOMPARE(m_client->table()->tableId(), 1274);
        QCOMPARE(m_client->table()->menuFlags(), 255);
        QCOMPARE(m_client->mask()->text(), QString("正在加载基础数据"));
    }

    void theTableFillsThePanelBelowTheTopBar()
    {
        const auto& panel = m_client->createPanel();
        const QWidget* const topBar = m_client->searchEdit()->parentWidget();
        const QWidget* const add = m_client->button("添加账号组");
        QCOMPARE(topBar->mapTo(&panel, QPoint()), QPoint(0, 0));
        QCOMPARE(add->y(), 5);
        const QWidget* label = nullptr;
        for (const auto* const text : topBar->findChildren<WQ::CSimpleTextWidget*>()) {
            if (text->text() == "查询组名: ") {
                label = text;
            }
        }
        QVERIFY(label);
        QCOMPARE(label->x(), 3);
        QCOMPARE(m_client->searchEdit()->x(), label->x() + label->width());
        QCOMPARE(m_client->table()->mapTo(&panel, QPoint()), QPoint(0, 36));
        QCOMPARE(m_client->table()->size(), panel.size() - QSize(0, 36));
    }

    void aUserWithoutTheRightToEditSeesNoAddButtonButTheSpaceBeforeRefreshStays()
    {
        m_client->logIn({10719, 10721});
        m_client->createPanel();
        QVERIFY(!m_client->button("添加账号组"));
        const auto* const refresh = m_client->button("立即刷新");
        QVERIFY(refresh);
        QCOMPARE(refresh->x() - (m_client->searchEdit()->x() + m_client->searchEdit()->width()), 15 + 20);
    }

    void theServerColumnIsShownToUnboundUsersOfSeveralServersOnly_data()
    {
        const support::DataRows<bool, int, bool> row("severalServers", "institution", "shown");
        row("several servers, unbound user", true, 2147483647, true);
        row("several servers, bound user", true, 12, false);
        row("several servers, institution -1", true, -1, false);
        row("one server, unbound user", false, 2147483647, false);
        row("one server, bound user", false, 12, false);
    }
    void theServerColumnIsShownToUnboundUsersOfSeveralServersOnly()
    {
        QFETCH(bool, severalServers);
        QFETCH(int, institution);
        QFETCH(bool, shown);
        m_client->addShanghai();
        if (severalServers) {
            m_client->addShenzhen();
        }
        m_client->logIn(AllRights, institution);
        m_client->createPanel();
        QCOMPARE(hasColumn(*m_client->table(), 3), shown);
        if (shown) {
            QCOMPARE(m_client->table()->columnWidth(3), 200);
        }
    }

    void withoutThePortalModulesThereIsNoInstitutionColumn_data()
    {
        const support::DataRows<QString, bool> row("modules", "present");
        row("both", "return { mdl_portal = { mdl_portal_pb = true } }", true);
        row("institutions off", "return { mdl_portal = { mdl_portal_pb = false } }", false);
        row("portal off", "return { mdl_portal = { on = false, mdl_portal_pb = true } }", false);
        row("neither", "return {}", false);
    }
    void withoutThePortalModulesThereIsNoInstitutionColumn()
    {
        QFETCH(QString, modules);
        QFETCH(bool, present);
        m_client->addBothServers();
        support::switchModules(modules);
        m_client->createPanel();
        const WQ::CStandardHpfTable& table = *m_client->table();
        QCOMPARE(hasColumn(table, 2), present);
        QTRY_VERIFY(table.header()->sectionSize(1) > 0);
        const int endOfCount = table.header()->sectionViewportPosition(1) + table.header()->sectionSize(1);
        const int startOfServer = table.header()->sectionViewportPosition(3);
        if (present) {
            QVERIFY(startOfServer > endOfCount);
        } else {
            QCOMPARE(startOfServer, endOfCount);
        }
    }

    void aStoredLayoutBringsNoColumnBackThatIsNotForTheUser()
    {
        m_client->addBothServers();
        const QString layout = m_client->createPanel().param();
        QVERIFY(hasColumn(*m_client->table(), 2));
        QVERIFY(hasColumn(*m_client->table(), 3));
        m_client->logIn(AllRights, 12);
        support::switchModules("return {}");
        m_client->createPanel().setParam(layout);
        QVERIFY(!hasColumn(*m_client->table(), 2));
        QVERIFY(!hasColumn(*m_client->table(), 3));
    }

    void onlyCountInstitutionAndServerCanBeFiltered()
    {
        m_client->createPanel();
        QVector<bool> filterable;
        for (int column = 0; column < 5; ++column) {
            filterable << m_client->table()->isColumnFilterable(column);
        }
        QCOMPARE(filterable, QVector<bool>({false, true, true, true, false}));
    }

    void wholeRowsAreSelected()
    {
        m_client->createPanel();
        const WQ::CStandardHpfTable fresh(1, nullptr, 255);
        QCOMPARE(m_client->table()->flags(), fresh.flags() & ~8);
        QVERIFY((fresh.flags() & 8) != 0);
    }

    void everyControlHasAnAccessibleName()
    {
        const auto& panel = m_client->createPanel();
        QStringList nameless;
        for (const QWidget* const widget : panel.findChildren<QWidget*>()) {
            if (widget->isVisible() && widget->focusPolicy() != Qt::NoFocus && !widget->isHidden()) {
                QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
                if (face && face->text(QAccessible::Name).isEmpty()) {
                    nameless << QString("%1 %2").arg(widget->metaObject()->className(), widget->objectName());
                }
            }
        }
        QCOMPARE(nameless, QStringList());
    }
};

TEST_WITH_WIDGETS(PanelLayoutTest)
#include "tst_panel_layout.moc"
