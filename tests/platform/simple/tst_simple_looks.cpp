// SPDX-License-Identifier: Apache-2.0
#include "RecordingPanel.h"
#include "support/TestProgram.h"

#include <WQ/CCheckBox.h>
#include <WQ/CComboBox.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CStandardTabControl.h>
#include <WQ/CUiResourceManager.h>

#include <QAbstractItemView>
#include <QVBoxLayout>

/// All controls on one page, in every theme. With QAV_SCREENSHOT_DIR set the pictures are kept there.
class SimpleLooksTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_panel = std::make_unique<test::RecordingPanel>();
        auto* const layout = new QVBoxLayout(m_panel.get());
        auto* const line = new QHBoxLayout;
        m_combo = new WQ::CComboBox(5, m_panel.get());
        m_combo->addItems({QStringLiteral("东区交易"), QStringLiteral("西区交易")});
        m_combo->setFixedSize(190, 25);
        auto* const disabled = new WQ::CComboBox(6, m_panel.get());
        disabled->addItem(QStringLiteral("西区交易"));
        disabled->setEnabled(false);
        line->addWidget(m_combo);
        line->addWidget(disabled);
        for (int i = 0; i < 3; ++i) {
            auto* const check = new WQ::CCheckBox(i, QStringLiteral(" 反向单交易只警告不禁止 "), m_panel.get());
            check->setChecked(i != 1);
            check->setEnabled(i != 2);
            line->addWidget(check);
        }
        line->addStretch();
        layout->addLayout(line);
        auto* const tabs = new WQ::CStandardTabControl(m_panel.get());
        tabs->setTabHeaderImage(QStringLiteral("qav_img_tab_page_top_1"), QStringLiteral("qav_img_tab_page_top"),
                                QStringLiteral("qav_img_tab_page_top_i_1"), QStringLiteral("qav_img_tab_page_top_i"));
        auto* const inner = new WQ::CStandardTabControl(tabs);
        auto* const page = new QWidget(inner);
        auto* const pageLayout = new QVBoxLayout(page);
        addTable(page, QString());
        pageLayout->addWidget(m_table);
        inner->addTabWidget(QStringLiteral("期货账号"), page);
        inner->addTabWidget(QStringLiteral("证券账号"), new QWidget(inner));
        tabs->addTabWidget(QStringLiteral("黑白名单"), inner);
        auto* const empty = new WQ::CStandardSimpleTable(1277, tabs);
        empty->setColumnCount(2);
        empty->setHeaderText(0, QStringLiteral("已选豁免分类"));
        empty->setHeaderText(1, QStringLiteral("操作"));
        tabs->addTabWidget(QStringLiteral("反向单交易设置"), empty);
        tabs->addTabWidget(QStringLiteral("对敲交易设置"), new QWidget(tabs));
        layout->addWidget(tabs, 1);
    }

    void noColourOrImageIsMissing_data()
    {
        const support::DataRows<QString> row("theme");
        for (const QString& theme : WQ::CUiResourceManager::instance()->themes()) {
            row(theme, theme);
        }
    }
    void noColourOrImageIsMissing()
    {
        QFETCH(QString, theme);
        test::setTheme(theme);
        test::showActive(*m_panel, {900, 520});
        m_table->setFocus();
        m_table->setCurrentRow(m_table->rowID(2), 1);
        m_table->setRowSelected(m_table->rowID(2), true);
        m_table->setRowSelected(m_table->rowID(3), true);
        WQ::CMessageTip* const tip =
            WQ::CMessageTip::showTip(m_combo, 1 | 64, QStringLiteral("所属机构不能为空!"), 0, 2, 300);
        WQ::CMessageTip::showTip(m_table, 4 | 128, QStringLiteral("已复制"), 0, 0, 300);
        QTRY_COMPARE(tip->opacity(), 1.0);
        const QImage image = m_panel->grab().toImage();
        int magenta = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                magenta += image.pixelColor(x, y) == QColor(255, 0, 255) ? 1 : 0;
            }
        }
        const QString directory = qEnvironmentVariable("QAV_SCREENSHOT_DIR");
        if (!directory.isEmpty()) {
            QVERIFY(image.save(directory + QStringLiteral("/simple_%1.png").arg(theme)));
            m_panel->findChild<WQ::CStandardTabControl*>()->setCurrentIndex(1);
            QVERIFY(m_panel->grab().save(directory + QStringLiteral("/simple_empty_%1.png").arg(theme)));
        }
        QCOMPARE(magenta, 0);
    }

private:
    void addTable(QWidget* page, const QString&)
    {
        m_table = new WQ::CStandardSimpleTable(1275, page);
        m_table->setColumnCount(5);
        const char* const headers[] = {"账号类型", "账号", "分系统", "所属产品", "操作"};
        for (int column = 0; column < 5; ++column) {
            m_table->setHeaderText(column, QString::fromUtf8(headers[column]));
        }
        m_table->setHeaderHeight(28);
        m_table->setRowHeight(28);
        for (int i = 0; i < 40; ++i) {
            const int row = m_table->appendRow();
            m_table->setItemText(row, 0, i % 3 ? QStringLiteral("证券账号") : QStringLiteral("期货账号"), true);
            m_table->setItemText(row, 1, QStringLiteral("0088%1").arg(i * 7919 % 10000, 4, 10, QLatin1Char('0')), true);
            m_table->setItemText(row, 2, i % 2 ? QStringLiteral("东区交易") : QStringLiteral("西区交易"), true);
            m_table->setItemText(
                row, 3, i % 4 ? QStringLiteral("稳健增长一号集合资产管理计划") : QStringLiteral("未关联产品"), true);
            auto* const button = new WQ::CSmallNormalButton(row + 1000, true, 1, m_table);
            button->setText(QStringLiteral("删除"));
            button->setFixedSize(50, 20);
            m_table->setItemWidget(row, 4, button, 132, true);
        }
        m_table->setItemColorKey(3, 1, QStringLiteral("clr_global_rise"));
    }

    std::unique_ptr<test::RecordingPanel> m_panel;
    WQ::CStandardSimpleTable* m_table = nullptr;
    WQ::CComboBox* m_combo = nullptr;
};

TEST_WITH_WIDGETS(SimpleLooksTest)
#include "tst_simple_looks.moc"
