// SPDX-License-Identifier: Apache-2.0
#include "RecordingPanel.h"
#include "support/TestProgram.h"

#include <WQ/CStandardSimpleTable.h>

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QHeaderView>
#include <QScrollBar>

#include <sys/resource.h>

#include <csignal>

using WQ::CStandardSimpleTable;

class SimpleTableRowsTest : public QObject
{
    Q_OBJECT

    static QStringList shownTexts(const CStandardSimpleTable& table, int column = 0)
    {
        const QAbstractItemModel& model = *table.view()->model();
        QStringList texts;
        for (int row = 0; row < model.rowCount(); ++row) {
            texts << model.index(row, column).data().toString();
        }
        return texts;
    }

    static QVector<int> fill(CStandardSimpleTable& table, const QStringList& texts)
    {
        QVector<int> ids;
        for (const QString& text : texts) {
            ids << table.appendRow();
            table.setItemText(ids.last(), 0, text, true);
        }
        return ids;
    }

private slots:
    void init()
    {
        m_table = std::make_unique<CStandardSimpleTable>(1275, nullptr);
        m_table->setColumnCount(2);
        m_table->setHeaderText(0, QStringLiteral("账号"));
        m_table->setHeaderText(1, QStringLiteral("分系统"));
    }

    void rowsKeepTheirIdsWhenOthersAreRemoved()
    {
        const QVector<int> ids = fill(*m_table, {"a", "b", "c", "d"});
        QCOMPARE(ids, QVector<int>({0, 1, 2, 3}));
        m_table->removeRow(ids[1]);
        QCOMPARE(m_table->rowCount(), 3);
        QCOMPARE(m_table->rowIndex(ids[0]), 0);
        QCOMPARE(m_table->rowIndex(ids[1]), -1);
        QCOMPARE(m_table->rowIndex(ids[2]), 1);
        QCOMPARE(m_table->rowID(1), ids[2]);
        QCOMPARE(m_table->rowID(2), ids[3]);
        QCOMPARE(m_table->rowID(3), -1);
        QCOMPARE(m_table->itemText(ids[2], 0), QStringLiteral("c"));
        QCOMPARE(m_table->appendRow(), 4);
        QCOMPARE(m_table->rowIndex(4), 3);
        QCOMPARE(shownTexts(*m_table), QStringList({"a", "c", "d", ""}));
    }

    void idsAreNotUsedAgainAfterClear()
    {
        const QVector<int> ids = fill(*m_table, {"a", "b"});
        m_table->clear();
        QCOMPARE(m_table->rowCount(), 0);
        const int next = m_table->appendRow();
        QVERIFY(!ids.contains(next));
        QCOMPARE(m_table->itemText(next, 0), QString());
        QCOMPARE(m_table->itemText(ids[0], 0), QString());
    }

    void unknownRowsAndColumnsDoNothing()
    {
        fill(*m_table, {"a"});
        m_table->setItemText(5, 0, QStringLiteral("x"), true);
        m_table->setItemText(0, 2, QStringLiteral("x"), true);
        m_table->setItemText(0, -1, QStringLiteral("x"), true);
        m_table->removeRow(5);
        m_table->removeRow(-1);
        m_table->setHeaderText(7, QStringLiteral("x"));
        m_table->setColumnVisible(7, false);
        m_table->setCurrentRow(9);
        m_table->setRowSelected(9, true);
        QCOMPARE(m_table->itemText(5, 0), QString());
        QCOMPARE(m_table->itemWidget(0, 9), nullptr);
        QCOMPARE(m_table->columnWidth(9), 0);
        QCOMPARE(shownTexts(*m_table), QStringList({"a"}));
        // The widget was handed over: the table deletes it all the same.
        QPointer<QWidget> lost = new QWidget;
        m_table->setItemWidget(99, 0, lost, 132, true);
        QTRY_VERIFY(lost.isNull());
    }

    void theViewFollowsAnyMixOfChanges()
    {
        QAbstractItemModelTester tester(m_table->view()->model(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        test::showActive(*m_table, {300, 300});
        std::mt19937 random(7);
        QStringList plain;
        QVector<int> ids;
        int name = 0;
        for (int step = 0; step < 400; ++step) {
            for (unsigned change = random() % 40; change > 0; --change) {
                const unsigned what = random() % 100;
                if (ids.isEmpty() || what < 60) {
                    plain << QString::number(name++);
                    ids << m_table->appendRow();
                    m_table->setItemText(ids.last(), 0, plain.last(), true);
                } else if (what < 99) {
                    const int at = int(random() % unsigned(ids.size()));
                    m_table->removeRow(ids[at]);
                    ids.removeAt(at);
                    plain.removeAt(at);
                } else {
                    m_table->clear();
                    ids.clear();
                    plain.clear();
                }
            }
            QCOMPARE(m_table->rowCount(), ids.size());
            if (step % 3 == 0) {
                QCoreApplication::processEvents();
            }
            QCOMPARE(shownTexts(*m_table), plain);
        }
    }

    void removingManyScatteredRowsKeepsSelectionCurrentRowAndScrollPosition()
    {
        QStringList texts;
        for (int i = 0; i < 1000; ++i) {
            texts << QString::number(i);
        }
        const QVector<int> ids = fill(*m_table, texts);
        test::showActive(*m_table, {300, 300});
        m_table->setCurrentRow(ids[501]);
        m_table->setRowSelected(ids[501], true);
        m_table->setRowSelected(ids[503], true);
        m_table->setRowSelected(ids[502], true);
        const int scroll = m_table->view()->verticalScrollBar()->value();
        QVERIFY(scroll > 0);
        for (int i = 600; i < 1000; i += 2) {
            m_table->removeRow(ids[i]);
        }
        m_table->removeRow(ids[502]);
        QCOMPARE(m_table->selectedRows(), QVector<int>({ids[501], ids[503]}));
        QCOMPARE(m_table->currentRow(), ids[501]);
        QCOMPARE(m_table->view()->verticalScrollBar()->value(), scroll);
    }

    void removingARowScrollsToNoCurrentRowOffTheScreen()
    {
        QStringList texts;
        for (int i = 0; i < 1000; ++i) {
            texts << QString::number(i);
        }
        const QVector<int> ids = fill(*m_table, texts);
        test::showActive(*m_table, {300, 300});
        m_table->setCurrentRow(ids[1]);
        QScrollBar* const bar = m_table->view()->verticalScrollBar();
        bar->setValue(bar->maximum() / 2);
        const int scroll = bar->value();
        m_table->removeRow(ids[999]);
        QCOMPARE(m_table->currentRow(), ids[1]);
        QCOMPARE(bar->value(), scroll);
    }

    void removingTheCurrentRowSelectsNoOther()
    {
        const QVector<int> ids = fill(*m_table, {"a", "b", "c"});
        test::showActive(*m_table, {300, 300});
        m_table->setCurrentRow(ids[1]);
        m_table->setRowSelected(ids[1], true);
        m_table->removeRow(ids[1]);
        QCOMPARE(m_table->selectedRows(), QVector<int>());
        QCOMPARE(m_table->currentRow(), ids[2]);
        m_table->removeRow(ids[2]);
        QCOMPARE(m_table->selectedRows(), QVector<int>());
        QCOMPARE(m_table->currentRow(), ids[0]);
        m_table->removeRow(ids[0]);
        QCOMPARE(m_table->currentRow(), -1);
    }

    void clearingForgetsSelection()
    {
        const QVector<int> ids = fill(*m_table, {"a", "b"});
        m_table->setRowSelected(ids[0], true);
        m_table->clear();
        fill(*m_table, {"c", "d"});
        QCOMPARE(m_table->selectedRows(), QVector<int>());
        QCOMPARE(shownTexts(*m_table), QStringList({"c", "d"}));
    }

    void selectedRowsComeInDisplayOrderAsIds()
    {
        const QVector<int> ids = fill(*m_table, {"a", "b", "c", "d"});
        m_table->setFlags(m_table->flags() & ~WQ::TableCellSelection);
        m_table->removeRow(ids[0]);
        m_table->setRowSelected(ids[3], true);
        m_table->setRowSelected(ids[1], true);
        QCOMPARE(m_table->selectedRows(), QVector<int>({ids[1], ids[3]}));
        m_table->setRowSelected(ids[3], false);
        QCOMPARE(m_table->selectedRows(), QVector<int>({ids[1]}));
        m_table->clearSelection();
        QCOMPARE(m_table->selectedRows(), QVector<int>());
    }

    void rowIdsFollowTheDisplayOrderWhenSorted()
    {
        const QVector<int> ids = fill(*m_table, {"2", "10", "1"});
        m_table->sortByColumn(0, Qt::DescendingOrder);
        QCOMPARE(m_table->rowID(0), ids[1]);
        QCOMPARE(m_table->rowIndex(ids[2]), 2);
        QCOMPARE(shownTexts(*m_table), QStringList({"10", "2", "1"}));
        m_table->removeRow(ids[0]);
        QCOMPARE(m_table->rowIndex(ids[2]), 1);
        m_table->clearSort();
        QCOMPARE(shownTexts(*m_table), QStringList({"10", "1"}));
    }

    void numbersSortByValueAndChineseByPinyin()
    {
        fill(*m_table, {"中信", "100", "安信", "99.5", "银行", "nan", "-3"});
        m_table->sortByColumn(0, Qt::AscendingOrder);
        QCOMPARE(shownTexts(*m_table), QStringList({"-3", "99.5", "100", "nan", "安信", "银行", "中信"}));
    }

    void writingTheSortedColumnEndsTheSortingAndMovesNothing()
    {
        const QVector<int> ids = fill(*m_table, {"b", "a"});
        m_table->sortByColumn(0, Qt::AscendingOrder);
        m_table->setItemText(ids[1], 1, QStringLiteral("other column"), true);
        QVERIFY(m_table->saveConfigStr().contains(QStringLiteral("s0a")));
        m_table->setItemText(ids[1], 0, QStringLiteral("z"), true);
        QVERIFY(!m_table->saveConfigStr().contains(QStringLiteral("s0a")));
        QCOMPARE(shownTexts(*m_table), QStringList({"z", "b"}));
        m_table->sortByColumn(0, Qt::AscendingOrder);
        fill(*m_table, {"a"});
        QCOMPARE(shownTexts(*m_table), QStringList({"b", "z", "a"}));
    }

    void anotherColumnCountTakesRowsAway()
    {
        fill(*m_table, {"a"});
        m_table->setColumnCount(2);
        QCOMPARE(m_table->rowCount(), 1);
        m_table->setColumnCount(3);
        QCOMPARE(m_table->rowCount(), 0);
        QCOMPARE(m_table->columnCount(), 3);
        QCOMPARE(m_table->headerText(0), QStringLiteral("账号"));
        const int id = m_table->appendRow();
        m_table->setItemText(id, 2, QStringLiteral("c"), true);
        QCOMPARE(shownTexts(*m_table, 2), QStringList({"c"}));
    }

    void aLayoutStringRestoresWidthOrderVisibilityAndSorting()
    {
        fill(*m_table, {"b", "a"});
        m_table->setColumnWidth(0, 123);
        m_table->header()->moveSection(0, 1);
        m_table->sortByColumn(0, Qt::AscendingOrder);
        const QString layout = m_table->saveConfigStr();
        QVERIFY(!layout.contains(QLatin1Char(';')));

        CStandardSimpleTable other(1275, nullptr);
        other.setColumnCount(2);
        fill(other, {"d", "c"});
        QVERIFY(other.loadConfigStr(layout));
        QCOMPARE(other.columnWidth(0), 123);
        QCOMPARE(other.header()->visualIndex(0), 1);
        QCOMPARE(shownTexts(other), QStringList({"c", "d"}));
        QCOMPARE(other.saveConfigStr(), layout);
    }

    void aBrokenLayoutStringChangesNothing()
    {
        const QString before = m_table->saveConfigStr();
        CStandardSimpleTable other(1276, nullptr);
        other.setColumnCount(2);
        CStandardSimpleTable wider(1275, nullptr);
        wider.setColumnCount(3);
        for (const QString& text : {QString(), QStringLiteral("x"), before.left(before.size() - 1),
                                    other.saveConfigStr(), wider.saveConfigStr(), before + before}) {
            QVERIFY2(!m_table->loadConfigStr(text), qPrintable(text));
        }
        QCOMPARE(m_table->saveConfigStr(), before);
    }

    void columnsFillTheWidthOfTheTable()
    {
        fill(*m_table, {"a"});
        m_table->setFixedWidth(500);
        test::showActive(*m_table, {500, 300});
        QTRY_COMPARE(m_table->header()->length(), m_table->view()->viewport()->width());
        m_table->setColumnVisible(1, false);
        QTRY_COMPARE(m_table->columnWidth(0), m_table->view()->viewport()->width());
        m_table->setColumnVisible(1, true);
        // A text wider than the table is elided, it does not make the table scroll sideways.
        m_table->setItemText(0, 1, QString(10000, QLatin1Char('w')), true);
        m_table->adjustTableSize();
        QTRY_COMPARE(m_table->header()->length(), m_table->view()->viewport()->width());
        m_table->setColumnWidth(0, 200);
        QTRY_COMPARE(m_table->columnWidth(1), m_table->view()->viewport()->width() - 200);
    }

    void aColumnMadeInvisibleStaysSo()
    {
        const QString layout = m_table->saveConfigStr();
        m_table->setColumnVisible(1, false);
        QVERIFY(m_table->loadConfigStr(layout));
        QVERIFY(!m_table->isColumnVisible(1));
        m_table->setColumnVisible(1, true);
        QVERIFY(m_table->isColumnVisible(1));
    }

    void csvHoldsAllRowsAndEveryCharacter()
    {
        const QVector<int> ids = fill(*m_table, {"00123", "a,b", "say \"hi\"", "=1+1", "-5", " x"});
        m_table->setItemText(ids[0], 1, QStringLiteral("东区\n二"), true);
        QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("导出.csv"));
        QVERIFY(m_table->exportCsv(file));
        QFile written(file);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(written.read(3), QByteArray("\xEF\xBB\xBF"));
        QCOMPARE(QString::fromUtf8(written.readAll()),
                 QStringLiteral("账号,分系统\r\n00123,\"东区\n二\"\r\n\"a,b\",\r\n\"say \"\"hi\"\"\",\r\n'=1+1,\r\n-5,"
                                "\r\n\" x\",\r\n"));
        QString error;
        QVERIFY(!m_table->exportCsv(directory.path(), &error));
        QVERIFY(!error.isEmpty());
    }

    void anExportThatFailsHalfWayLeavesTheFileAsItWas()
    {
        QStringList texts;
        for (int i = 0; i < 5000; ++i) {
            texts << QStringLiteral("一个账号");
        }
        fill(*m_table, texts);
        QTemporaryDir directory;
        const QString name = directory.filePath(QStringLiteral("导出.csv"));
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("kept");
        file.close();
        // Files that grow beyond this size are refused, as on a disk that is full.
        rlimit before{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit small{1000, before.rlim_max};
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &small);
        QString error;
        const bool exported = m_table->exportCsv(name, &error);
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
        QVERIFY(!exported);
        QVERIFY(error.contains(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("kept"));
    }

    void flagsAreThoseOfEveryTable()
    {
        QCOMPARE(m_table->flags(), int(WQ::TableDefaultFlags));
        QCOMPARE(m_table->view()->selectionBehavior(), QAbstractItemView::SelectItems);
        m_table->setFlags((m_table->flags() & ~0x8) | 0x2000);
        QCOMPARE(m_table->view()->selectionBehavior(), QAbstractItemView::SelectRows);
        QCOMPARE(m_table->view()->selectionMode(), QAbstractItemView::MultiSelection);
        m_table->setFlags(m_table->flags() & ~0x1);
        QVERIFY(m_table->header()->isHidden());
        QCOMPARE(m_table->tableId(), 1275);
    }

private:
    std::unique_ptr<CStandardSimpleTable> m_table;
};

TEST_WITH_WIDGETS(SimpleTableRowsTest)
#include "tst_simple_table_rows.moc"
