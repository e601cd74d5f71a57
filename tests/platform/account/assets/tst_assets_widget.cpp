// SPDX-License-Identifier: Apache-2.0
#include "AssetsEditor.h"
#include "support/TestProgram.h"

#include <WQ/CStandardTabControl.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QVBoxLayout>

using namespace rule_editor_test;
using nvservice::CAssetsRC;

namespace
{

/// The widths that drop-down boxes take, one after the other.
class BoxWidths : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Resize && qobject_cast<WQ::CComboBox*>(watched)) {
            ofBoxes[watched] << static_cast<QResizeEvent*>(event)->size().width();
        }
        return false;
    }

    QHash<QObject*, QVector<int>> ofBoxes;
};

} // namespace

/// The editor of asset-portfolio limits, as a user works with it.
class AssetsWidgetTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void limitsAreShownInTheUsersWords()
    {
        AssetsEditor editor(true);
        editor.load({soundLimit(5, 12.5)});
        QStringList texts;
        for (int column = Enabled; column < Remove; ++column) {
            texts << editor.text(0, column);
        }
        QCOMPARE(texts,
                 (QStringList{"是", "账号组", "股票", "", "市值", "净资产", "大于", "12.5", "%", "警告", "备注"}));
    }

    void everyCellCanBeChangedAndNothingElseChanges()
    {
        AssetsEditor editor;
        CAssetsRC limit = soundLimit(5, 12.5);
        limit.unknownFields = BSON("later" << 7);
        editor.load({soundLimit(4, 1), limit});
        QTest::mouseClick(&editor.cell<WQ::CCheckBox>(1, Enabled), Qt::LeftButton);
        editor.choose(1, Scope, "产品");
        editor.choose(1, Class, "债券");
        editor.choose(1, Measured, "成本");
        editor.choose(1, Base, "无");
        editor.choose(1, Comparison, "小于等于");
        editor.typeInto(1, Threshold, "2,000");
        editor.choose(1, Unit, "万元");
        editor.choose(1, Action, "禁止");
        editor.typeInto(1, Remark, "abc");

        const std::vector<CAssetsRC> limits = editor.limits();
        QCOMPARE(limits.size(), std::size_t(2));
        QCOMPARE(limits[0].threshold, 1.0);
        const CAssetsRC& changed = limits[1];
        QCOMPARE(changed.ruleId, std::int64_t(5));
        QVERIFY(!changed.enabled);
        QVERIFY(changed.scope == nvservice::EZVRCScopeType::Product);
        QVERIFY(changed.assetClass == nvservice::EZVRCAssetClass::Bond);
        QVERIFY(changed.measured == nvservice::EZVRCQuantity::Cost);
        QVERIFY(changed.base == nvservice::EZVRCQuantity::None);
        QVERIFY(changed.comparison == nvservice::EZVRCComparison::LessOrEqual);
        QCOMPARE(changed.threshold, 2000.0);
        QVERIFY(changed.unit == nvservice::EZVRCUnit::TenThousandYuan);
        QVERIFY(changed.action == nvservice::EZVRCAction::Forbid);
        QCOMPARE(changed.remark, std::string("abc"));
        QCOMPARE(changed.unknownFields.getIntField("later"), 7);
        QString message = "as before";
        QVERIFY(editor.widget().isDataValid(message));
        QCOMPARE(message, QString("as before"));
    }

    void aNewLimitIsTheUsersToFillIn()
    {
        OneServer server;
        AssetsEditor editor;
        editor.load({}, "深圳");
        editor.window.click("add");
        QString message;
        QVERIFY(!editor.widget().isDataValid(message));
        QCOMPARE(message, QString("请输入阈值"));
        editor.typeInto(0, Threshold, "5");
        QVERIFY(editor.widget().isDataValid(message));
        const CAssetsRC limit = editor.limits().at(0);
        QCOMPARE(limit.ruleId, std::int64_t(-1));
        QVERIFY(limit.scope == nvservice::EZVRCScopeType::AccountGroup);
        QCOMPARE(limit.serverName, std::string("深圳"));
        QCOMPARE(limit.threshold, 5.0);
    }

    void theBoxesOfANewLimitStayAsWideAsTheirCells()
    {
        // What a box with a will of its own asks for comes 20 ms after it got its items.
        constexpr int LongEnoughMs = 60;
        AssetsEditor editor;
        editor.load({soundLimit(5, 12.5)});
        BoxWidths widths;
        qApp->installEventFilter(&widths);
        editor.window.click("add");
        QTest::qWait(LongEnoughMs);
        QVERIFY(widths.ofBoxes.size() >= 6);
        for (auto box = widths.ofBoxes.cbegin(); box != widths.ofBoxes.cend(); ++box) {
            const int first = box->indexOf(box->last());
            QCOMPARE(box->mid(first).count(box->last()), box->size() - first);
        }
    }

    void limitsAreRemovedByTheirButtonOrTogether()
    {
        AssetsEditor editor;
        editor.load({soundLimit(1, 1), soundLimit(2, 2), soundLimit(3, 3), soundLimit(4, 4)});
        QVERIFY(!editor.window.part<QPushButton>("remove").isEnabled());
        QTest::mouseClick(&editor.cell(1, Remove), Qt::LeftButton);
        QCOMPARE(editor.limits().size(), std::size_t(3));
        editor.table().view();
        editor.table().setRowSelected(editor.table().rowID(0), true);
        editor.table().setRowSelected(editor.table().rowID(1), true);
        editor.window.click("remove");
        QCOMPARE(editor.limits().size(), std::size_t(1));
        QCOMPARE(editor.limits().at(0).ruleId, std::int64_t(4));
    }

    void theOffendingCellSaysWhatIsWrong()
    {
        AssetsEditor editor;
        editor.load({soundLimit(1, 1), soundLimit(2, 2)});
        editor.typeInto(1, Threshold, "abc");
        QString message;
        QVERIFY(!editor.widget().isDataValid(message));
        QCOMPARE(message, QString("阈值不是有效的数字"));
        const WQ::CMessageTip* const tip = WQ::CMessageTip::tipOf(&editor.cell(1, Threshold));
        QVERIFY(tip);
        QCOMPARE(tip->text(), message);
        QCOMPARE(editor.table().rowIndex(editor.table().currentRow()), 1);
        QTRY_COMPARE(tip->opacity(), 1.0);
        takePicture(editor.window, "assets-problem");
    }

    void theFirstProblemIsTheOneThatIsShown()
    {
        AssetsEditor editor;
        std::vector<CAssetsRC> limits;
        for (int i = 0; i < 100; ++i) {
            limits.push_back(soundLimit(i, i));
        }
        limits[60].unit = nvservice::EZVRCUnit::Yuan;
        limits[80].threshold = -1;
        editor.load(limits);
        QString message;
        QVERIFY(!editor.widget().isDataValid(message));
        QCOMPARE(message, QString("有比较基准时，单位只能是%"));
        // Row 60 has been scrolled to: its cell is there to carry the message.
        QVERIFY(editor.cell(60, Unit).isVisible());
        QVERIFY(WQ::CMessageTip::tipOf(&editor.cell(60, Unit)));
    }

    void aProblemIsShownUntilSomethingChanges()
    {
        AssetsEditor editor;
        editor.load({soundLimit(1, -1)});
        QString message;
        QVERIFY(!editor.widget().isDataValid(message));
        QVERIFY(WQ::CMessageTip::tipOf(&editor.cell(0, Threshold)));
        editor.typeInto(0, Threshold, "5");
        QVERIFY(!WQ::CMessageTip::tipOf(&editor.cell(0, Threshold)));

        // The next problem stands alone.
        editor.typeInto(0, Threshold, "-1");
        QVERIFY(!editor.widget().isDataValid(message));
        editor.choose(0, Unit, "元");
        QVERIFY(!editor.widget().isDataValid(message));
        QVERIFY(WQ::CMessageTip::tipOf(&editor.cell(0, Unit)));
        QVERIFY(!WQ::CMessageTip::tipOf(&editor.cell(0, Threshold)));
    }

    void aProblemOnAHiddenPageBringsThePageToTheFront()
    {
        RuleEditorWindow window;
        auto* const tabs = new WQ::CStandardTabControl(&window);
        tabs->addTabWidget("黑白名单", new QWidget(tabs));
        auto* const editor =
            new QAV::CAssetsProportionWidget(1276, false, nvservice::EZVRCScopeType::AccountGroup, -1, tabs);
        tabs->addTabWidget("资产组合风控", editor);
        window.showWith(tabs, {1240, 360});
        editor->setAssetsRCs(nvservice::NoInstitutionId, {soundLimit(1, -1)}, QString());
        QString message;
        QVERIFY(!editor->isDataValid(message));
        QCOMPARE(tabs->currentWidget(), editor);
        auto& table = window.part<WQ::CStandardSimpleTable>("limits");
        QWidget* const cell = table.itemWidget(table.rowID(0), Threshold);
        QVERIFY(cell->isVisible());
        QVERIFY(WQ::CMessageTip::tipOf(cell));
    }

    void aThresholdThatIsNoNumberKeepsTheLastOne()
    {
        AssetsEditor editor;
        editor.load({soundLimit(1, 7)});
        editor.typeInto(0, Threshold, "x");
        QCOMPARE(editor.limits().at(0).threshold, 7.0);
        QCOMPARE(editor.text(0, Threshold), QString("x"));
    }

    void valuesOfLaterVersionsStayUntilTheyAreChanged()
    {
        AssetsEditor editor;
        CAssetsRC limit = soundLimit(1, 7);
        limit.measured = nvservice::EZVRCQuantity(77);
        limit.action = nvservice::EZVRCAction(9);
        editor.load({limit});
        QCOMPARE(editor.cell<WQ::CComboBox>(0, Measured).currentText(), QString("77"));
        QString message;
        QVERIFY(editor.widget().isDataValid(message));
        editor.choose(0, Action, "警告");
        QVERIFY(editor.limits().at(0).measured == nvservice::EZVRCQuantity(77));
        QVERIFY(editor.limits().at(0).action == nvservice::EZVRCAction::Warn);
    }

    void aReadOnlyEditorShowsAndChangesNothing()
    {
        AssetsEditor editor(true);
        editor.load({soundLimit(1, 7)});
        editor.window.grab();
        QCOMPARE(editor.text(0, Threshold), QString("7"));
        for (int column = Enabled; column <= Remove; ++column) {
            QVERIFY(!editor.table().itemWidget(editor.table().rowID(0), column));
        }
        QVERIFY(!editor.window.findChild<QPushButton*>("add"));
    }

    void clearingShowsNoLimits()
    {
        AssetsEditor editor;
        editor.load({soundLimit(1, 7)});
        editor.widget().clearAssetsRCs();
        QCOMPARE(editor.limits().size(), std::size_t(0));
        QCOMPARE(editor.table().rowCount(), 0);
        QString message;
        QVERIFY(editor.widget().isDataValid(message));
    }

    void noEventLeavesTheEditor()
    {
        AssetsEditor editor;
        editor.load({soundLimit(1, 7)});
        QTest::mouseClick(&editor.cell<WQ::CCheckBox>(0, Enabled), Qt::LeftButton);
        editor.choose(0, Action, "禁止");
        editor.typeInto(0, Threshold, "8");
        QTest::keyClick(&editor.cell(0, Threshold), Qt::Key_Return);
        editor.window.click("add");
        QTest::mouseClick(&editor.cell(0, Remove), Qt::LeftButton);
        QCOMPARE(editor.window.escapedEvents(), 0);
    }

    void everyControlHasAnAccessibleName()
    {
        AssetsEditor editor;
        editor.load({soundLimit(1, 7), soundLimit(2, 7)});
        editor.window.grab();
        for (int row = 0; row < 2; ++row) {
            for (int column = Enabled; column <= Remove; ++column) {
                const QString name = editor.cell(row, column).accessibleName();
                QVERIFY2(name.startsWith(QStringLiteral("第%1行").arg(row + 1)), qPrintable(name));
            }
        }
        QVERIFY(!editor.table().accessibleName().isEmpty());
    }

    void theKeyboardReachesEveryCell()
    {
        AssetsEditor editor;
        editor.load({soundLimit(1, 7)});
        editor.table().setFocus();
        editor.table().setCurrentRow(editor.table().rowID(0), 0);
        QSet<QWidget*> reached;
        for (int step = 0; step < 30; ++step) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            reached.insert(QApplication::focusWidget());
        }
        for (int column = Enabled; column <= Remove; ++column) {
            QWidget& cell = editor.cell(0, column);
            QVERIFY2(reached.contains(&cell) || !cell.isEnabled(), qPrintable(cell.accessibleName()));
        }
        auto& unit = editor.cell<WQ::CComboBox>(0, Unit);
        unit.setFocus();
        QTest::keyClick(&unit, Qt::Key_Down);
        QVERIFY(editor.limits().at(0).unit == nvservice::EZVRCUnit::Yuan);
    }

    void aThousandLimitsMakeEditorsForTheRowsOnScreenOnly()
    {
        AssetsEditor editor;
        editor.load(std::vector<CAssetsRC>(1000, soundLimit(1, 7)));
        editor.window.grab();
        QVERIFY(editor.window.findChildren<WQ::CComboBox*>().size() < 7 * 40);
        QVERIFY(!editor.window.findChildren<WQ::CComboBox*>().isEmpty());
        QCOMPARE(editor.limits().size(), std::size_t(1000));
    }

    void itLooksRightInEveryTheme()
    {
        for (const char* theme : {"dark", "light"}) {
            AssetsEditor editor;
            useTheme(theme);
            CAssetsRC byCategory = soundLimit(2, 3.5);
            byCategory.assetClass = nvservice::EZVRCAssetClass::ByCategory;
            byCategory.categoryId = 17;
            byCategory.enabled = false;
            editor.load({soundLimit(1, 12.5), byCategory, soundLimit(3, 20)});
            editor.table().setFocus();
            takePicture(editor.window, "assets");
        }
    }

private:
};

TEST_WITH_WIDGETS(AssetsWidgetTest)
#include "tst_assets_widget.moc"
