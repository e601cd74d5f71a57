// SPDX-License-Identifier: Apache-2.0
#include "RecordingPanel.h"
#include "support/TestProgram.h"

#include <WQ/CStandardSimpleTable.h>

#include <QAbstractItemView>
#include <QVBoxLayout>

/// How wide the columns of the simple table are by themselves.
class SimpleTableColumnsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_panel = std::make_unique<test::RecordingPanel>();
        m_table = new WQ::CStandardSimpleTable(7, m_panel.get());
        (new QVBoxLayout(m_panel.get()))->addWidget(m_table);
        m_table->setColumnCount(2);
        m_table->setHeaderText(0, QStringLiteral("账号"));
        m_table->setHeaderText(1, QStringLiteral("产品"));
        m_ids.clear();
        for (int i = 0; i < 60; ++i) {
            m_ids << m_table->appendRow();
            m_table->setItemText(m_ids.last(), 0, QStringLiteral("iiii"), true);
            m_table->setItemText(m_ids.last(), 1, QString(60, QChar(u'产')), true);
        }
        test::showActive(*m_panel, {420, 300});
    }

    void aTextBelowTheScreenFitsToo()
    {
        const QString longer("8801101300-A01");
        QVERIFY(m_table->columnWidth(0) < textWidth(longer));
        m_table->setItemText(m_ids[55], 0, longer, true);
        m_table->adjustTableSize();
        QVERIFY(m_table->columnWidth(0) > textWidth(longer));
    }

    void moreRowsOnScreenAreFittedToo()
    {
        // As many characters as the others have, and wider: seen only where the row is on screen.
        const QString wide("WWWW");
        m_table->setItemText(m_ids[20], 0, wide, true);
        m_table->setHeaderText(0, QString());
        QVERIFY(m_table->columnWidth(0) < textWidth(wide) + 10);
        m_panel->resize(420, 900);
        QTRY_VERIFY(m_table->columnWidth(0) > textWidth(wide));
    }

    void theWidestColumnGivesWayFirst()
    {
        const QString account("8801101300-A01");
        m_table->setItemText(m_ids[0], 0, account, true);
        m_table->adjustTableSize();
        QVERIFY(textWidth(m_table->itemText(m_ids[0], 1)) > m_table->columnWidth(1));
        QVERIFY(m_table->columnWidth(0) > textWidth(account));
        QCOMPARE(m_table->columnWidth(0) + m_table->columnWidth(1), m_table->view()->viewport()->width());
    }

    void aWidthThatSomebodyChoseStays()
    {
        m_table->setColumnWidth(0, 50);
        m_table->setItemText(m_ids[0], 0, QStringLiteral("8801101300-A01"), true);
        m_panel->resize(420, 900);
        QCoreApplication::processEvents();
        QCOMPARE(m_table->columnWidth(0), 50);
    }

private:
    int textWidth(const QString& text) const { return m_table->view()->fontMetrics().horizontalAdvance(text); }

    std::unique_ptr<test::RecordingPanel> m_panel;
    WQ::CStandardSimpleTable* m_table = nullptr;
    QVector<int> m_ids;
};

TEST_WITH_WIDGETS(SimpleTableColumnsTest)
#include "tst_simple_table_columns.moc"
