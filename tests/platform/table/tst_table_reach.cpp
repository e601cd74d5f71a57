// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/CCheckBox.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>

#include <QAccessible>
#include <QMenu>

using namespace support;

/// Everything in a table can be reached by keys, by its menu and by assistive technology.
class TableReachTest : public ShownTableTest
{
    Q_OBJECT

    QHeaderView* header() const { return m_shown->table->header(); }
    QAccessibleInterface* accessible() const { return QAccessible::queryAccessibleInterface(m_shown->view); }
    QAccessibleInterface* cell(int row, int column) const
    {
        return accessible()->tableInterface()->cellAt(row, column);
    }
    QAccessibleInterface* section(int column) const { return accessible()->child(column + 1); }
    /// Presses a key where the focus is.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    /// Opens the context menu by the menu key and chooses the entry.
    QStringList menuByKey(const QString& choose)
    {
        QStringList texts;
        QTimer::singleShot(0, this, [&] {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            for (QAction* const action : menu ? menu->actions() : QList<QAction*>()) {
                texts << action->text();
                if (action->text() == choose) {
                    menu->setActiveAction(action);
                }
            }
            if (menu) {
                QTest::keyClick(menu, texts.contains(choose) ? Qt::Key_Return : Qt::Key_Escape);
            }
        });
        const QPoint place = QApplication::focusWidget()->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, place, m_shown->view->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
        return texts;
    }

private slots:
    void theHeaderIsReachedByKeysSortsAndFilters()
    {
        m_shown->fill(30);
        m_shown->table->setColumnFilterable(Place, true);
        m_shown->view->setFocus();
        m_shown->table->setCurrentKey("k1");
        press(Qt::Key_Up);
        QVERIFY(m_shown->view->hasFocus());
        press(Qt::Key_Up);
        QVERIFY(header()->hasFocus());
        press(Qt::Key_Right);
        press(Qt::Key_Return);
        QCOMPARE(m_shown->model->sortColumn(), int(Count));
        QCOMPARE(m_shown->model->sortOrder(), Qt::AscendingOrder);
        press(Qt::Key_Space);
        QCOMPARE(m_shown->model->sortOrder(), Qt::DescendingOrder);
        press(Qt::Key_Return);
        QCOMPARE(m_shown->model->sortColumn(), -1);
        press(Qt::Key_Right);
        press(Qt::Key_Down, Qt::AltModifier);
        QTRY_VERIFY(QApplication::activePopupWidget());
        QWidget* const popup = QApplication::activePopupWidget();
        QCOMPARE(popup->objectName(), QString("tableFilterPopup"));
        popup->close();
        header()->setFocus();
        press(Qt::Key_Down);
        QVERIFY(m_shown->view->hasFocus());
    }

    void theHeaderOfAnEmptyTableIsReachedToo()
    {
        m_shown->view->setFocus();
        press(Qt::Key_Up);
        QVERIFY(header()->hasFocus());
        const QImage first = header()->grab().toImage();
        press(Qt::Key_Left); // there is no column before the first
        QCOMPARE(header()->grab().toImage(), first);
        press(Qt::Key_Right);
        QVERIFY(header()->grab().toImage() != first);
        press(Qt::Key_Escape);
        QVERIFY(m_shown->view->hasFocus());
        QVERIFY(header()->grab().toImage() != first);
    }

    void withoutSortingTheKeysOfTheHeaderDoNotSort()
    {
        m_shown->fill(3);
        m_shown->table->setFlags(m_shown->table->flags() & ~WQ::TableHeaderSort);
        m_shown->view->setFocus();
        press(Qt::Key_Up);
        press(Qt::Key_Return);
        QCOMPARE(m_shown->model->sortColumn(), -1);
        QVERIFY(!section(Name)->actionInterface()->actionNames().contains("排序"));
    }

    void theMenuKeyOffersTheActionsOfTheRow()
    {
        m_shown->fill(10);
        m_shown->view->setFocus();
        m_shown->table->setCurrentKey("k4");
        const QVector<WQ::ButtonData> buttons = m_shown->buttons->itemButtons("k4");
        QCOMPARE(buttons.size(), 2);
        const QStringList texts = menuByKey(buttons[1].text);
        QCOMPARE(texts.mid(0, 2), QStringList({buttons[0].text, buttons[1].text}));
        QCOMPARE(m_shown->sink.events.size(), std::size_t(1));
        QCOMPARE(m_shown->sink.events[0].text, QString("k4"));
        QCOMPARE(m_shown->sink.events[0].param, buttons[1].id);
    }

    void rowButtonsAreActionsOfTheirCell()
    {
        m_shown->fill(10);
        QAccessibleInterface* const buttons = cell(3, Buttons);
        const QVector<WQ::ButtonData> offered = m_shown->buttons->itemButtons("k3");
        QCOMPARE(buttons->role(), QAccessible::Cell);
        QCOMPARE(buttons->actionInterface()->actionNames(), QStringList({offered[0].text, offered[1].text}));
        QVERIFY(buttons->text(QAccessible::Description).contains(offered[1].text));
        buttons->actionInterface()->doAction(offered[1].text);
        QCOMPARE(m_shown->sink.events.size(), std::size_t(1));
        QCOMPARE(m_shown->sink.events[0].text, QString("k3"));
        QCOMPARE(m_shown->sink.events[0].param, offered[1].id);
        QCOMPARE(cell(3, Name)->actionInterface()->actionNames(), QStringList());
        QCOMPARE(cell(3, Name)->text(QAccessible::Name), m_shown->model->texts()[3]);
    }

    void sectionsOfTheHeaderSayHowTheyAreSortedAndFiltered()
    {
        m_shown->fill(10);
        m_shown->table->setColumnFilterable(Name, true);
        QCOMPARE(section(Name)->role(), QAccessible::ColumnHeader);
        QCOMPARE(section(Name)->text(QAccessible::Name), m_shown->model->getHeaderText(Name));
        QCOMPARE(section(Name)->text(QAccessible::Description), QString());
        QCOMPARE(section(Name)->actionInterface()->actionNames(), QStringList({"排序", "筛选"}));
        section(Name)->actionInterface()->doAction("排序");
        QCOMPARE(section(Name)->text(QAccessible::Description), QString("升序"));
        section(Name)->actionInterface()->doAction("排序");
        m_shown->model->filterColumn(Name, {WQ::FilterContains, {m_shown->model->texts()[0]}});
        QCOMPARE(section(Name)->text(QAccessible::Description), QString("降序，已筛选"));
        QCOMPARE(section(Count)->text(QAccessible::Description), QString());
    }

    void theChildrenOfATableAreWhereTheirIndexSays()
    {
        m_shown->fill(5);
        QAccessibleInterface* const table = accessible();
        QCOMPARE(table->role(), QAccessible::Table);
        QCOMPARE(table->childCount(), 6 * (Columns + 1));
        for (int i = 0; i < table->childCount(); ++i) {
            QCOMPARE(table->indexOfChild(table->child(i)), i);
            QVERIFY(table->child(i)->parent() == table);
        }
        m_shown->table->setCurrentKey("k2");
        QVERIFY(table->focusChild() == cell(2, Name));
        QVERIFY(cell(2, Name)->state().selected);
        const QPoint middle = cell(2, Count)->rect().center();
        QVERIFY(table->childAt(middle.x(), middle.y()) == cell(2, Count));
        QVERIFY(table->childAt(section(Name)->rect().center().x(), section(Name)->rect().center().y()) ==
                section(Name));
        QAccessibleInterface* const last = cell(4, Name);
        m_shown->model->clear();
        QVERIFY(!last->isValid());
        QVERIFY(!cell(4, Name));
    }

    void cellsOfASimpleTableSayWhatTheyHold()
    {
        WQ::CStandardSimpleTable table(1, nullptr);
        table.setColumnCount(3);
        const int row = table.appendRow();
        table.setItemText(row, 0, "文字", true);
        auto* const check = new WQ::CCheckBox(0, QString(), &table);
        check->setAccessibleName("启用");
        check->setChecked(true);
        table.setItemWidget(row, 1, check, 0, true);
        auto* const button = new WQ::CSmallNormalButton(1, true, WQ::NormalButton, &table);
        button->setText("删除");
        table.setItemWidget(row, 2, button, 0, true);
        table.resize(500, 200);
        table.show();
        QVERIFY(QTest::qWaitForWindowExposed(&table));
        QAccessibleTableInterface* const cells = QAccessible::queryAccessibleInterface(table.view())->tableInterface();
        QCOMPARE(cells->cellAt(0, 0)->text(QAccessible::Name), QString("文字"));
        QAccessibleInterface* const checkCell = cells->cellAt(0, 1);
        QCOMPARE(checkCell->role(), QAccessible::CheckBox);
        QCOMPARE(checkCell->text(QAccessible::Name), QString("启用"));
        QVERIFY(checkCell->state().checked);
        checkCell->actionInterface()->doAction(checkCell->actionInterface()->actionNames().value(0));
        QVERIFY(!check->isChecked() && !checkCell->state().checked);
        QCOMPARE(checkCell->childCount(), 1);
        QVERIFY(checkCell->child(0)->object() == check);
        const QSignalSpy clicked(button, &QPushButton::clicked);
        cells->cellAt(0, 2)->actionInterface()->doAction("删除");
        QCOMPARE(clicked.count(), 1);
    }
};

TEST_WITH_WIDGETS(TableReachTest)
#include "tst_table_reach.moc"
