// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"

#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"

#include <QAV/CProductDataManager.h>
#include <WQ/CBaseDialog.h>
#include <WQ/CStandardSimpleTable.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/CProductInfo.h>
#include <utils/CSingletonT.h>

using namespace panel_test;

/// Replies that wait in the panel's event queue while the panel asks anew.
class OvertakenRepliesTest : public PanelTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PanelTest::init();
        m_client->addShanghai();
        m_client->openPanel();
    }

    void groupsThatWaitWhenTheNextQueryIsSentHaveNoEffect_data() { addNextQueries(); }

    void groupsThatWaitWhenTheNextQueryIsSentHaveNoEffect()
    {
        const auto* const names = utils::CSingletonT<QAV::CProductDataManager>::instance();
        const std::string nameBefore = names->getAccountGroupName(ShanghaiTag, 1);
        m_client->shanghai->takeQuery().handler(support::replyWith({makeGroup(1, "旧组", ShanghaiTag)}));
        support::awaitCallbacks();
        askAnew();
        support::settleCallbacks();
        QCOMPARE(m_client->shown(0), QStringList());
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(1)); // the new one; no products are asked for
        QCOMPARE(names->getAccountGroupName(ShanghaiTag, 1), nameBefore);
        m_client->answer(*m_client->shanghai, {makeGroup(1, "新组", ShanghaiTag)});
        QCOMPARE(m_client->shown(0), QStringList({"新组"}));
    }

    void aTableThatIsBeingFilledWhenTheNextQueryIsSentStartsAnew_data() { addNextQueries(); }

    void aTableThatIsBeingFilledWhenTheNextQueryIsSentStartsAnew()
    {
        m_client->answer(*m_client->shanghai, {makeGroup(1, "一组", ShanghaiTag), makeGroup(2, "二组", ShanghaiTag)});
        const QString place = m_client->model()->getDataByRow(1)->getKey();
        QVERIFY(m_client->table()->setCurrentKey(place));
        m_client->panel->onActive();
        const std::vector<nvservice::IDataPtr> many = manyGroups();
        m_client->shanghai->takeQuery().handler(support::replyWith(many));
        support::awaitCallbacks();
        QTRY_VERIFY(m_client->model()->getDataCount() > 0);
        QVERIFY(m_client->model()->getDataCount() < static_cast<int>(many.size()));
        QVERIFY(m_client->mask()->isVisible());
        askAnew();
        support::settleCallbacks();
        QCOMPARE(m_client->model()->getDataCount(), 0);
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(1)); // no products were asked for

        m_client->shanghai->takeQuery().handler(support::replyWith(many));
        QTRY_COMPARE(m_client->shanghai->waitingQueries(), std::size_t(1));
        QCOMPARE(m_client->model()->getDataCount(), static_cast<int>(many.size()));
        for (int i = 0; i < static_cast<int>(many.size()); ++i) {
            QVERIFY(m_client->model()->getDataByIndex(i)->getKey().endsWith('|' + QString::number(i + 1)));
        }
        QCOMPARE(m_client->table()->currentKey(), place);
        const auto* const names = utils::CSingletonT<QAV::CProductDataManager>::instance();
        QCOMPARE(names->getAccountGroupName(ShanghaiTag, static_cast<int>(many.size())), std::string("组"));
        m_client->shanghai->takeQuery().handler(support::replyWith({}));
        QTRY_VERIFY(m_client->mask()->isHidden());
    }

    void productsThatWaitWhenTheNextQueryIsSentLiftNoMask_data() { addNextQueries(); }

    void productsThatWaitWhenTheNextQueryIsSentLiftNoMask()
    {
        m_client->shanghai->takeQuery().handler(support::replyWith({makeGroup(1, "旧组", ShanghaiTag)}));
        support::settleCallbacks();
        m_client->shanghai->takeQuery().handler(support::replyWith({}));
        support::awaitCallbacks();
        askAnew();
        support::settleCallbacks();
        QVERIFY(m_client->mask()->isVisible());
        m_client->answer(*m_client->shanghai, {makeGroup(1, "新组", ShanghaiTag)});
        QCOMPARE(m_client->shown(0), QStringList({"新组"}));
    }

    void productsThatAreBeingTakenWhenTheNextQueryIsSentCountForNothing_data() { addNextQueries(); }

    void productsThatAreBeingTakenWhenTheNextQueryIsSentCountForNothing()
    {
        const auto group = makeGroup(1, "一组", ShanghaiTag);
        m_client->shanghai->takeQuery().handler(support::replyWith({group}));
        support::settleCallbacks();
        m_client->shanghai->takeQuery().handler(support::replyWith({manyProducts(*group)}));
        support::awaitCallbacks();
        QCoreApplication::sendPostedEvents(m_client->panel.get()); // the first turn
        QVERIFY(m_client->mask()->isVisible());
        askAnew();
        support::settleCallbacks();
        QVERIFY(m_client->mask()->isVisible());
        m_client->answer(*m_client->shanghai, {group});
        QCOMPARE(productInEditor(), QString("未关联产品"));
    }

    void manyProductsAreAllTakenBeforeTheMaskGoes()
    {
        const auto group = makeGroup(1, "一组", ShanghaiTag);
        m_client->answer(*m_client->shanghai, {group}, {manyProducts(*group)});
        QCOMPARE(productInEditor(), QString("最后一个产品"));
    }

    void anOutcomeThatWaitsWhenTheNextQueryIsSentIsStillTold()
    {
        m_client->answer(*m_client->shanghai, {makeGroup(1, "一组", ShanghaiTag)});
        m_client->panel->operatorAccountGroupInfo(nvservice::EZvDataOperation::Delete,
                                                  makeGroup(1, "一组", ShanghaiTag), {});
        m_client->shanghai->takeOperation().handler(support::replyWithError(utils::EErrorCode::Failed, "磁盘已满"));
        support::awaitCallbacks();
        m_client->panel->onActive();
        m_boxes->expectMessage(QMessageBox::Information, "提示", "删除账号组失败!(磁盘已满)");
        support::settleCallbacks();
        QCOMPARE(m_boxes->failures(), QStringList());
        QVERIFY(m_client->mask()->isVisible());
    }

private:
    /// More than are put into the table at once.
    static std::vector<nvservice::IDataPtr> manyGroups()
    {
        std::vector<nvservice::IDataPtr> groups;
        for (int id = 1; id <= 45000; ++id) {
            groups.push_back(makeGroup(id, "组", ShanghaiTag));
        }
        return groups;
    }

    /// Their accounts are more than are taken at once; the last product is that of the group.
    static nvservice::IDataPtr manyProducts(const nvservice::CAccountGroup& group)
    {
        const auto reply = boost::make_shared<nvservice::CKolmProductsResp>();
        const auto add = [&reply](const std::string& name, const nvservice::CAccountGroup& accounts) {
            const auto product = boost::make_shared<nvservice::CProductInfo>();
            product->productName = name;
            product->accounts = accounts.accounts;
            reply->products.push_back(product);
        };
        add("第一个产品", group);
        for (int id = 2; id <= 4; ++id) {
            add("产品", *makeGroup(id, "", ShanghaiTag, 15000));
        }
        add("最后一个产品", group);
        return reply;
    }

    /// The product of the only group's account, as the editor shows it.
    QString productInEditor()
    {
        constexpr int ProductColumn = 3;
        QString product;
        m_boxes->expectDialog([&product](WQ::CBaseDialog& dialog) {
            const auto* const table = dialog.findChild<WQ::CStandardSimpleTable*>();
            product = table->itemText(table->rowID(0), ProductColumn);
            dialog.done(0);
        });
        m_client->panel->handleEvent(WQ::RowButtonClicked, 4, QAV::EditRowButton,
                                     m_client->model()->getDataByRow(0)->getKey(), nullptr);
        return product;
    }

    static void addNextQueries()
    {
        const support::DataRows<QString> row("next");
        for (const char* const next : {"activate", "switch", "refresh"}) {
            row(next, next);
        }
    }

    /// Asks anew as the present row says.
    void askAnew()
    {
        QFETCH(QString, next);
        if (next == "activate") {
            m_client->panel->onActive();
        } else if (next == "switch") {
            m_client->panel->switchSystem(0, QString::fromStdString(Shanghai));
        } else { // the mask covers the button itself
            m_client->panel->handleEvent(WQ::ButtonClicked, QAV::RefreshButtonId, 0, {}, nullptr);
        }
    }
};

TEST_WITH_WIDGETS(OvertakenRepliesTest)
#include "tst_overtaken_replies.moc"
