// SPDX-License-Identifier: Apache-2.0
#include "RecordingPanel.h"
#include "support/TestProgram.h"

#include <WQ/CAutoKeyboardLineEdit.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>

#include <QAbstractItemView>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

using WQ::CStandardSimpleTable;

/// What the user does with mouse and keyboard.
class SimpleTableUserTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_panel = std::make_unique<test::RecordingPanel>();
        m_before = new QLineEdit(m_panel.get());
        m_table = new CStandardSimpleTable(7, m_panel.get());
        m_after = new QLineEdit(m_panel.get());
        auto* const layout = new QVBoxLayout(m_panel.get());
        for (QWidget* const widget :
             {static_cast<QWidget*>(m_before), static_cast<QWidget*>(m_table), static_cast<QWidget*>(m_after)}) {
            layout->addWidget(widget);
        }
        m_table->setColumnCount(3);
        m_table->setHeaderText(0, QStringLiteral("账号"));
        m_table->setHeaderText(1, QStringLiteral("产品"));
        m_table->setHeaderText(2, QStringLiteral("操作"));
        m_ids.clear();
        for (int i = 0; i < 50; ++i) {
            const int id = m_table->appendRow();
            m_ids << id;
            m_table->setItemText(id, 0, QStringLiteral("6000%1").arg((i * 7) % 50, 2, 10, QLatin1Char('0')), true);
            m_table->setItemText(id, 1, QStringLiteral("产品%1").arg(i), true);
            auto* const button = new WQ::CSmallNormalButton(id + 1000, true, 1, m_table);
            button->setText(QStringLiteral("删除"));
            m_table->setItemWidget(id, 2, button, 132, true);
        }
        test::showActive(*m_panel, {420, 400});
        QTRY_VERIFY(m_table->itemWidget(m_ids[0], 2)->isVisible());
    }

    void keysOpenTheEditorOfTheCurrentCell()
    {
        auto* const edit = new QLineEdit("5", m_table);
        auto* const box = new QComboBox(m_table);
        box->addItems({"甲", "乙"});
        m_table->setItemWidget(m_ids[0], 0, edit, 0, true);
        m_table->setItemWidget(m_ids[0], 1, box, 0, true);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_F2}) {
            m_table->view()->setFocus();
            m_table->setCurrentRow(m_ids[0], 0);
            QTest::keyClick(m_table->view(), key);
            QVERIFY(edit->hasFocus());
            QCOMPARE(edit->selectedText(), QString("5"));
        }
        m_table->view()->setFocus();
        m_table->setCurrentRow(m_ids[0], 1);
        QTest::keyClick(m_table->view(), Qt::Key_F2);
        QVERIFY(box->hasFocus());
        QVERIFY(!box->view()->isVisible());
        m_table->view()->setFocus();
        QTest::keyClick(m_table->view(), Qt::Key_Down, Qt::AltModifier);
        QVERIFY(box->view()->isVisible());
        box->hidePopup();
        // Enter in a cell without an editor activates the row as ever.
        const QSignalSpy activated(m_table, &CStandardSimpleTable::sigRowActivated);
        m_table->view()->setFocus();
        m_table->setCurrentRow(m_ids[1], 0);
        QTest::keyClick(m_table->view(), Qt::Key_Return);
        QCOMPARE(activated.count(), 1);
    }

    void escAndEnterLeaveTheEditorForItsCell()
    {
        auto* const edit = new WQ::CAutoKeyboardLineEdit(m_table);
        auto* const box = new QComboBox(m_table);
        m_table->setItemWidget(m_ids[0], 0, edit, 0, true);
        m_table->setItemWidget(m_ids[0], 1, box, 0, true);
        for (QWidget* const editor : {static_cast<QWidget*>(edit), static_cast<QWidget*>(box)}) {
            QTRY_COMPARE(editor->parentWidget(), m_table->view()->viewport());
            for (const Qt::Key leave : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter}) {
                editor->setFocus(Qt::MouseFocusReason);
                QVERIFY(editor->hasFocus());
                QTest::keyClick(editor, leave);
                QTRY_COMPARE(QApplication::focusWidget(), m_table->view());
                QCOMPARE(m_table->view()->currentIndex().column(), editor == box ? 1 : 0);
            }
        }
        // On a button, and in the table itself, Esc is for the window.
        for (QWidget* const place : {m_table->itemWidget(m_ids[0], 2), static_cast<QWidget*>(m_table->view())}) {
            place->setFocus();
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
            QCoreApplication::sendEvent(place, &escape);
            QVERIFY(!escape.isAccepted());
            QVERIFY(place->hasFocus());
        }
    }

    void plainClicksToggleRowsWhereTheFlagSaysSo()
    {
        m_table->setFlags((m_table->flags() & ~0x8) | 0x2000);
        click(1, 0);
        click(3, 1);
        QCOMPARE(m_table->selectedRows(), QVector<int>({m_ids[1], m_ids[3]}));
        click(1, 1);
        QCOMPARE(m_table->selectedRows(), QVector<int>({m_ids[3]}));
        key(Qt::Key_Down);
        key(Qt::Key_Space);
        QCOMPARE(m_table->selectedRows(), QVector<int>({m_ids[2], m_ids[3]}));
    }

    void plainClicksReplaceTheSelectionOtherwise()
    {
        click(1, 0);
        click(3, 1);
        QCOMPARE(m_table->selectedRows(), QVector<int>({m_ids[3]}));
        QCOMPARE(m_table->view()->selectionModel()->selectedIndexes().size(), 1);
        click(5, 1, Qt::ShiftModifier);
        QCOMPARE(m_table->selectedRows(), QVector<int>({m_ids[3], m_ids[4], m_ids[5]}));
        m_table->setFlags(m_table->flags() & ~0x8);
        click(2, 0);
        QCOMPARE(m_table->view()->selectionModel()->selectedIndexes().size(), 3);
    }

    void tabGoesThroughTheButtonsOfTheCurrentRowAndOn()
    {
        m_before->setFocus();
        key(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), m_table->view());
        m_table->setCurrentRow(m_ids[2]);
        key(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), m_table->itemWidget(m_ids[2], 2));
        key(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), m_after);
        key(Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget(), m_table->view());
        key(Qt::Key_Tab);
        key(Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget(), m_table->view());
        key(Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget(), m_before);
    }

    void arrowKeysReachTheButtonsOfRowsThatWereNotOnScreen()
    {
        m_table->setFocus();
        key(Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(m_table->currentRow(), m_ids[49]);
        key(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), m_table->itemWidget(m_ids[49], 2));
        key(Qt::Key_Space);
        QCOMPARE(m_panel->events, QVector<test::RecordingPanel::Event>({{5, m_ids[49] + 1000, 0}}));
        // Scrolled away with the focus, the button gives it to the table.
        m_table->setCurrentRow(m_ids[0]);
        QCOMPARE(QApplication::focusWidget(), m_table->view());
    }

    void spaceAndEnterClickTheButtonOfTheCurrentCell()
    {
        m_table->setFocus();
        m_table->setCurrentRow(m_ids[3], 2);
        key(Qt::Key_Space);
        key(Qt::Key_Return);
        QCOMPARE(m_panel->events,
                 QVector<test::RecordingPanel::Event>({{5, m_ids[3] + 1000, 0}, {5, m_ids[3] + 1000, 0}}));
        m_table->itemWidget(m_ids[3], 2)->setEnabled(false);
        key(Qt::Key_Space);
        QCOMPARE(m_panel->events.size(), 2);
    }

    void arrowKeysOnAButtonGoToTheButtonOfTheNextRow()
    {
        m_table->setFocus();
        m_table->setCurrentRow(m_ids[0], 0);
        key(Qt::Key_Tab);
        for (int i = 0; i < 30; ++i) {
            key(Qt::Key_Down);
        }
        QCOMPARE(QApplication::focusWidget(), m_table->itemWidget(m_ids[30], 2));
        key(Qt::Key_Up);
        QCOMPARE(QApplication::focusWidget(), m_table->itemWidget(m_ids[29], 2));
        key(Qt::Key_Enter);
        QCOMPARE(m_panel->events, QVector<test::RecordingPanel::Event>({{5, m_ids[29] + 1000, 0}}));
        key(Qt::Key_Left);
        QCOMPARE(QApplication::focusWidget(), m_table->view());
        QCOMPARE(m_table->view()->currentIndex().column(), 1);
    }

    void deletingByKeyboardCanGoOn()
    {
        m_panel->react = [this](const test::RecordingPanel::Event& event) { m_table->removeRow(event.id - 1000); };
        m_table->setFocus();
        m_table->setCurrentRow(m_ids[10], 2);
        for (int i = 0; i < 5; ++i) {
            key(Qt::Key_Space);
        }
        QCOMPARE(m_table->rowCount(), 45);
        QCOMPARE(m_table->rowIndex(m_ids[9]), 9);
        QCOMPARE(m_table->rowIndex(m_ids[15]), 10);
        QCOMPARE(m_table->currentRow(), m_ids[15]);
        QCOMPARE(m_panel->events.size(), 5);
    }

    void enterAndDoubleClickActivateARow()
    {
        QSignalSpy activated(m_table, &CStandardSimpleTable::sigRowActivated);
        m_table->setFocus();
        m_table->setCurrentRow(m_ids[1], 0);
        key(Qt::Key_Return);
        QAbstractItemView* const view = m_table->view();
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                           view->visualRect(view->model()->index(2, 0)).center());
        QCOMPARE(activated.size(), 2);
        QCOMPARE(activated[0][0].toInt(), m_ids[1]);
        QCOMPARE(activated[1][0].toInt(), m_ids[2]);
        QVERIFY(m_panel->events.isEmpty());
    }

    void aClickOnAHeaderSortsUpDownAndNotAtAll()
    {
        QHeaderView* const header = m_table->header();
        const auto clickHeader = [header] {
            QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                              QPoint(header->sectionViewportPosition(0) + 20, header->height() / 2));
        };
        clickHeader();
        QCOMPARE(m_table->itemText(m_table->rowID(0), 0), QStringLiteral("600000"));
        QCOMPARE(m_table->itemText(m_table->rowID(1), 0), QStringLiteral("600001"));
        QVERIFY(header->isSortIndicatorShown());
        QCOMPARE(header->sortIndicatorSection(), 0);
        clickHeader();
        QCOMPARE(m_table->itemText(m_table->rowID(0), 0), QStringLiteral("600049"));
        clickHeader();
        QCOMPARE(m_table->rowID(1), m_ids[1]);
        QVERIFY(!header->isSortIndicatorShown());
    }

    void aClickOnAHeaderSelectsNothing()
    {
        click(1, 0);
        QHeaderView* const header = m_table->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(20, header->height() / 2));
        QCOMPARE(m_table->selectedRows(), QVector<int>({m_ids[1]}));
    }

    void aClickOnAHeaderDoesNothingWithoutTheFlag()
    {
        m_table->setFlags(m_table->flags() & ~0x40);
        QHeaderView* const header = m_table->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(20, header->height() / 2));
        QCOMPARE(m_table->rowID(1), m_ids[1]);
    }

    void aColumnThatTheUserNarrowsCanBeRestored()
    {
        m_table->header()->resizeSection(0, 10);
        QCOMPARE(m_table->columnWidth(0), 40);
        QVERIFY(m_table->loadConfigStr(m_table->saveConfigStr()));
        QCOMPARE(m_table->columnWidth(0), 40);
    }

    void ctrlCCopiesTheSelectionForASpreadsheet()
    {
        m_table->setFocus();
        click(0, 0);
        key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("600000"));
        click(1, 1, Qt::ShiftModifier);
        key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("600000\t产品0\n600007\t产品1\n"));
        key(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("账号\t产品\n600000\t产品0\n600007\t产品1\n"));
        m_table->setColumnVisible(1, false);
        QCOMPARE(m_table->selectedText(false), QStringLiteral("600000\n600007\n"));
    }

    void shortcutsAreOffWithoutTheMenuFlag()
    {
        QApplication::clipboard()->setText(QStringLiteral("untouched"));
        m_table->setFlags(m_table->flags() & ~0x200);
        m_table->setFocus();
        click(0, 0);
        key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("untouched"));
    }

    void ctrlASelectsAllAndCtrlFFinds()
    {
        m_table->setFocus();
        key(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(m_table->selectedRows().size(), 50);
        m_table->clearSelection();
        key(Qt::Key_F, Qt::ControlModifier);
        auto* const edit = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        QVERIFY(edit);
        QVERIFY(!edit->accessibleName().isEmpty());
        QTest::keyClicks(edit, QStringLiteral("60003"));
        QTest::keyClick(edit, Qt::Key_Return);
        const int first = m_table->currentRow();
        QVERIFY(m_table->itemText(first, 0).contains(QStringLiteral("60003")));
        QTest::keyClick(edit, Qt::Key_Return);
        const int second = m_table->currentRow();
        QVERIFY(m_table->rowIndex(second) > m_table->rowIndex(first));
        QVERIFY(m_table->itemText(second, 0).contains(QStringLiteral("60003")));
        QTest::keyClick(edit, Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(m_table->currentRow(), first);
        QTest::keyClick(edit, Qt::Key_Escape);
        QVERIFY(!edit->isVisible());
        QCOMPARE(QApplication::focusWidget(), m_table->view());
        QVERIFY(m_panel->events.isEmpty());
    }

    void theFindLineIsUsedByItsButtonsToo()
    {
        m_table->setFocus();
        key(Qt::Key_F, Qt::ControlModifier);
        auto* const edit = m_table->findChild<QLineEdit*>(QStringLiteral("tableFindEdit"));
        const auto press = [this](const char* name) {
            QTest::mouseClick(m_table->findChild<QToolButton*>(QLatin1String(name)), Qt::LeftButton);
        };
        const auto result = [this] { return m_table->findChild<QLabel*>(QStringLiteral("tableFindResult"))->text(); };
        edit->setText(QStringLiteral("产品1"));
        const int first = m_table->currentRow();
        QCOMPARE(m_table->itemText(first, 1), QStringLiteral("产品1"));
        press("tableFindNext");
        QVERIFY(m_table->rowIndex(m_table->currentRow()) > m_table->rowIndex(first));
        press("tableFindPrevious");
        QCOMPARE(m_table->currentRow(), first);
        QCOMPARE(result(), QString());
        edit->setText(QStringLiteral("没有"));
        press("tableFindNext");
        QCOMPARE(result(), QStringLiteral("未找到"));
        QCOMPARE(m_table->currentRow(), first);
        press("tableFindClose");
        QVERIFY(!edit->isVisible());
        QCOMPARE(QApplication::focusWidget(), m_table->view());
    }

    void theMenuOffersColumns()
    {
        QStringList entries;
        QStringList offered;
        // The menu runs its own event loop; this is answered inside it.
        QTimer::singleShot(0, this, [&] {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu) {
                return;
            }
            for (const QAction* const action : menu->actions()) {
                if (action->isVisible() && !action->isSeparator()) {
                    entries << action->text();
                }
            }
            auto* const columns = menu->findChild<QMenu*>(QStringLiteral("tableColumns"));
            for (QAction* const action : columns->actions()) {
                offered << action->text();
                if (action->text() == QStringLiteral("产品")) {
                    action->trigger();
                }
            }
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(30, 30),
                                m_table->view()->viewport()->mapToGlobal(QPoint(30, 30)));
        QApplication::sendEvent(m_table->view()->viewport(), &event);
        QCOMPARE(entries,
                 QStringList({QStringLiteral("删除"), QStringLiteral("复制"), QStringLiteral("复制（含表头）"),
                              QStringLiteral("全选"), QStringLiteral("查找…"), QStringLiteral("导出CSV…"),
                              QStringLiteral("清除排序"), QStringLiteral("自动列宽"), QStringLiteral("显示列")}));
        QCOMPARE(offered, QStringList({QStringLiteral("账号"), QStringLiteral("产品"), QStringLiteral("操作")}));
        QVERIFY(!m_table->isColumnVisible(1));
    }

    void theTableHasAnAccessibleName()
    {
        QTRY_COMPARE(m_table->view()->accessibleName(), QStringLiteral("表格 账号、产品、操作"));
        m_table->setAccessibleName(QStringLiteral("组内账号"));
        m_table->adjustTableSize();
        QTRY_COMPARE(m_table->view()->accessibleName(), QStringLiteral("组内账号"));
    }

    void theSelectionSurvivesAThemeSwitch()
    {
        click(2, 0);
        test::setTheme(QStringLiteral("light"));
        test::setTheme(QStringLiteral("dark"));
        QCOMPARE(m_table->selectedRows(), QVector<int>({m_ids[2]}));
        QTRY_VERIFY(m_table->itemWidget(m_ids[2], 2)->isVisible());
    }

private:
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QVERIFY(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    void click(int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QAbstractItemView* const view = m_table->view();
        const QRect cell = view->visualRect(view->model()->index(row, column));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, cell.center());
    }

    std::unique_ptr<test::RecordingPanel> m_panel;
    CStandardSimpleTable* m_table = nullptr;
    QLineEdit* m_before = nullptr;
    QLineEdit* m_after = nullptr;
    QVector<int> m_ids;
};

TEST_WITH_WIDGETS(SimpleTableUserTest)
#include "tst_simple_table_user.moc"
