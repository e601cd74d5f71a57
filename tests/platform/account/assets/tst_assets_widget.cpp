// SPDX-License-Identifier: Apache-2.0
#include "AssetsEditor.h"
#include "support/BsonMacros.h"
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
class AssetsWidgetTest : public support::FixtureTest<AssetsEditor, support::WatchedTest>
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
        CAssetsRC limit = soundLimit(5, 12.5);
        limit.unknownFields = BSON("later" << 7);
        m_fixture->load({soundLimit(4, 1), limit});
        QTest::mouseClick(&m_fixture->cell<WQ::CCheckBox>(1, Enabled), Qt::LeftButton);
        m_fixture->choose(1, Scope, "产品");
        m_fixture->choose(1, Class, "债券");
        m_fixture->choose(1, Measured, "成本");
        m_fixture->choose(1, Base, "无");
        m_fixture->choose(1, Comparison, "小于等于");
        m_fixture->typeInto(1, Threshold, "2,000");
        m_fixture->choose(1, Unit, "万元");
        m_fixture->choose(1, Action, "禁止");
        m_fixture->typeInto(1, Remark, "abc");

        const std::vector<CAssetsRC> limits = m_fixture->limits();
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
        QCOMPARE(changed.unknownFields.getField("later").numberLong(), 7);
        QString message = "as before";
        QVERIFY(m_fixture->widget().isDataValid(message));
        QCOMPARE(message, QString("as before"));
    }

    void aNewLimitIsTheUsersToFillIn()
    {
        OneServer server;
        m_fixture->load({}, "深圳");
        m_fixture->window.click("add");
        QString message;
        QVERIFY(!m_fixture->widget().isDataValid(message));
        QCOMPARE(message, QString("请输入阈值"));
        m_fixture->typeInto(0, Threshold, "5");
        QVERIFY(m_fixture->widget().isDataValid(message));
        const CAssetsRC limit = m_fixture->limits().at(0);
        QCOMPARE(limit.ruleId, std::int64_t(-1));
        QVERIFY(limit.scope == nvservice::EZVRCScopeType::AccountGroup);
        QCOMPARE(limit.serverName, std::string("深圳"));
        QCOMPARE(limit.threshold, 5.0);
    }

    void theBoxesOfANewLimitStayAsWideAsTheirCells()
    {
        // What a box with a will of its own asks for comes 20 ms after it got its items.
        constexpr int LongEnoughMs = 60;
        m_fixture->load({soundLimit(5, 12.5)});
        BoxWidths widths;
        qApp->installEventFilter(&widths);
        m_fixture->window.click("add");
        QTest::qWait(LongEnoughMs);
        QVERIFY(widths.ofBoxes.size() >= 6);
        for (auto box = widths.ofBoxes.cbegin(); box != widths.ofBoxes.cend(); ++box) {
            const int first = box->indexOf(box->last());
            QCOMPARE(box->mid(first).count(box->last()), box->size() - first);
        }
    }

    void limitsAreRemovedByTheirButtonOrTogether()
    {
        m_fixture->load({soundLimit(1, 1), soundLimit(2, 2), soundLimit(3, 3), soundLimit(4, 4)});
        QVERIFY(!m_fixture->window.part<QPushButton>("remove").isEnabled());
        const auto said = [this] {
            const WQ::CMessageTip* tip = WQ::CMessageTip::tipOf(&m_fixture->table());
            return tip ? tip->text() : QString();
        };
        QCOMPARE(said(), QString());
        QTest::mouseClick(&m_fixture->cell(1, Remove), Qt::LeftButton);
        QCOMPARE(m_fixture->limits().size(), std::size_t(3));
        QCOMPARE(said(), QString("已删除1条"));
        // The key that follows by mistake removes nothing.
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space}) {
            QTest::keyClick(m_fixture->table().view(), key);
            QCOMPARE(m_fixture->limits().size(), std::size_t(3));
        }
        m_fixture->table().view();
        m_fixture->table().setRowSelected(m_fixture->table().rowID(0), true);
        m_fixture->table().setRowSelected(m_fixture->table().rowID(1), true);
        m_fixture->window.click("remove");
        QCOMPARE(m_fixture->limits().size(), std::size_t(1));
        QCOMPARE(m_fixture->limits().at(0).ruleId, std::int64_t(4));
        QCOMPARE(said(), QString("已删除2条"));
    }

    void theOffendingCellSaysWhatIsWrong()
    {
        m_fixture->load({soundLimit(1, 1), soundLimit(2, 2)});
        m_fixture->typeInto(1, Threshold, "abc");
        QString message;
        QVERIFY(!m_fixture->widget().isDataValid(message));
        QCOMPARE(message, QString("阈值不是有效的数字"));
        const WQ::CMessageTip* const tip = WQ::CMessageTip::tipOf(&m_fixture->cell(1, Threshold));
        QVERIFY(tip);
        QCOMPARE(tip->text(), message);
        QCOMPARE(m_fixture->table().rowIndex(m_fixture->table().currentRow()), 1);
        QTRY_COMPARE(tip->opacity(), 1.0);
        takePicture(m_fixture->window, "assets-problem");
    }

    void theFirstProblemIsTheOneThatIsShown()
    {
        std::vector<CAssetsRC> limits;
        for (int i = 0; i < 100; ++i) {
            limits.push_back(soundLimit(i, i));
        }
        limits[60].unit = nvservice::EZVRCUnit::Yuan;
        limits[80].threshold = -1;
        m_fixture->load(limits);
        QString message;
        QVERIFY(!m_fixture->widget().isDataValid(message));
        QCOMPARE(message, QString("有比较基准时，单位只能是%"));
        // Row 60 has been scrolled to: its cell is there to carry the message.
        QVERIFY(m_fixture->cell(60, Unit).isVisible());
        QVERIFY(WQ::CMessageTip::tipOf(&m_fixture->cell(60, Unit)));
    }

    void aProblemIsShownUntilSomethingChanges()
    {
        m_fixture->load({soundLimit(1, -1)});
        QString message;
        QVERIFY(!m_fixture->widget().isDataValid(message));
        QVERIFY(WQ::CMessageTip::tipOf(&m_fixture->cell(0, Threshold)));
        m_fixture->typeInto(0, Threshold, "5");
        QVERIFY(!WQ::CMessageTip::tipOf(&m_fixture->cell(0, Threshold)));

        // The next problem stands alone.
        m_fixture->typeInto(0, Threshold, "-1");
        QVERIFY(!m_fixture->widget().isDataValid(message));
        m_fixture->choose(0, Unit, "元");
        QVERIFY(!m_fixture->widget().isDataValid(message));
        QVERIFY(WQ::CMessageTip::tipOf(&m_fixture->cell(0, Unit)));
        QVERIFY(!WQ::CMessageTip::tipOf(&m_fixture->cell(0, Threshold)));
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
        m_fixture->load({soundLimit(1, 7)});
        m_fixture->typeInto(0, Threshold, "x");
        QCOMPARE(m_fixture->limits().at(0).threshold, 7.0);
        QCOMPARE(m_fixture->text(0, Threshold), QString("x"));
    }

    void valuesOfLaterVersionsStayUntilTheyAreChanged()
    {
        CAssetsRC limit = soundLimit(1, 7);
        limit.measured = nvservice::EZVRCQuantity(77);
        limit.action = nvservice::EZVRCAction(9);
        m_fixture->load({limit});
        QCOMPARE(m_fixture->cell<WQ::CComboBox>(0, Measured).currentText(), QString("77"));
        QString message;
        QVERIFY(m_fixture->widget().isDataValid(message));
        m_fixture->choose(0, Action, "警告");
        QVERIFY(m_fixture->limits().at(0).measured == nvservice::EZVRCQuantity(77));
        QVERIFY(m_fixture->limits().at(0).action == nvservice::EZVRCAction::Warn);
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
        m_fixture->load({soundLimit(1, 7)});
        m_fixture->widget().clearAssetsRCs();
        QCOMPARE(m_fixture->limits().size(), std::size_t(0));
        QCOMPARE(m_fixture->table().rowCount(), 0);
        QString message;
        QVERIFY(m_fixture->widget().isDataValid(message));
    }

    void noEventLeavesTheEditor()
    {
        m_fixture->load({soundLimit(1, 7)});
        QTest::mouseClick(&m_fixture->cell<WQ::CCheckBox>(0, Enabled), Qt::LeftButton);
        m_fixture->choose(0, Action, "禁止");
        m_fixture->typeInto(0, Threshold, "8");
        QTest::keyClick(&m_fixture->cell(0, Threshold), Qt::Key_Return);
        m_fixture->window.click("add");
        QTest::mouseClick(&m_fixture->cell(0, Remove), Qt::LeftButton);
        QCOMPARE(m_fixture->window.escapedEvents(), 0);
    }

    void everyControlHasAnAccessibleName()
    {
        m_fixture->load({soundLimit(1, 7), soundLimit(2, 7)});
        m_fixture->window.grab();
        for (int row = 0; row < 2; ++row) {
            for (int column = Enabled; column <= Remove; ++column) {
                const QString name = m_fixture->cell(row, column).accessibleName();
                QVERIFY2(name.startsWith(QStringLiteral("第%1行").arg(row + 1)), qPrintable(name));
            }
        }
        QVERIFY(!m_fixture->table().accessibleName().isEmpty());
    }

    void theKeyboardReachesEveryCell()
    {
        m_fixture->load({soundLimit(1, 7)});
        m_fixture->table().setFocus();
        m_fixture->table().setCurrentRow(m_fixture->table().rowID(0), 0);
        QSet<QWidget*> reached;
        for (int step = 0; step < 30; ++step) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            reached.insert(QApplication::focusWidget());
        }
        for (int column = Enabled; column <= Remove; ++column) {
            QWidget& cell = m_fixture->cell(0, column);
            QVERIFY2(reached.contains(&cell) || !cell.isEnabled(), qPrintable(cell.accessibleName()));
        }
        auto& unit = m_fixture->cell<WQ::CComboBox>(0, Unit);
        unit.setFocus();
        QTest::keyClick(&unit, Qt::Key_Down);
        QVERIFY(m_fixture->limits().at(0).unit == nvservice::EZVRCUnit::Yuan);
    }

    void aThousandLimitsMakeEditorsForTheRowsOnScreenOnly()
    {
        m_fixture->load(std::vector<CAssetsRC>(1000, soundLimit(1, 7)));
        m_fixture->window.grab();
        QVERIFY(m_fixture->window.findChildren<WQ::CComboBox*>().size() < 7 * 40);
        QVERIFY(!m_fixture->window.findChildren<WQ::CComboBox*>().isEmpty());
        QCOMPARE(m_fixture->limits().size(), std::size_t(1000));
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
