// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"

#include "support/BsonMacros.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"

#include <utils/CSingletonT.h>

#include <thread>

using namespace panel_test;
using nvservice::EZvDataOperation;

/// What the panel asks of the data service and how it takes the answers.
class GroupRequestsTest : public PanelTest
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(QMetaType::type("std::vector<nvservice::IDataPtr>") == QMetaType::UnknownType); }

    void init()
    {
        PanelTest::init();
        m_client->addShanghai();
    }

    void theTypeOfAReplyIsRegisteredByThePanelItself()
    {
        m_client->createPanel();
        QVERIFY(QMetaType::type("std::vector<nvservice::IDataPtr>") != QMetaType::UnknownType);
    }

    void repliesTravelBySignalsToSlotsOfTheSameParameters_data()
    {
        const support::DataRows<QByteArray, QByteArray, QByteArray, QList<QByteArray>> row("signal", "slot",
                                                                                           "parameters", "names");
        row("groups", "sigQuaryAccountGroup", "slotQuaryAccountGroup", "(std::vector<nvservice::IDataPtr>,int)",
            QList<QByteArray>({"datas", "nTotalDataCount"}));
        row("outcome", "sigOperatorAccountGroupInfo", "slotOperatorAccountGroupInfo", "(int,bool,QString)",
            QList<QByteArray>({"nOperation", "bSuccess", "qsError"}));
        row("products", "sigQueryProduct", "slotQueryProduct", "(std::vector<nvservice::IDataPtr>)",
            QList<QByteArray>({"datas"}));
    }
    void repliesTravelBySignalsToSlotsOfTheSameParameters()
    {
        QFETCH(QByteArray, signal);
        QFETCH(QByteArray, slot);
        QFETCH(QByteArray, parameters);
        QFETCH(QList<QByteArray>, names);
        const QMetaObject& panel = QAV::CAccountGroupRiskManagePanel::staticMetaObject;
        const int signalIndex = panel.indexOfSignal(signal + parameters);
        const int slotIndex = panel.indexOfSlot(slot + parameters);
        QVERIFY(signalIndex >= 0 && slotIndex >= 0);
        QCOMPARE(panel.method(signalIndex).parameterNames(), names);
        QCOMPARE(panel.method(slotIndex).parameterNames(), names);
    }

    void withoutACurrentServerTheGroupQueryGoesToAllServers()
    {
        m_client->addShenzhen();
        m_client->createPanel().onActive();
        QCOMPARE(m_client->shanghai->takeQuery().request.dataType, nvservice::DataType::AccountGroup);
        QCOMPARE(m_client->shenzhen->takeQuery().request.dataType, nvservice::DataType::AccountGroup);
    }

    void withACurrentServerOnlyItsClientIsAsked()
    {
        m_client->addShenzhen();
        m_client->createPanel().switchSystem(0, QString::fromStdString(Shenzhen));
        const auto query = m_client->shenzhen->takeQuery();
        QCOMPARE(query.request.dataType, nvservice::DataType::AccountGroup);
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
    }

    void aQuerySetsTheDataTypeAndLeavesItsKeyEmpty()
    {
        m_client->createPanel().onActive();
        const auto groups = m_client->shanghai->takeQuery();
        QCOMPARE(groups.request.dataType, 625);
        QCOMPARE(groups.request.queryKey, std::string());
        groups.handler(support::replyWith({}));
        QTRY_VERIFY(m_client->shanghai->waitingQueries() > 0);
        const auto products = m_client->shanghai->takeQuery();
        QCOMPARE(products.request.dataType, 12224);
        QCOMPARE(products.request.queryKey, std::string());
    }

    void theProductQueryGoesToAllServersWhateverTheCurrentOneIs()
    {
        m_client->addShenzhen();
        m_client->createPanel().switchSystem(0, QString::fromStdString(Shenzhen));
        m_client->shenzhen->takeQuery().handler(support::replyWith({}));
        QTRY_VERIFY(m_client->shanghai->waitingQueries() > 0 && m_client->shenzhen->waitingQueries() > 0);
        QCOMPARE(m_client->shanghai->takeQuery().request.dataType, nvservice::DataType::Product);
        QCOMPARE(m_client->shenzhen->takeQuery().request.dataType, nvservice::DataType::Product);
    }

    void anAddGoesToTheServerThatTheEditorNamedEvenWithoutASystemTag()
    {
        m_client->addShenzhen();
        m_client->createPanel().operatorAccountGroupInfo(EZvDataOperation::Add, makeGroup(-1, "新组", ""), Shenzhen);
        const auto operation = m_client->shenzhen->takeOperation();
        QCOMPARE(operation.request.operation, EZvDataOperation::Add);
    }

    void aModifyGoesToTheServerOfTheRecord()
    {
        m_client->addShenzhen();
        m_client->createPanel().operatorAccountGroupInfo(EZvDataOperation::Modify, makeGroup(7, "七组", ShenzhenTag),
                                                         Shanghai);
        QCOMPARE(m_client->shenzhen->takeOperation().request.operation, EZvDataOperation::Modify);
    }

    void aDeleteGoesToTheServerOfTheRecord()
    {
        m_client->addShenzhen();
        m_client->createPanel().operatorAccountGroupInfo(EZvDataOperation::Delete, makeGroup(7, "七组", ShenzhenTag),
                                                         "");
        QCOMPARE(m_client->shenzhen->takeOperation().request.operation, EZvDataOperation::Delete);
    }

    void anOperationCarriesTypeOperationAndRecord()
    {
        m_client->createPanel().operatorAccountGroupInfo(EZvDataOperation::Modify, makeGroup(7, "七组", ShanghaiTag, 3),
                                                         "");
        const auto operation = m_client->shanghai->takeOperation();
        QCOMPARE(operation.request.dataType, 625);
        QCOMPARE(int(operation.request.operation), 0);
        const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(operation.request.data);
        QVERIFY(group);
        QCOMPARE(group->groupId, 7);
        QCOMPARE(group->groupName, std::string("七组"));
        QCOMPARE(group->accounts.size(), std::size_t(3));
    }

    void aSuccessWithAResultDocumentIsAFailureThatSaysTheDocument()
    {
        m_client->createPanel().operatorAccountGroupInfo(EZvDataOperation::Delete, makeGroup(7, "七组", ShanghaiTag),
                                                         "");
        QAV::ITransport::Reply reply;
        reply.document = BSON("reason" << "locked");
        m_boxes->expectMessage(QMessageBox::Information, "提示", "删除账号组失败!({ reason: \"locked\" })");
        m_client->shanghai->takeOperation().handler(reply);
        QTRY_VERIFY(m_boxes->failures().isEmpty());
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
    }

    void aFailedOperationSaysTheServersText()
    {
        m_client->createPanel().operatorAccountGroupInfo(EZvDataOperation::Modify, makeGroup(7, "七组", ShanghaiTag),
                                                         "");
        m_boxes->expectMessage(QMessageBox::Information, "提示", "编辑账号组失败!(组名已存在 %1)");
        m_client->shanghai->takeOperation().handler(
            support::replyWithError(utils::EErrorCode::Duplicate, "组名已存在 %1"));
        QTRY_VERIFY(m_boxes->failures().isEmpty());
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
    }

    void ofAFailureWithAResultDocumentTheServersTextIsSaid()
    {
        m_client->createPanel().operatorAccountGroupInfo(EZvDataOperation::Modify, makeGroup(7, "七组", ShanghaiTag),
                                                         "");
        QAV::ITransport::Reply reply = support::replyWithError(utils::EErrorCode::Failed, "磁盘已满");
        reply.document = BSON("reason" << "locked");
        m_boxes->expectMessage(QMessageBox::Information, "提示", "编辑账号组失败!(磁盘已满)");
        m_client->shanghai->takeOperation().handler(reply);
        QTRY_VERIFY(m_boxes->failures().isEmpty());
    }

    void aSuccessfulOperationIsReportedAndTheTableQueriedAnew()
    {
        m_client->createPanel().operatorAccountGroupInfo(EZvDataOperation::Add, makeGroup(-1, "新组", ""), Shanghai);
        m_boxes->expectMessage(QMessageBox::Information, "提示", "添加账号组成功!");
        m_client->shanghai->takeOperation().handler({});
        QTRY_VERIFY(m_client->shanghai->waitingQueries() > 0);
        QVERIFY(m_boxes->failures().isEmpty());
        QCOMPARE(m_client->shanghai->takeQuery().request.dataType, nvservice::DataType::AccountGroup);
    }

    void theOutcomeIsToldByOperationBeforeTheTableIsQueriedAnew_data()
    {
        const support::DataRows<int, bool, QString, QString> row("operation", "success", "error", "text");
        row("an edit", 0, true, "", "编辑账号组成功!");
        row("an addition", 2, true, "", "添加账号组成功!");
        row("a deletion", 3, true, "", "删除账号组成功!");
        row("a failed edit", 0, false, "没有权限", "编辑账号组失败!(没有权限)");
        row("a failed addition", 2, false, " 100%1 %2 ", "添加账号组失败!( 100%1 %2 )");
        row("a deletion that fails without a text", 3, false, "", "删除账号组失败!()");
    }
    void theOutcomeIsToldByOperationBeforeTheTableIsQueriedAnew()
    {
        QFETCH(int, operation);
        QFETCH(bool, success);
        QFETCH(QString, error);
        QFETCH(QString, text);
        auto& panel = m_client->createPanel();
        QStringList course;
        m_client->shanghai->onQuery = [&](const nvservice::CKolmQueryDataReq& request, const auto&) {
            course << (m_boxes->failures().isEmpty() ? "told" : "not told") << QString::number(request.dataType);
        };
        m_boxes->expectMessage(QMessageBox::Information, "提示", text);
        emit panel.sigOperatorAccountGroupInfo(operation, success, error);
        QCOMPARE(course, success ? QStringList({"told", "625"}) : QStringList());
        QVERIFY(m_boxes->failures().isEmpty());
        QCOMPARE(m_client->mask()->isVisible(), success);
    }

    void anUnknownOperationCodeIsNotReported()
    {
        auto& panel = m_client->createPanel();
        emit panel.sigOperatorAccountGroupInfo(1, true, QString());
        QCoreApplication::sendPostedEvents();
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
    }

    void aReplyIsHandledOnTheUserInterfaceThreadAfterTheCallbackHasReturned()
    {
        auto& panel = m_client->openPanel();
        std::atomic<bool> emitted{false};
        std::thread::id emittingThread;
        int rowsAtEmission = -1;
        connect(
            &panel, &QAV::CAccountGroupRiskManagePanel::sigQuaryAccountGroup, &panel,
            [&] {
                emittingThread = std::this_thread::get_id();
                emitted = true;
            },
            Qt::DirectConnection);
        m_client->shanghai->takeQuery().handler(support::replyWith({makeGroup(1, "一组", ShanghaiTag)}));
        // No event is handled here: what the callback did on its own thread must not have touched the table.
        while (!emitted) {
            std::this_thread::yield();
        }
        rowsAtEmission = m_client->model()->getDataCount();
        m_client->answerProducts();
        QVERIFY(emittingThread != std::this_thread::get_id());
        QCOMPARE(rowsAtEmission, 0);
        QCOMPARE(m_client->model()->getDataCount(), 1);
    }

    void aFailedQueryEndsAsAnEmptyTableWithoutAMessage()
    {
        m_client->openPanel();
        m_client->shanghai->takeQuery().handler(support::replyWithError(utils::EErrorCode::Failed, "磁盘已满"));
        QTRY_VERIFY(m_client->shanghai->waitingQueries() > 0);
        m_client->shanghai->takeQuery().handler(support::replyWithError(utils::EErrorCode::Failed, "磁盘已满"));
        QTRY_VERIFY(m_client->mask()->isHidden());
        QCOMPARE(m_client->model()->getDataCount(), 0);
    }

    void withoutAnyServerTheLoadingEnds()
    {
        support::centre().removeServer(Shanghai);
        m_client->createPanel().onActive();
        QVERIFY(!m_client->mask()->isHidden());
        QTRY_VERIFY(m_client->mask()->isHidden());
    }

    void recordsOfOtherClassesAreSkipped()
    {
        m_client->openPanel();
        const auto product = boost::make_shared<nvservice::CProductInfo>();
        m_client->answer(*m_client->shanghai,
                         {product, makeGroup(1, "一组", ShanghaiTag), boost::make_shared<nvservice::CAccountInfo>()},
                         {makeGroup(2, "不是产品", ShanghaiTag)});
        QCOMPARE(m_client->shown(0), QStringList({"一组"}));
    }

    void aReplyAfterThePanelHasGoneFindsNobody()
    {
        m_client->openPanel();
        const auto query = m_client->shanghai->takeQuery();
        m_client->destroyPanel();
        query.handler(support::replyWith({makeGroup(1, "一组", ShanghaiTag)}));
        support::settleCallbacks();
        QCOMPARE(m_client->shanghai->waitingQueries(), std::size_t(0));
    }

    void repliesDuringDestructionFindNobody()
    {
        m_client->shanghai->onQuery = [](const nvservice::CKolmQueryDataReq&, QAV::ITransport::ReplyHandler handler) {
            handler(support::replyWith({makeGroup(1, "一组", ShanghaiTag)}));
        };
        for (int round = 0; round < 50; ++round) {
            auto& panel = m_client->createPanel();
            for (int i = 0; i < 20; ++i) {
                panel.switchSystem(0, QString::fromStdString(Shanghai));
            }
            m_client->destroyPanel();
        }
        QVERIFY(!m_client->panel);
    }
};

TEST_WITH_WIDGETS(GroupRequestsTest)
#include "tst_group_requests.moc"
