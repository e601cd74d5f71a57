// SPDX-License-Identifier: Apache-2.0
#include "editor/EditorFixture.h"
#include "support/TestProgram.h"

#include <WQ/CMessageTip.h>
#include <WQ/CNormalButton.h>
#include <WQ/CUiResourceManager.h>

#include <QElapsedTimer>

using namespace editor_test;

/// Where everything stands in the two dialogs, and by which ids it reports.
class EditorLayoutTest : public EditorTest
{
    Q_OBJECT

private slots:
    void initTestCase() { WQ::CUiResourceManager::instance()->applyTo(*qApp); }

    void theGroupDialogStandsInRows_data()
    {
        const support::DataRows<QString, int, int> row("modules", "servers", "buttonTop");
        // Each line of the form is 25 high, with 10 below it; a line that is hidden leaves its 10.
        row("all lines", EditorFixture::AllModules, 2, 15 + 35 + 35 + 35);
        row("one server", EditorFixture::AllModules, 1, 15 + 35 + 35);
        row("no institutions", "return {}", 1, 15 + 35 + 10);
        row("no institutions, two servers", "return {}", 2, 15 + 35 + 10 + 35);
    }
    void theGroupDialogStandsInRows()
    {
        QFETCH(QString, modules);
        QFETCH(int, servers);
        QFETCH(int, buttonTop);
        support::switchModules(modules);
        m_client->addShanghai();
        if (servers == 2) {
            m_client->addShenzhen();
        }
        m_client->lookAtNew("", [&] {
            const QWidget* const inner = m_client->dialog->innerWidget();
            QCOMPARE(placeOf(m_client->nameEdit()).top(), 15);
            const QRect addButton = placeOf(m_client->button("添加账号"));
            QCOMPARE(addButton, QRect(15, buttonTop, 80, 35));
            const QRect close = placeOf(m_client->button("关闭"));
            const QRect save = placeOf(m_client->button("保存"));
            QCOMPARE(close, QRect(inner->width() - 15 - 70, inner->height() - 15 - 30, 70, 30));
            QCOMPARE(save, QRect(close.left() - 20 - 70, close.top(), 70, 30));
            const QRect table = placeOf(m_client->table());
            QCOMPARE(table.topLeft(), QPoint(15, buttonTop + 35 + 10));
            QCOMPARE(table.width(), 500);
            QCOMPARE(table.bottom() + 1, close.top() - 10);
        });
    }

    void theLinesOfTheFormHaveTheirSizes()
    {
        m_client->addBothServers();
        m_client->lookAtNew("", [&] {
            const QWidget* const edits[] = {m_client->nameEdit(), m_client->institutionEdit(), m_client->systemCombo()};
            const QString labels[] = {"账号组名:", "所属机构:", "  分系统:"};
            for (int line = 0; line < 3; ++line) {
                QVERIFY2(m_client->label(labels[line]), qPrintable(labels[line]));
                const QRect label = placeOf(labels[line]);
                QCOMPARE(label.left(), 15);
                QCOMPARE(placeOf(edits[line]), QRect(label.right() + 1 + 10, 15 + line * 35, 190, 25));
            }
            // The three fields begin below one another, because the three labels are equally wide.
            QCOMPARE(placeOf(edits[1]).left(), placeOf(edits[0]).left());
            QCOMPARE(placeOf(edits[2]).left(), placeOf(edits[0]).left());
            QCOMPARE(m_client->nameEdit()->parentWidget()->width(), 400);

            QElapsedTimer sinceSave;
            sinceSave.start();
            m_client->click("保存");
            QCoreApplication::processEvents();
            const QRect tip = placeOf(QStringLiteral("账号组名称,不能为空"));
            QCOMPARE(tip.left(), placeOf(edits[0]).right() + 1 + 10);
            QCOMPARE(tip.height(), 25);
            // It is seen whole.
            QVERIFY(tip.width() >= m_client->dialog->fontMetrics().horizontalAdvance("账号组名称,不能为空"));

            // The other one floats below its field, in one line, and goes after two seconds.
            const WQ::CMessageTip* const floating = WQ::CMessageTip::tipOf(edits[1]);
            QVERIFY(floating);
            const QPoint offset = floating->mapToGlobal(QPoint()) - edits[1]->mapToGlobal(QPoint());
            QCOMPARE(offset.x(), 0);
            QVERIFY(offset.y() >= edits[1]->height() && offset.y() < 2 * edits[1]->height());
            QVERIFY(floating->width() > floating->fontMetrics().horizontalAdvance(floating->text()));
            QVERIFY(floating->width() <= 300);
            QTRY_VERIFY_WITH_TIMEOUT(!WQ::CMessageTip::tipOf(edits[1]), 10000);
            QVERIFY(sinceSave.elapsed() >= 2000);
        });
    }

    void theTableHasItsColumns()
    {
        m_client->addShanghai();
        m_client->createDialog();
        const WQ::CStandardSimpleTable* const table = m_client->table();
        QCOMPARE(table->tableId(), 1275);
        QCOMPARE(table->headerHeight(), 28);
        QCOMPARE(table->rowHeight(), 28);
        QStringList headers;
        for (int column = 0; column < table->columnCount(); ++column) {
            headers << table->headerText(column);
        }
        QCOMPARE(headers, QStringList({"账号类型", "账号", "分系统", "所属产品", "操作"}));
    }

    void theControlsReportByTheirIds()
    {
        m_client->addBothServers();
        m_client->createDialog();
        QCOMPARE(m_client->nameEdit()->id(), 0);
        QCOMPARE(m_client->institutionEdit()->id(), 4);
        QCOMPARE(m_client->systemCombo()->id(), 5);
        const std::pair<int, QString> buttons[] = {{1, "添加账号"}, {2, "保存"}, {3, "关闭"}};
        for (const auto& [id, text] : buttons) {
            QCOMPARE(qobject_cast<WQ::CNormalButton*>(m_client->button(text))->id(), id);
        }
    }

    void theGroupDialogIsNeverSmallerThanItsLeast()
    {
        m_client->addShanghai();
        m_client->add("", [](WQ::CBaseDialog& dialog) {
            QCOMPARE(dialog.minimumSize(), QSize(600, 550));
            dialog.resize(10, 10);
            QCOMPARE(dialog.size(), QSize(600, 550));
            dialog.done(0);
        });
    }

    void thePickerStandsInRows()
    {
        QAV::CSelectAccountDialog picker(nullptr);
        picker.show();
        const QWidget* const inner = picker.innerWidget();
        const auto place = [inner](const QWidget* widget) {
            return QRect(widget->mapTo(inner, QPoint(0, 0)), widget->size());
        };
        QMap<QString, QRect> labels;
        for (const auto* const label : picker.findChildren<WQ::CSimpleTextWidget*>()) {
            labels.insert(label->text(), place(label));
        }
        QCOMPARE(labels.keys(), QStringList({"选择类型:", "选择账号:"}));
        const QRect type = place(picker.findChild<WQ::CComboBox*>());
        const QRect accounts = place(picker.findChild<QAV::CUserCombobox*>());
        QCOMPARE(labels["选择类型:"].left(), 30);
        QCOMPARE(labels["选择账号:"].left(), 30);
        QCOMPARE(type.topLeft(), QPoint(labels["选择类型:"].right() + 1 + 20, 30));
        QCOMPARE(accounts.topLeft(), QPoint(type.left(), type.bottom() + 1 + 15));
        QCOMPARE(type.width(), 240);
        QCOMPARE(accounts.width(), 240);
        const QRect ok = place(buttonOf(picker, "确定"));
        const QRect cancel = place(buttonOf(picker, "取消"));
        QCOMPARE(cancel, QRect(inner->width() - 30 - 70, accounts.bottom() + 1 + 20, 70, 30));
        QCOMPARE(ok, QRect(cancel.left() - 5 - 70, cancel.top(), 70, 30));
        QCOMPARE(qobject_cast<WQ::CNormalButton*>(buttonOf(picker, "确定"))->id(), 2);
        QCOMPARE(qobject_cast<WQ::CNormalButton*>(buttonOf(picker, "取消"))->id(), 3);
    }

private:
    /// In the coordinates of what the dialog holds below its title bar.
    QRect placeOf(const QWidget* widget) const
    {
        return {widget->mapTo(m_client->dialog->innerWidget(), QPoint(0, 0)), widget->size()};
    }

    QRect placeOf(const QString& label) const { return placeOf(m_client->label(label)); }
};

TEST_WITH_WIDGETS(EditorLayoutTest)
#include "tst_editor_layout.moc"
