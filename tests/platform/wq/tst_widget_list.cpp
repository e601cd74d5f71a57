// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <WQ/CLineEdit.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/CWidgetList.h>

#include <QTableView>

class WidgetListTest : public QObject
{
    Q_OBJECT

    static QWidget* sized(int width, int height)
    {
        auto* const widget = new QWidget;
        widget->setFixedSize(width, height);
        return widget;
    }

    static void layOut(WQ::CWidgetList& list, int width, int height)
    {
        list.resize(width, height);
        list.layout()->activate();
    }

private Q_SLOTS:
    void initTestCase() { WQ::CUiResourceManager::instance()->applyTo(*qApp); }

    void fixedWidgetsAndSpacesFollowOneAnother()
    {
        WQ::CWidgetList list(1, nullptr);
        list.setMargin(3, 5, 0, 5);
        auto* const first = sized(40, 20);
        auto* const second = sized(30, 26);
        list.addFixedWidget(first, 3, true);
        list.addFixedSpace(15);
        list.addFixedWidget(second, 3, true);
        list.addStretchSpace(1);
        layOut(list, 400, 36);
        QCOMPARE(first->geometry(), QRect(3, 8, 40, 20));
        QCOMPARE(second->geometry(), QRect(58, 5, 30, 26));
        QCOMPARE(list.direction(), WQ::HorizontalList);
    }

    void withoutStretchEverythingStandsAtTheBeginning()
    {
        WQ::CWidgetList list(2, nullptr);
        auto* const first = new WQ::CLineEdit(0, nullptr);
        auto* const second = sized(50, 20);
        list.setSpacing(4);
        list.addFixedWidget(first, 3, true);
        list.addFixedWidget(second, 3, true);
        layOut(list, 200, 500);
        QCOMPARE(first->y(), 0);
        QCOMPARE(first->height(), first->sizeHint().height());
        QCOMPARE(first->width(), 200);
        QCOMPARE(second->y(), first->height() + 4);
        QCOMPARE(list.direction(), WQ::VerticalList);
    }

    void stretchWidgetsShareTheRestByTheirStretch()
    {
        WQ::CWidgetList list(2, nullptr);
        auto* const fixed = sized(10, 40);
        auto* const one = new QWidget;
        auto* const three = new QWidget;
        list.addFixedWidget(fixed, 3, true);
        list.addStretchWidget(one, 1, 3, true);
        list.addStretchWidget(three, 3, 3, true);
        layOut(list, 100, 440);
        QCOMPARE(one->geometry(), QRect(0, 40, 100, 100));
        QCOMPARE(three->geometry(), QRect(0, 140, 100, 300));
    }

    void anchorsPlaceAcrossTheList_data()
    {
        const support::DataRows<int, int, QPoint> row("direction", "anchor", "place");
        row("row, leading", 1, 0, QPoint(0, 0));
        row("row, middle", 1, 1, QPoint(0, 40));
        row("row, trailing", 1, 2, QPoint(0, 80));
        row("row, line", 1, 3, QPoint(0, 40));
        row("column, leading", 2, 0, QPoint(0, 0));
        row("column, middle", 2, 1, QPoint(40, 0));
        row("column, trailing", 2, 2, QPoint(80, 0));
        row("column, line", 2, 3, QPoint(0, 0));
    }
    void anchorsPlaceAcrossTheList()
    {
        QFETCH(int, direction);
        QFETCH(int, anchor);
        QFETCH(QPoint, place);
        for (const bool fill : {true, false}) {
            WQ::CWidgetList list(direction, nullptr);
            auto* const widget = sized(20, 20);
            list.addFixedWidget(widget, anchor, fill);
            layOut(list, 100, 100);
            QCOMPARE(widget->pos(), place);
        }
    }

    void withoutFillAWidgetKeepsItsSizeAcross()
    {
        WQ::CWidgetList list(2, nullptr);
        auto* const kept = new WQ::CSmallNormalButton(1, true, 1, &list);
        auto* const filled = new WQ::CSmallNormalButton(2, true, 1, &list);
        kept->setText(QStringLiteral("保存"));
        filled->setText(QStringLiteral("保存"));
        list.addFixedWidget(kept, 1, false);
        list.addFixedWidget(filled, 1, true);
        layOut(list, 300, 300);
        QCOMPARE(kept->width(), kept->sizeHint().width());
        QCOMPARE(filled->width(), 300);
    }

    void aHiddenWidgetTakesNoRoom()
    {
        WQ::CWidgetList list(2, nullptr);
        auto* const first = sized(10, 30);
        auto* const second = sized(10, 30);
        list.addFixedWidget(first, 3, true);
        list.addFixedWidget(second, 3, true);
        first->hide();
        layOut(list, 100, 100);
        QCOMPARE(second->y(), 0);
    }

    void aFixedLabelIsNeverCutOff()
    {
        WQ::CWidgetList list(1, nullptr);
        auto* const label = new WQ::CSimpleTextWidget(false, 0, QStringLiteral("查询组名: "), &list);
        auto* const edit = new WQ::CLineEdit(0, &list);
        list.addFixedWidget(label, 3, true);
        list.addStretchWidget(edit, 1, 3, true);
        layOut(list, 120, 30);
        QCOMPARE(label->width(), label->sizeHint().width());
        QVERIFY(list.minimumSizeHint().width() >= label->sizeHint().width());
    }

    void updateWidgetLengthMakesTheListAsLongAsItsContents()
    {
        WQ::CWidgetList list(2, nullptr);
        list.setMargin(15, 15, 15, 15);
        list.resize(100, 10);
        list.addFixedWidget(sized(20, 200), 3, true);
        list.updateWidgetLength();
        QCOMPARE(list.height(), 230);
    }

    void aControlIsNamedAfterTheLabelBeforeIt()
    {
        WQ::CWidgetList list(1, nullptr);
        auto* const edit = new WQ::CLineEdit(0, &list);
        auto* const hinted = new WQ::CLineEdit(1, &list);
        hinted->setEmptyHintText(QStringLiteral("提示文字"));
        list.addFixedWidget(new WQ::CSimpleTextWidget(false, 0, QStringLiteral("账号组名:"), &list), 3, true);
        list.addFixedSpace(10);
        list.addFixedWidget(edit, 3, true);
        list.addFixedWidget(new WQ::CSimpleTextWidget(false, 0, QStringLiteral("查询组名: "), &list), 3, true);
        list.addFixedWidget(hinted, 3, true);
        QCOMPARE(edit->accessibleName(), QStringLiteral("账号组名"));
        QCOMPARE(hinted->accessibleName(), QStringLiteral("提示文字"));
    }

    void aStretchedTableFillsTheList()
    {
        WQ::CWidgetList list(2, nullptr);
        auto* const table = new QTableView;
        list.addFixedWidget(sized(950, 36), 3, true);
        list.addStretchWidget(table, 1, 3, true);
        layOut(list, 1200, 636);
        QCOMPARE(table->geometry(), QRect(0, 36, 1200, 600));
    }
};

TEST_WITH_WIDGETS(WidgetListTest)
#include "tst_widget_list.moc"
