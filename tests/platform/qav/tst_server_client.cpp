// SPDX-License-Identifier: Apache-2.0
#include "ClientTest.h"

#include "support/BsonMacros.h"

#include <nvservice/CKolmProductsResp.h>
#include <nvservice/SystemTag.h>

#include <stdexcept>

using namespace support;
using namespace std::chrono_literals;
using utils::EErrorCode;

/// One server: every request is answered once, whatever the transport does.
class ServerClientTest : public ClientTest
{
    Q_OBJECT

private slots:
    void aReplyReachesTheCallbackWithAllItsParts()
    {
        auto request = groupQuery();
        request->queryKey = "17";
        m_client->queryData_async(request, m_replies.onQuery(), 0);
        const auto query = m_transport->takeQuery();
        QCOMPARE(query.request.dataType, 625);
        QCOMPARE(query.request.queryKey, std::string("17"));

        auto reply = replyWith({group(1, "甲"), group(2, "乙")});
        reply.totalCount = 7;
        reply.document = BSON("a" << 1);
        query.handler(reply);

        const CollectedReply got = m_replies.first();
        QVERIFY(got.error.isSuccess());
        QCOMPARE(got.records.size(), std::size_t(2));
        QCOMPARE(got.totalCount, 7);
        QCOMPARE(got.document.getField("a").numberLong(), 1);
    }

    void anErrorReplyKeepsItsCodeAndText()
    {
        ask();
        m_transport->takeQuery().handler(replyWithError(EErrorCode::PermissionDenied, "没有权限"));
        QVERIFY(m_replies.first().error.code() == EErrorCode::PermissionDenied);
        QCOMPARE(text(m_replies.first().error), QString("没有权限"));
    }

    void aRecordWithoutATagGetsItsServersTagAndAnotherKeepsItsOwn()
    {
        ask();
        auto tagged = group(2, "乙");
        tagged->setSystemTag("OTHER");
        tagged->accounts = {boost::make_shared<nvservice::CAccountInfo>(), nullptr,
                            boost::make_shared<nvservice::CAccountInfo>()};
        tagged->accounts.back()->setSystemTag("THIRD");
        m_transport->takeQuery().handler(replyWith({group(1, "甲"), tagged}));
        const CollectedReply got = m_replies.first();
        QCOMPARE(got.records.at(0)->getSystemTag(), std::string("SZ"));
        QCOMPARE(got.records.at(1)->getSystemTag(), std::string("OTHER"));
        QCOMPARE(tagged->accounts.front()->getSystemTag(), std::string("SZ"));
        QCOMPARE(tagged->accounts.back()->getSystemTag(), std::string("THIRD"));
    }

    void nullRecordsAreDroppedAndRecordsOfAnyClassAreDelivered()
    {
        ask();
        const auto foreign = boost::make_shared<nvservice::CKolmProductsResp>();
        m_transport->takeQuery().handler(replyWith({nullptr, group(1, "甲"), nullptr, foreign}));
        const CollectedReply got = m_replies.first();
        QCOMPARE(got.records.size(), std::size_t(2));
        QVERIFY(boost::dynamic_pointer_cast<nvservice::CAccountGroup>(got.records[0]));
        QVERIFY(got.records[1] == foreign);
    }

    void aSecondReplyToTheSameRequestIsDropped()
    {
        ask();
        const auto query = m_transport->takeQuery();
        query.handler(replyWith({group(1, "甲")}));
        query.handler(replyWithError(EErrorCode::Failed, "再次"));
        m_centre->shutDown();
        QCOMPARE(m_replies.count(), std::size_t(1));
        QVERIFY(m_replies.first().error.isSuccess());
    }

    void aRequestWithoutAReplyIsAnsweredWhenItsDeadlinePasses()
    {
        m_centre->setDeadline(50ms);
        ask();
        QVERIFY(m_replies.first().error.code() == EErrorCode::DeadlineExceeded);
        QCOMPARE(text(m_replies.first().error), QString("分系统“深圳”未应答：超过 50 毫秒"));
        QCOMPARE(m_replies.first().records.size(), std::size_t(0));
    }

    void aReplyAfterTheDeadlineIsDropped()
    {
        m_centre->setDeadline(20ms);
        ask();
        const auto query = m_transport->takeQuery();
        QVERIFY(m_replies.waitFor(1));
        query.handler(replyWith({group(1, "甲")}));
        m_centre->shutDown();
        QCOMPARE(m_replies.count(), std::size_t(1));
        QVERIFY(m_replies.first().error.code() == EErrorCode::DeadlineExceeded);
    }

    void whatIsOverdueIsCancelledAtItsTransportAndNothingElseIs()
    {
        CReplyCollector answered;
        m_client->queryData_async(groupQuery(), answered.onQuery(), 0);
        m_transport->takeQuery().handler(replyWith({}));
        QVERIFY(answered.waitFor(1));
        m_centre->setDeadline(30ms);
        CReplyCollector overdue;
        m_client->queryData_async(groupQuery(), overdue.onQuery(), 0);
        const auto query = m_transport->takeQuery();
        QVERIFY(overdue.waitFor(1));
        m_client->operateData_async(addOf(group(1, "甲")), overdue.onOperate(), 0);
        const auto operation = m_transport->takeOperation();
        QVERIFY(overdue.waitFor(2));
        m_centre->shutDown();
        QCOMPARE(m_transport->cancelled(), (std::vector<QAV::ITransport::RequestId>{query.id, operation.id}));
    }

    void aRequestThatIsOverdueBeforeItsTransportHasTakenItIsCancelledThen()
    {
        m_centre->setDeadline(20ms);
        m_transport->onQuery = [&](const auto&, const auto&) { QVERIFY(m_replies.waitFor(1)); };
        ask();
        QVERIFY(m_replies.first().error.code() == EErrorCode::DeadlineExceeded);
        QTRY_COMPARE(m_transport->cancelled().size(), std::size_t(1));
    }

    void anOverdueOperationSaysThatNobodyKnowsWhetherItWasCarriedOut()
    {
        m_centre->setDeadline("深圳", 1000ms);
        m_centre->setDeadline(1h);
        m_client->operateData_async(addOf(group(-1, "甲")), m_replies.onOperate(), 0);
        QVERIFY(m_replies.first().error.code() == EErrorCode::DeadlineExceeded);
        QCOMPARE(text(m_replies.first().error), QString("分系统“深圳”未应答：超过 1 秒，未知是否已执行"));
    }

    void aDeadlineBeyondTheClocksRangeMeansForEver()
    {
        m_centre->setDeadline(std::chrono::milliseconds::max());
        ask();
        m_transport->takeQuery().handler(replyWith({}));
        QVERIFY(m_replies.first().error.isSuccess());
    }

    void aTransportThatThrowsCostsAnErrorAndNoCrash()
    {
        m_transport->onQuery = [](const auto&, const auto&) { throw std::runtime_error("线路断开"); };
        m_transport->onOperate = [](const auto&, const auto&) { throw 5; };
        CReplyCollector queries;
        m_client->queryData_async(groupQuery(), queries.onQuery(), 0);
        QVERIFY(queries.first().error.code() == EErrorCode::Failed);
        QCOMPARE(text(queries.first().error), QString("分系统“深圳”通信故障：线路断开"));

        CReplyCollector operations;
        m_client->operateData_async(addOf(group(-1, "甲")), operations.onOperate(), 0);
        QVERIFY(text(operations.first().error).contains("未知是否已执行"));
    }

    void aTransportThatAnswersAndThenThrowsCountsAsAnswered()
    {
        m_transport->onQuery = [](const auto&, const auto& handler) {
            handler(replyWith({group(1, "甲")}));
            throw std::runtime_error("too late");
        };
        ask();
        m_centre->shutDown();
        QCOMPARE(m_replies.count(), std::size_t(1));
        QVERIFY(m_replies.first().error.isSuccess());
    }

    void aSynchronousAnswerDoesNotRunTheCallbackInsideTheCall()
    {
        m_transport->onQuery = [](const auto&, const auto& handler) { handler(replyWith({})); };
        ask();
        QVERIFY(m_replies.first().thread != std::this_thread::get_id());
    }

    void theRecordIsCopiedWhenTheOperationIsSent()
    {
        const auto record = group(5, "甲");
        record->accounts.push_back(boost::make_shared<nvservice::CAccountInfo>());
        record->accounts[0]->accountId = "000123";
        record->setSystemTag("SZ");
        record->setRevision(42);
        const auto request = addOf(record);
        m_client->operateData_async(request, m_replies.onOperate(), 0);
        record->groupName = "乙";
        record->accounts[0]->accountId = "changed";
        request->dataType = 1;

        const auto operation = m_transport->takeOperation();
        const auto sent = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(operation.request.data);
        QVERIFY(sent && sent != record);
        QCOMPARE(sent->groupName, std::string("甲"));
        QCOMPARE(sent->accounts.at(0)->accountId, std::string("000123"));
        QCOMPARE(sent->getSystemTag(), std::string("SZ"));
        QCOMPARE(sent->revision(), std::int64_t(42));
        QCOMPARE(operation.request.dataType, 625);
    }

    void anOperationWithoutAnIdGetsAFreshOneAndAGivenIdIsKept()
    {
        const auto request = addOf(group(5, "甲"));
        m_client->operateData_async(request, m_replies.onOperate(), 0);
        m_client->operateData_async(request, m_replies.onOperate(), 0);
        request->operationId = "mine";
        m_client->operateData_async(request, m_replies.onOperate(), 0);
        const std::string first = m_transport->takeOperation().request.operationId;
        const std::string second = m_transport->takeOperation().request.operationId;
        QCOMPARE(first.size(), std::size_t(36));
        QVERIFY(first != second);
        QCOMPARE(m_transport->takeOperation().request.operationId, std::string("mine"));
    }

    void theResultDocumentOfAnOperationIsPassedOn()
    {
        m_client->operateData_async(addOf(group(5, "甲")), m_replies.onOperate(), 0);
        QAV::ITransport::Reply reply;
        reply.document = BSON("reason" << "closed");
        m_transport->takeOperation().handler(reply);
        QVERIFY(m_replies.first().error.isSuccess());
        QCOMPARE(std::string(m_replies.first().document.getField("reason").str()), std::string("closed"));
    }

    void requestsWithoutContentAreRefused()
    {
        m_client->queryData_async(nullptr, m_replies.onQuery(), 0);
        m_client->operateData_async(nullptr, m_replies.onOperate(), 0);
        m_client->operateData_async(addOf(nullptr), m_replies.onOperate(), 0);
        m_centre->queryData_async(nullptr, m_replies.onQuery(), 0);
        QVERIFY(m_replies.waitFor(4));
        for (const CollectedReply& reply : m_replies.replies()) {
            QVERIFY(reply.error.code() == EErrorCode::InvalidValue);
        }
    }

    void aMissingCallbackIsNoReasonNotToSend()
    {
        m_client->queryData_async(groupQuery(), QAV::QueryCallback(), 0);
        m_transport->takeQuery().handler(replyWith({}));
        ask();
        m_transport->takeQuery().handler(replyWith({}));
        QVERIFY(m_replies.waitFor(1));
    }

    void aCallbackThatThrowsIsLoggedAndTheNextOneComes()
    {
        m_log->expect("A callback threw: panel is broken");
        m_log->expect("not an exception");
        m_transport->onQuery = [](const auto&, const auto& handler) { handler(replyWith({})); };
        m_client->queryData_async(
            groupQuery(),
            [](const auto&, const auto&, int, const auto&) { throw std::runtime_error("panel is broken"); }, 0);
        m_client->queryData_async(groupQuery(), [](const auto&, const auto&, int, const auto&) { throw 1; }, 0);
        ask();
        QVERIFY(m_replies.first().error.isSuccess());
    }

    void aCallbackMaySendTheNextRequest()
    {
        m_transport->onQuery = [](const auto&, const auto& handler) { handler(replyWith({})); };
        m_client->queryData_async(groupQuery(), [&](const auto&, const auto&, int, const auto&) { ask(); }, 0);
        QVERIFY(m_replies.first().error.isSuccess());
    }

    void aLogInIsAnsweredWithTheUserOrAnError()
    {
        m_transport->onLogIn = [](const std::string& user, const std::string& password, const auto& handler) {
            if (password != "right") {
                handler(utils::NVError(EErrorCode::NotLoggedIn, "用户名或密码错误"), nullptr);
                return;
            }
            auto info = boost::make_shared<nvservice::CUserInfo>();
            info->userId = user;
            handler(utils::NVError(), info);
        };
        CReplyCollector good;
        m_client->logIn_async("admin", "right", good.onLogIn());
        const auto user = boost::dynamic_pointer_cast<nvservice::CUserInfo>(good.first().records.at(0));
        QVERIFY(user);
        QCOMPARE(user->userId, std::string("admin"));
        QCOMPARE(user->getSystemTag(), std::string("SZ"));

        CReplyCollector bad;
        m_client->logIn_async("admin", "wrong", bad.onLogIn());
        QVERIFY(bad.first().error.code() == EErrorCode::NotLoggedIn);
        QVERIFY(!bad.first().records.at(0));
    }
};

TEST_WITHOUT_WIDGETS(ServerClientTest)
#include "tst_server_client.moc"
