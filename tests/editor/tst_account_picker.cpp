// SPDX-License-Identifier: Apache-2.0
#include "editor/AccountUnitRule.h"
#include "editor/EditorFixture.h"
#include "support/TestProgram.h"

#include <QAbstractItemView>

using namespace editor_test;

/// The account picker.
class AccountPickerTest : public EditorTest
{
    Q_OBJECT

    /// The rule as it is told: the first pair in the order of i, then of j.
    static boost::optional<std::pair<std::size_t, std::size_t>> pairByComparingAll(const AccountList& accounts)
    {
        for (std::size_t i = 0; i < accounts.size(); ++i) {
            for (std::size_t j = i + 1; j < accounts.size(); ++j) {
                if (accounts[i]->accountId == accounts[j]->accountId &&
                    accounts[i]->unitId.empty() != accounts[j]->unitId.empty()) {
                    return std::make_pair(i, j);
                }
            }
        }
        return boost::none;
    }

private slots:
    void init()
    {
        EditorTest::init();
        m_picker = std::make_unique<QAV::CSelectAccountDialog>(nullptr);
    }

    void cleanup()
    {
        m_picker.reset();
        EditorTest::cleanup();
    }

    void itLooksAsDescribed()
    {
        m_picker->show();
        QCOMPARE(m_picker->windowTitle(), QString("添加"));
        QCOMPARE(m_picker->size(), QSize(450, 240));
        QCOMPARE(types()->width(), 240);
        QCOMPARE(box()->width(), 240);
        QCOMPARE(types()->id(), 0);
        QCOMPARE(box()->id(), 1);
        QCOMPARE(buttonOf(*m_picker, "确定")->size(), QSize(70, 30));
        QCOMPARE(buttonOf(*m_picker, "取消")->size(), QSize(70, 30));
        QCOMPARE(types()->accessibleName(), QString("选择类型"));
        QCOMPARE(box()->accessibleName(), QString("选择账号"));
    }

    void theFirstTypeIsShownAtOnce()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(2, "20", "SH")), makeWrapper(makeAccount(1, "10", "SH"))}, {});
        QCOMPARE(types()->currentText(), QString("期货账号"));
        QCOMPARE(types()->currentData().toInt(), 1);
        QCOMPARE(itemTexts(), QStringList("10(未关联产品)"));
        types()->setCurrentIndex(1);
        QCOMPARE(itemTexts(), QStringList("20(未关联产品)"));
    }

    void candidatesTakeOverTheTagOfTheirWrapper()
    {
        const auto wrapper = boost::make_shared<nvservice::CKolmAccountInfo>();
        wrapper->account = makeAccount(2, "20", "old");
        wrapper->setSystemTag("SZ");
        m_picker->setAccounts({wrapper}, {});
        QCOMPARE(wrapper->account->getSystemTag(), std::string("SZ"));
    }

    void itemsShowDisplayIdAndProductWithoutABlank()
    {
        const AccountPtr known = makeAccount(2, "20", "SH", "A");
        const AccountPtr nulled = makeAccount(2, "21", "SH");
        m_picker->setProductMap({{known->getKey(), makeProduct("远山一号")}, {nulled->getKey(), nullptr}});
        m_picker->setAccounts({makeWrapper(known), makeWrapper(nulled), makeWrapper(makeAccount(2, "22", "SH"))}, {});
        QCOMPARE(itemTexts(), QStringList({"20-A(远山一号)", "21(未关联产品)", "22(未关联产品)"}));
    }

    void anAccountInTheGroupIsCheckedOnlyWhenTypeAndDisplayIdMatch()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(2, "20", "SH")), makeWrapper(makeAccount(2, "20", "SH", "A")),
                               makeWrapper(makeAccount(2, "21", "SH"))},
                              {nullptr, makeAccount(1, "21", "SH"), makeAccount(2, "20", "SZ", "A")});
        // The type of 21 differs; of 20-A only the server differs, which does not count.
        QCOMPARE(selected(), QStringList("20-A"));
        QCOMPARE(box()->currentText(), QString("已选 1 个账号"));
    }

    void onlyTheCurrentTypesAccountsAreReturned()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(1, "10", "SH")), makeWrapper(makeAccount(2, "20", "SH"))}, {});
        m_picker->show();
        checkAccounts(*m_picker, {"10"});
        QCOMPARE(selected(), QStringList("10"));
        types()->setCurrentIndex(1);
        QCOMPARE(selected(), QStringList());
        types()->setCurrentIndex(0);
        QCOMPARE(selected(), QStringList());
    }

    void accountsComeBackInTheOrderOfTheCandidates()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(2, "30", "SH")), makeWrapper(makeAccount(2, "10", "SH")),
                               makeWrapper(makeAccount(2, "20", "SH"))},
                              {});
        m_picker->show();
        checkAccounts(*m_picker, {"10", "20", "30"});
        QCOMPARE(selected(), QStringList({"30", "10", "20"}));
    }

    void anAccountWithItsOwnUnitIsRefusedAndTheChecksStay()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(2, "20", "SH")), makeWrapper(makeAccount(2, "20", "SH", "A"))},
                              {});
        m_client->boxes.expectDialog([&](WQ::CBaseDialog& dialog) {
            checkAccounts(*m_picker, {"20(", "20-A"});
            m_client->boxes.expectMessage(QMessageBox::Critical, "错误提示",
                                          "账号和下属账号单元不能配在同一组中!(20 20-A)");
            clickButton(dialog, "确定");
            QVERIFY(dialog.isVisible());
            QCOMPARE(selected(), QStringList({"20", "20-A"}));
            checkAccounts(*m_picker, {"20("});
            clickButton(dialog, "确定");
        });
        QCOMPARE(m_picker->exec(), 1);
        QCOMPARE(selected(), QStringList("20-A"));
    }

    void theUnitErrorNamesThePairInListOrder()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(2, "1", "SH")), makeWrapper(makeAccount(2, "20", "SH", "B")),
                               makeWrapper(makeAccount(2, "30", "SH")), makeWrapper(makeAccount(2, "30", "SH", "C")),
                               makeWrapper(makeAccount(2, "20", "SH"))},
                              {});
        m_client->boxes.expectDialog([&](WQ::CBaseDialog& dialog) {
            box()->setFocus();
            QTest::keyClick(box(), Qt::Key_Space);
            clickButton(*box()->findChild<QWidget*>("search")->window(), "全选");
            box()->hidePopup();
            // 20-B stands before 30, although the pair of 30 is complete before that of 20.
            m_client->boxes.expectMessage(QMessageBox::Critical, "错误提示",
                                          "账号和下属账号单元不能配在同一组中!(20-B 20)");
            clickButton(dialog, "确定");
            clickButton(dialog, "取消");
        });
        QCOMPARE(m_picker->exec(), 0);
    }

    void aPairOfPercentSignsIsNamedAsItIs()
    {
        const AccountList both{makeAccount(2, "%2", "SH"), makeAccount(2, "%2", "SH", "%1")};
        m_picker->setAccounts({makeWrapper(both[0]), makeWrapper(both[1])}, both);
        m_client->boxes.expectDialog([&](WQ::CBaseDialog& dialog) {
            m_client->boxes.expectMessage(QMessageBox::Critical, "错误提示",
                                          "账号和下属账号单元不能配在同一组中!(%2 %2-%1)");
            clickButton(dialog, "确定");
            clickButton(dialog, "取消");
        });
        m_picker->exec();
    }

    void unitsOfOneAccountMayBeTogether()
    {
        const AccountList units{makeAccount(2, "20", "SH", "A"), makeAccount(2, "20", "SH", "B")};
        m_picker->setAccounts({makeWrapper(units[0]), makeWrapper(units[1])}, units);
        m_client->boxes.expectDialog([](WQ::CBaseDialog& dialog) { clickButton(dialog, "确定"); });
        QCOMPARE(m_picker->exec(), 1);
        QCOMPARE(selected(), QStringList({"20-A", "20-B"}));
    }

    void twoRecordsWithoutAUnitMayBeTogether()
    {
        const AccountList twice{makeAccount(2, "20", "SH"), makeAccount(2, "20", "SZ")};
        m_picker->setAccounts({makeWrapper(twice[0]), makeWrapper(twice[1])}, twice);
        m_client->boxes.expectDialog([](WQ::CBaseDialog& dialog) { clickButton(dialog, "确定"); });
        QCOMPARE(m_picker->exec(), 1);
        QCOMPARE(selected().size(), 2);
    }

    void theUnitRuleFindsTheSamePairAsComparingAll()
    {
        std::uint32_t state = 20240607;
        const auto random = [&state](std::uint32_t below) {
            state = state * 1664525U + 1013904223U;
            return (state >> 16U) % below;
        };
        int offending = 0;
        for (int round = 0; round < 3000; ++round) {
            AccountList accounts;
            const std::uint32_t count = random(9);
            for (std::uint32_t i = 0; i < count; ++i) {
                accounts.push_back(makeAccount(2, std::to_string(random(6)), "SH", random(4) == 0 ? "A" : ""));
            }
            const auto expected = pairByComparingAll(accounts);
            offending += expected ? 1 : 0;
            QVERIFY2(QAV::firstAccountWithOwnUnit(accounts) == expected, qPrintable(QString::number(round)));
        }
        QVERIFY(offending > 300 && offending < 2700);
    }

    void cancellingReturnsZero()
    {
        m_client->boxes.expectDialog([](WQ::CBaseDialog& dialog) { clickButton(dialog, "取消"); });
        QCOMPARE(m_picker->exec(), 0);
    }

    void aClickEventWithTheTypeBoxsIdRefills()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(1, "10", "SH")), makeWrapper(makeAccount(2, "20", "SH"))}, {});
        QVERIFY(!m_picker->handleEvent(WQ::ButtonClicked, 0, 1, {}, nullptr));
        QCOMPARE(itemTexts(), QStringList("20(未关联产品)"));
        QCOMPARE(types()->currentIndex(), 0);
    }

    void anIndexWithoutAnItemKeepsWhatIsShown()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(0, "00", "SH")), makeWrapper(makeAccount(1, "10", "SH"))}, {});
        for (const int index : {-1, 1, 1000}) {
            QVERIFY(!m_picker->handleEvent(WQ::ComboIndexChanged, 0, index, {}, nullptr));
            QCOMPARE(itemTexts(), QStringList("10(未关联产品)"));
        }
    }

    void newCandidatesReplaceTheOldOnes()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(1, "10", "SH")), makeWrapper(makeAccount(2, "20", "SH"))},
                              {makeAccount(1, "10", "SH")});
        m_picker->setAccounts({makeWrapper(makeAccount(1, "10", "SH")), makeWrapper(makeAccount(1, "11", "SH"))},
                              {makeAccount(1, "11", "SH")});
        QCOMPARE(types()->count(), 1);
        QCOMPARE(itemTexts(), QStringList({"10(未关联产品)", "11(未关联产品)"}));
        QCOMPARE(selected(), QStringList("11"));
    }

    void newCandidatesWithoutAnOfferLeaveTheOldItemsUnchosen()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(1, "10", "SH"))}, {makeAccount(1, "10", "SH")});
        m_picker->setAccounts({makeWrapper(makeAccount(12, "30", "SH"))}, {});
        QCOMPARE(types()->count(), 0);
        // The index without a type changes nothing in the box, and nothing in the box counts.
        QCOMPARE(itemTexts(), QStringList("10(未关联产品)"));
        QCOMPARE(selected(), QStringList());
    }

    void keysChangeTheType()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(1, "10", "SH")), makeWrapper(makeAccount(2, "20", "SH")),
                               makeWrapper(makeAccount(3, "30", "SH"))},
                              {});
        m_picker->show();
        types()->setFocus();
        QTest::keyClick(types(), Qt::Key_Down);
        QCOMPARE(itemTexts(), QStringList("20(未关联产品)"));
        QTest::keyClick(types(), Qt::Key_End);
        QCOMPARE(itemTexts(), QStringList("30(未关联产品)"));
    }

    void nullAndEmptyCandidatesAreSkipped()
    {
        const auto empty = boost::make_shared<nvservice::CKolmAccountInfo>();
        empty->account.reset();
        m_picker->setAccounts({nullptr, empty, makeWrapper(makeAccount(1, "10", "SH"))}, {});
        QCOMPARE(itemTexts(), QStringList("10(未关联产品)"));
    }

    void withoutAnOfferOkReturnsAnEmptySelection()
    {
        m_picker->setAccounts({makeWrapper(makeAccount(12, "10", "SH"))}, {});
        m_client->boxes.expectDialog([](WQ::CBaseDialog& dialog) { clickButton(dialog, "确定"); });
        QCOMPARE(m_picker->exec(), 1);
        QCOMPARE(selected(), QStringList());
    }

    void otherEventsGoOnToTheBase()
    {
        QVERIFY(!m_picker->handleEvent(WQ::ButtonClicked, 1, 0, {}, nullptr));
        QVERIFY(!m_picker->handleEvent(WQ::ButtonClicked, 4, 0, {}, nullptr));
        QVERIFY(!m_picker->handleEvent(WQ::ButtonOrEnter, 2, 0, {}, nullptr));
    }

private:
    WQ::CComboBox* types() const { return m_picker->findChild<WQ::CComboBox*>(); }
    QAV::CUserCombobox* box() const { return m_picker->findChild<QAV::CUserCombobox*>(); }

    QStringList itemTexts()
    {
        box()->showPopup();
        const auto* const items = box()->findChild<QAbstractItemView*>("items")->model();
        QStringList texts;
        for (int row = 0; row < items->rowCount(); ++row) {
            texts << items->index(row, 0).data().toString();
        }
        box()->hidePopup();
        return texts;
    }

    QStringList selected() const
    {
        AccountList accounts;
        m_picker->selectedAccounts(accounts);
        QStringList ids;
        for (const auto& account : accounts) {
            ids << QString::fromStdString(nvservice::accountDisplayID(account));
        }
        return ids;
    }

    std::unique_ptr<QAV::CSelectAccountDialog> m_picker;
};

TEST_WITH_WIDGETS(AccountPickerTest)
#include "tst_account_picker.moc"
