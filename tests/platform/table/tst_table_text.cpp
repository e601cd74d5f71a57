// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

using namespace support;

class TableTextTest : public ShownTableTest
{
    Q_OBJECT

    static QByteArray contents(const QString& fileName)
    {
        QFile file(fileName);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private slots:
    void ctrlCCopiesTheSelectedRowsAsTabSeparatedText()
    {
        m_shown->fill(3);
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(0, Name).center());
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          m_shown->cell(2, Name).center());
        m_shown->press(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), QString("组0\t3\t北京\t0.00\n组2\t1\t北京\t2.00\n"));
        m_shown->press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(QApplication::clipboard()->text(),
                 QString("名称\t数量\t地点\t价格\n组0\t3\t北京\t0.00\n组2\t1\t北京\t2.00\n"));
    }

    void copiedColumnsStandAsTheyAreShown()
    {
        m_shown->fill(1);
        m_shown->table->header()->moveSection(0, 1);
        m_shown->table->setColumnVisible(Price, false);
        m_shown->view->selectAll();
        QCOMPARE(m_shown->table->selectedText(false), QString("1\t组0\t北京\n"));
    }

    void textsThatSpreadsheetsWouldRunAreGuarded()
    {
        int row = 0;
        for (const char* name : {"=1+1", "+86", "-x", "@sum", "\tx", "plain"}) {
            m_shown->model->add(QString::number(row++), QString::fromUtf8(name), -5);
        }
        ShownTable::settle();
        for (int column : {Place, Price}) {
            m_shown->table->setColumnVisible(column, false);
        }
        m_shown->view->selectAll();
        QCOMPARE(m_shown->table->selectedText(false),
                 QString("'=1+1\t-5\n'+86\t-5\n'-x\t-5\n'@sum\t-5\n\"'\tx\"\t-5\nplain\t-5\n"));
    }

    void oneCellAloneIsItsPlainText()
    {
        m_shown->table->setFlags(m_shown->table->flags() | WQ::TableCellSelection);
        m_shown->model->add("a", "=1+1");
        ShownTable::settle();
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(0, Name).center());
        m_shown->press(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), QString("=1+1"));
    }

    void scatteredCellsKeepTheirPlaces()
    {
        m_shown->table->setFlags(m_shown->table->flags() | WQ::TableCellSelection);
        m_shown->fill(3);
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(0, Name).center());
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          m_shown->cell(2, Place).center());
        QCOMPARE(m_shown->table->selectedText(false), QString("组0\t\n\t北京\n"));
    }

    void rowsWithNothingSelectedInAShownColumnAreLeftOut()
    {
        m_shown->table->setFlags(m_shown->table->flags() | WQ::TableCellSelection);
        m_shown->fill(4);
        const auto add = [&](int row, int column) {
            QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, Qt::ControlModifier,
                              m_shown->cell(row, column).center());
        };
        add(0, Name);
        add(1, Price);
        add(3, Name);
        m_shown->table->setColumnVisible(Price, false);
        QCOMPARE(m_shown->table->selectedText(false), QString("组0\n组3\n"));
    }

    void lineBreaksAndTabsStayInTheirCell()
    {
        m_shown->model->add("a", "一\n二", 1, "\"引\"号");
        ShownTable::settle();
        m_shown->table->setColumnVisible(Price, false);
        m_shown->view->selectAll();
        QCOMPARE(m_shown->table->selectedText(false), QString("\"一\n二\"\t1\t\"\"\"引\"\"号\"\n"));
    }

    void nothingSelectedCopiesNothing()
    {
        m_shown->fill(2);
        QApplication::clipboard()->setText("before");
        m_shown->press(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), QString("before"));
    }

    void whatTheMenuDoesNotOfferHasNoShortcut()
    {
        ShownTable shown(7, WQ::MenuAll & ~(WQ::MenuCopy | WQ::MenuFind));
        shown.fill(2);
        shown.view->selectAll();
        QApplication::clipboard()->setText("before");
        shown.press(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), QString("before"));
        shown.press(Qt::Key_F, Qt::ControlModifier);
        QVERIFY(!shown.table->findChild<QLineEdit*>("tableFindEdit"));
    }

    void theMenuOffersWhatTheFlagsSay()
    {
        const auto offered = [](int menuFlags) {
            ShownTable shown(7, menuFlags);
            shown.fill(2);
            QStringList texts;
            QStringList ofRow; // come first
            for (const WQ::ButtonData& button : shown.buttons->itemButtons("k0")) {
                ofRow << button.text;
            }
            QTimer::singleShot(0, shown.table.get(), [&] {
                if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                    for (const QAction* action : menu->actions()) {
                        if (action->isVisible() && !action->isSeparator()) {
                            texts.append(action->text());
                        }
                    }
                    menu->close();
                }
            });
            emit shown.view->customContextMenuRequested(shown.cell(0, Price).center());
            return texts.mid(0, ofRow.size()) == ofRow ? texts.mid(ofRow.size()) : texts;
        };
        QCOMPARE(offered(255), (QStringList{"复制", "复制（含表头）", "全选", "查找…", "导出CSV…", "清除筛选",
                                            "清除排序", "自动列宽", "显示列"}));
        QCOMPARE(offered(WQ::MenuCopy | WQ::MenuFitColumns), (QStringList{"复制", "自动列宽"}));
        QCOMPARE(offered(0), QStringList());
    }

    void sortingAndFilterCanBeClearedWhileThereIsOne()
    {
        m_shown->fill(2);
        auto* const clearSort = m_shown->view->findChild<QAction*>("tableClearSort");
        auto* const clearFilter = m_shown->view->findChild<QAction*>("tableClearFilter");
        QVERIFY(!clearSort->isEnabled());
        QVERIFY(!clearFilter->isEnabled());
        m_shown->table->sortByColumn(Count, Qt::AscendingOrder);
        m_shown->table->filterColumn(Name, {WQ::FilterContains, {"1"}});
        QVERIFY(clearSort->isEnabled());
        QVERIFY(clearFilter->isEnabled());
        clearSort->trigger();
        clearFilter->trigger();
        QCOMPARE(m_shown->model->sortColumn(), -1);
        QVERIFY(!m_shown->model->isFiltered());
        QVERIFY(!clearSort->isEnabled());
        QVERIFY(!clearFilter->isEnabled());
    }

    void csvHoldsWhatIsShownInUtf8WithByteOrderMark()
    {
        m_shown->model->add("a", "甲,乙", 1, "=cmd");
        m_shown->model->add("b", "\"丙\"", 2, "上海");
        m_shown->model->add("c", "隐藏", 3);
        ShownTable::settle();
        m_shown->table->filterColumn(Count, {WQ::FilterOneOf, {"1", "2"}});
        m_shown->table->sortByColumn(Count, Qt::DescendingOrder);
        QTemporaryDir folder;
        const QString fileName = folder.filePath("表.csv");
        QVERIFY(m_shown->table->exportCsv(fileName));
        QCOMPARE(contents(fileName), QByteArray("\xEF\xBB\xBF"
                                                "名称,数量,地点,价格\r\n"
                                                "\"\"\"丙\"\"\",2,上海,0.00\r\n"
                                                "\"甲,乙\",1,'=cmd,0.00\r\n"));
    }

    void anExportThatCannotBeWrittenSaysSoAndLeavesNoFile()
    {
        m_shown->fill(2);
        QString error;
        QVERIFY(!m_shown->table->exportCsv("/nowhere/at/all.csv", &error));
        QVERIFY(error.contains("/nowhere/at/all.csv"));
        QVERIFY(!QFile::exists("/nowhere/at/all.csv"));
    }

    void manyRowsAreExportedWhole()
    {
        m_shown->fill(20000);
        QTemporaryDir folder;
        QVERIFY(m_shown->table->exportCsv(folder.filePath("t.csv")));
        const QByteArray text = contents(folder.filePath("t.csv"));
        QCOMPARE(text.count("\r\n"), 20001);
        QVERIFY(text.endsWith("组19999,1,上海,19999.00\r\n"));
    }
};

TEST_WITH_WIDGETS(TableTextTest)
#include "tst_table_text.moc"
