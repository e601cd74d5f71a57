// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

using namespace support;

class TableLayoutTest : public ShownTableTest
{
    Q_OBJECT

    static QList<int> shownOrder(const ShownTable& shown)
    {
        QList<int> columns;
        const QHeaderView* header = shown.table->header();
        for (int visual = 0; visual < header->count(); ++visual) {
            if (!header->isSectionHidden(header->logicalIndex(visual))) {
                columns.append(header->logicalIndex(visual));
            }
        }
        return columns;
    }

    /// Hides or shows a column as the user does, in the column chooser. False if it is not listed there.
    static bool choose(ShownTable& shown, const QString& column)
    {
        bool isListed = false;
        QTimer::singleShot(0, shown.table.get(), [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu) {
                return;
            }
            for (QAction* action : menu->findChild<QMenu*>("tableColumns")->actions()) {
                isListed = isListed || action->text() == column;
                if (action->text() == column && action->isEnabled()) {
                    action->trigger();
                }
            }
            menu->close();
        });
        emit shown.table->header()->customContextMenuRequested({5, 5});
        return isListed;
    }

private slots:
    void aLayoutSurvivesTheRoundTrip()
    {
        ShownTable first;
        first.fill(5);
        first.table->setColumnWidth(Place, 233);
        first.table->header()->moveSection(0, 2);
        choose(first, "价格");
        QVERIFY(!first.table->isColumnVisible(Price));
        first.table->sortByColumn(Count, Qt::DescendingOrder);
        const QString layout = first.table->saveConfigStr();
        QVERIFY(!layout.contains(';'));
        QVERIFY(std::all_of(layout.begin(), layout.end(), [](QChar c) { return c > ' ' && c < QChar(127); }));

        ShownTable second;
        second.fill(5);
        QVERIFY(second.table->loadConfigStr(layout));
        QCOMPARE(shownOrder(second), shownOrder(first));
        QCOMPARE(shownOrder(second), (QList<int>{Count, Place, Name, Buttons}));
        QCOMPARE(second.table->columnWidth(Place), 233);
        QCOMPARE(second.model->keys().first(), QString("k0"));
        QCOMPARE(second.model->sortColumn(), int(Count));
        QCOMPARE(second.model->sortOrder(), Qt::DescendingOrder);
        QCOMPARE(second.table->saveConfigStr(), layout);
    }

    void theLayoutOfAnUntouchedTableRestoresThat()
    {
        m_shown->fill(5);
        const QString layout = m_shown->table->saveConfigStr();
        m_shown->table->header()->moveSection(0, 2);
        m_shown->table->setColumnWidth(Name, 300);
        choose(*m_shown, "数量");
        QVERIFY(m_shown->table->loadConfigStr(layout));
        QCOMPARE(m_shown->table->saveConfigStr(), layout);
        QVERIFY(m_shown->table->isColumnVisible(Count));
    }

    void textsThatAreNoLayoutOfThisTableChangeNothing_data()
    {
        const support::DataRows<QString> row("text");
        const QString good = ShownTable().table->saveConfigStr();
        row("empty", "");
        row("words", "hello");
        row("zeros", QString(100, QChar(0)));
        row("separators", "|||||||");
        row("very long", QString(1000000, QChar('1')));
        row("not ASCII", QString::fromUtf8("布局|1|2"));
        for (int length = 0; length < good.size(); ++length) {
            row(QString("cut at %1").arg(length), good.left(length));
        }
        for (int at = 0; at < good.size(); ++at) {
            QString damaged = good;
            damaged[at] = damaged[at] == QChar('7') ? QChar('8') : QChar('7');
            row(QString("damaged at %1").arg(at), damaged);
            row(QString("longer at %1").arg(at), QString(good).insert(at, '0'));
        }
        row("twice", good + good);
        const auto signedText = [](const QByteArray& text) {
            const QString sum = QString("%1").arg(qChecksum(text.constData(), uint(text.size())), 4, 16, QChar('0'));
            return QString::fromLatin1(text) + '|' + sum;
        };
        row("another version", signedText("hpf2|7|5|o0.1.2.3.4|w0.0.0.0.0|h|s"));
        row("another table", signedText("hpf1|8|5|o0.1.2.3.4|w0.0.0.0.0|h|s"));
        row("fewer columns", signedText("hpf1|7|4|o0.1.2.3|w0.0.0.0|h|s"));
        row("more columns", signedText("hpf1|7|6|o0.1.2.3.4.5|w0.0.0.0.0.0|h|s"));
        row("no columns", signedText("hpf1|7|0|o|w|h|s"));
        row("a column twice", signedText("hpf1|7|5|o0.1.2.3.3|w0.0.0.0.0|h|s"));
        row("a column missing", signedText("hpf1|7|5|o0.1.2.3|w0.0.0.0.0|h|s"));
        row("a column too far", signedText("hpf1|7|5|o0.1.2.3.5|w0.0.0.0.0|h|s"));
        row("a negative column", signedText("hpf1|7|5|o0.1.2.3.-4|w0.0.0.0.0|h|s"));
        row("no number", signedText("hpf1|7|5|o0.1.2.3.x|w0.0.0.0.0|h|s"));
        row("widths missing", signedText("hpf1|7|5|o0.1.2.3.4|w0.0.0.0|h|s"));
        row("a width too large", signedText("hpf1|7|5|o0.1.2.3.4|w0.0.0.0.99999|h|s"));
        row("a width beyond int", signedText("hpf1|7|5|o0.1.2.3.4|w0.0.0.0.99999999999999999999|h|s"));
        row("a width too small", signedText("hpf1|7|5|o0.1.2.3.4|w0.0.0.0.39|h|s"));
        row("hidden too far", signedText("hpf1|7|5|o0.1.2.3.4|w0.0.0.0.0|h9|s"));
        row("sorted too far", signedText("hpf1|7|5|o0.1.2.3.4|w0.0.0.0.0|h|s9a"));
        row("sorted sideways", signedText("hpf1|7|5|o0.1.2.3.4|w0.0.0.0.0|h|s1x"));
        row("sorted without column", signedText("hpf1|7|5|o0.1.2.3.4|w0.0.0.0.0|h|sa"));
    }
    void textsThatAreNoLayoutOfThisTableChangeNothing()
    {
        QFETCH(QString, text);
        m_shown->fill(3);
        m_shown->table->header()->moveSection(1, 3);
        m_shown->table->setColumnWidth(Name, 222);
        m_shown->table->sortByColumn(Name, Qt::DescendingOrder);
        const QString before = m_shown->table->saveConfigStr();
        QVERIFY(!m_shown->table->loadConfigStr(text));
        QCOMPARE(m_shown->table->saveConfigStr(), before);
    }

    void aWellFormedLayoutIsTaken()
    {
        const QByteArray text("hpf1|7|5|o4.3.2.1.0|w0.0.120.0.40|h1|s0d");
        const QString sum = QString("%1").arg(qChecksum(text.constData(), uint(text.size())), 4, 16, QChar('0'));
        QVERIFY(m_shown->table->loadConfigStr(QString::fromLatin1(text) + '|' + sum));
        QCOMPARE(shownOrder(*m_shown), (QList<int>{Buttons, Price, Place, Name}));
        QCOMPARE(m_shown->table->columnWidth(Place), 120);
        QCOMPARE(m_shown->table->columnWidth(Buttons), 40);
    }

    void aColumnThatTheProgramHidesStaysHidden()
    {
        const QString layout = m_shown->table->saveConfigStr();
        m_shown->table->setColumnVisible(Place, false);
        QVERIFY(m_shown->table->loadConfigStr(layout));
        QVERIFY(!m_shown->table->isColumnVisible(Place));
        QVERIFY(!choose(*m_shown, "地点"));
        QVERIFY(!m_shown->table->isColumnVisible(Place));
        m_shown->table->setColumnVisible(Place, true);
        QVERIFY(m_shown->table->isColumnVisible(Place));
    }

    void aRemovedColumnIsGoneAndLaterOnesMoveLeft()
    {
        m_shown->fill(3);
        const int before = m_shown->cell(0, Price).left();
        const int width = m_shown->table->columnWidth(Place);
        m_shown->table->removeColumn(Place);
        QVERIFY(m_shown->table->isColumnRemoved(Place));
        QCOMPARE(m_shown->cell(0, Price).left(), before - width);
        QCOMPARE(m_shown->model->columnCount(), int(Columns));
        QCOMPARE(m_shown->model->index(0, Price).data().toString(), QString("0.00"));
        m_shown->table->setColumnVisible(Place, true);
        QVERIFY(!m_shown->table->isColumnVisible(Place));
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->buttonAt(1, 0));
        QCOMPARE(m_shown->sink.events.size(), std::size_t(1));
        QVERIFY(!m_shown->table->selectedText(true).contains("地点"));
        QVERIFY(!choose(*m_shown, "地点"));
        m_shown->table->setDataModel(new Model);
        QVERIFY(!m_shown->table->isColumnRemoved(Place));
        QVERIFY(choose(*m_shown, "数量"));
        QVERIFY(m_shown->table->isColumnVisible(Place));
    }

    void aColumnThatTheUserShowsAgainFitsWhatItHolds()
    {
        QVERIFY(choose(*m_shown, "地点"));
        const QString place(15, QChar(0x5730));
        m_shown->model->add("k", "名", 1, place);
        ShownTable::settle();
        QVERIFY(choose(*m_shown, "地点"));
        ShownTable::settle();
        QVERIFY(m_shown->table->columnWidth(Place) > m_shown->view->fontMetrics().horizontalAdvance(place));
    }

    void theLastVisibleColumnCannotBeHidden()
    {
        for (const char* column : {"数量", "地点", "价格", "名称"}) {
            choose(*m_shown, QString::fromUtf8(column));
        }
        QCOMPARE(shownOrder(*m_shown), (QList<int>{Name, Buttons}));
    }

    void aWidthThatTheUserDragsIsKept()
    {
        m_shown->fill(3);
        QHeaderView* header = m_shown->table->header();
        const int border = header->sectionViewportPosition(Count) - 1;
        const int y = header->height() / 2;
        QTest::mousePress(header->viewport(), Qt::LeftButton, {}, {border, y});
        QMouseEvent move(QEvent::MouseMove, QPoint(border + 80, y), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(header->viewport(), &move);
        QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, {border + 80, y});
        const int width = header->sectionSize(Name);
        m_shown->table->adjustColumnWidth();
        ShownTable::settle();
        QCOMPARE(header->sectionSize(Name), width);
        QVERIFY(m_shown->table->saveConfigStr().contains(QString("w%1.").arg(width)));
    }

    void operationsOnUnknownColumnsAreIgnored()
    {
        const QString before = m_shown->table->saveConfigStr();
        for (int column : {-1, 5, 1000}) {
            m_shown->table->setColumnWidth(column, 100);
            m_shown->table->setColumnVisible(column, false);
            m_shown->table->removeColumn(column);
            m_shown->table->setColumnFilterable(column, true);
            QVERIFY(!m_shown->table->isColumnVisible(column));
            QVERIFY(!m_shown->table->isColumnFilterable(column));
            QVERIFY(!m_shown->table->columnDelegate(column));
        }
        QCOMPARE(m_shown->table->saveConfigStr(), before);
    }

    void aTableWithoutModelTakesEveryCall()
    {
        WQ::CStandardHpfTable table(1, nullptr, 255);
        table.show();
        table.updateTable();
        table.adjustColumnWidth();
        table.clearSort();
        table.clearFilter();
        table.filterColumn(0, {WQ::FilterContains, {"x"}});
        QVERIFY(!table.loadConfigStr(table.saveConfigStr()));
        QVERIFY(table.currentKey().isEmpty());
        QVERIFY(table.selectedText(true).isEmpty());
        ShownTable::settle();
    }
};

TEST_WITH_WIDGETS(TableLayoutTest)
#include "tst_table_layout.moc"
