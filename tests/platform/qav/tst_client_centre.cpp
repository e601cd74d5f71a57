// SPDX-License-Identifier: Apache-2.0
#include "support/BsonMacros.h"
#include "support/TestProgram.h"
#include "support/UnexpectedLog.h"
#include "support/qav/CFakeTransport.h"
#include "support/qav/CReplyCollector.h"
#include "support/records/Requests.h"

#include <QAV/CKolmClientCenter.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/DataType.h>

#include <boost/make_shared.hpp>

#include <atomic>
#include <future>
#include <stdexcept>

using namespace support;
using namespace std::chrono_literals;
using utils::EErrorCode;

/// All servers at once: one answer, merged in the order of the names.
class CentreTest : public QObject
{
    Q_OBJECT

    static boost::shared_ptr<nvservice::CKolmQueryDataReq> query(int dataType)
    {
        return support::shared(support::queryOf(dataType));
    }

    static boost::shared_ptr<nvservice::CAccountGroup> group(int id)
    {
        auto record = boost::make_shared<nvservice::CAccountGroup>();
        record->groupId = id;
        return record;
    }

    static boost::shared_ptr<nvservice::CKolmProductsResp> products(const std::vector<int>& ids)
    {
        auto resp = boost::make_shared<nvservice::CKolmProductsResp>();
        for (const int id : ids) {
            auto product = boost::make_shared<nvservice::CProductInfo>();
            product->productId = id;
            resp->products.push_back(product);
        }
        return resp;
    }

    static QString text(const utils::NVError& error) { return QString::fromStdString(error.errorMsg()); }

private slots:
    void init()
    {
        m_replies = {};
        m_centre = std::make_unique<QAV::CKolmClientCenter>();
        m_a = boost::make_shared<CFakeTransport>();
        m_b = boost::make_shared<CFakeTransport>();
        QVERIFY(m_centre->addServer("B", "tag-b", m_b).isSuccess());
        QVERIFY(m_centre->addServer("A", "tag-a", m_a).isSuccess());
    }

    void cleanup()
    {
        m_centre.reset();
        m_a.reset();
        m_b.reset();
    }

    void repliesInEitherOrderAreMergedInTheOrderOfTheNames_data()
    {
        const support::DataRows<bool> row("bFirst");
        row("A answers first", false);
        row("B answers first", true);
    }
    void repliesInEitherOrderAreMergedInTheOrderOfTheNames()
    {
        QFETCH(bool, bFirst);
        ask(625);
        const auto a = m_a->takeQuery();
        const auto b = m_b->takeQuery();
        const auto answerA = [&] { a.handler(replyWith({group(1), group(2)})); };
        const auto answerB = [&] { b.handler(replyWith({group(1)})); };
        if (bFirst) {
            answerB();
            answerA();
        } else {
            answerA();
            answerB();
        }
        const CollectedReply got = m_replies.first();
        QVERIFY(got.error.isSuccess());
        QCOMPARE(got.totalCount, 3);
        QCOMPARE(got.records.size(), std::size_t(3));
        QCOMPARE(got.records[0]->getKey(), std::string("tag-a|1"));
        QCOMPARE(got.records[1]->getKey(), std::string("tag-a|2"));
        QCOMPARE(got.records[2]->getKey(), std::string("tag-b|1"));
        m_centre->shutDown();
        QCOMPARE(m_replies.count(), std::size_t(1));
    }

    void nothingIsDeliveredWhileAServerHasNotAnswered()
    {
        CReplyCollector merged;
        m_centre->queryData_async(query(625), merged.onQuery(), 0);
        m_a->takeQuery().handler(replyWith({group(1)}));
        CReplyCollector behind; // queued behind the reply of A on the one service thread
        m_centre->getClientByName("none")->queryData_async(query(625), behind.onQuery(), 0);
        QVERIFY(behind.waitFor(1));
        QCOMPARE(merged.count(), std::size_t(0));
        m_b->takeQuery().handler(replyWith({}));
        QVERIFY(merged.waitFor(1));
    }

    void aFailingServerIsNamedAndTheOthersRecordsAreDelivered()
    {
        ask(625);
        m_b->takeQuery().handler(replyWithError(EErrorCode::StorageFailure, "数据库故障"));
        m_a->takeQuery().handler(replyWith({group(1)}));
        const CollectedReply got = m_replies.first();
        QVERIFY(got.error.code() == EErrorCode::StorageFailure);
        QCOMPARE(text(got.error), QString("分系统“B”：数据库故障"));
        QCOMPARE(got.records.size(), std::size_t(1));
        QCOMPARE(got.totalCount, 1);
    }

    void severalFailingServersAreAllNamedUnderTheCodeOfTheFirst()
    {
        m_centre->setDeadline("A", 40ms);
        ask(625);
        m_b->takeQuery().handler(replyWithError(EErrorCode::PermissionDenied, "没有权限"));
        const CollectedReply got = m_replies.first();
        QVERIFY(got.error.code() == EErrorCode::DeadlineExceeded);
        QCOMPARE(text(got.error), QString("分系统“A”未应答：超过 40 毫秒；分系统“B”：没有权限"));
    }

    void aDeadServerCostsItsOwnDeadlineAndDelaysNobodyElse()
    {
        m_centre->setDeadline("A", 200ms);
        m_centre->setDeadline("B", 1h);
        m_b->onQuery = [](const auto&, const auto& handler) { handler(replyWith({group(7)})); };
        CReplyCollector all;
        CReplyCollector onlyB;
        const auto start = std::chrono::steady_clock::now();
        m_centre->queryData_async(query(625), all.onQuery(), 0);
        m_centre->getClientByName("B")->queryData_async(query(625), onlyB.onQuery(), 0);
        QVERIFY(onlyB.waitFor(1));
        QCOMPARE(all.count(), std::size_t(0));
        const CollectedReply got = all.first();
        QVERIFY(std::chrono::steady_clock::now() - start >= 200ms);
        QVERIFY(got.error.code() == EErrorCode::DeadlineExceeded);
        QCOMPARE(got.records.size(), std::size_t(1));
        QCOMPARE(got.records[0]->getKey(), std::string("tag-b|7"));
    }

    void removingOneServerLetsTheQueryEndWithTheOthers()
    {
        ask(625);
        m_b->takeQuery().handler(replyWith({group(1)}));
        m_centre->removeServer("A");
        const CollectedReply got = m_replies.first();
        QVERIFY(got.error.code() == EErrorCode::Cancelled);
        QCOMPARE(got.records.size(), std::size_t(1));
    }

    void aThrowingServerDoesNotKeepTheQueryFromTheOthers()
    {
        m_a->onQuery = [](const auto&, const auto&) { throw std::runtime_error("broken"); };
        ask(625);
        m_b->takeQuery().handler(replyWith({group(1)}));
        const CollectedReply got = m_replies.first();
        QVERIFY(got.error.code() == EErrorCode::Failed);
        QCOMPARE(got.records.size(), std::size_t(1));
    }

    void productsOfAllServersComeAsOneRecordWithTheirOwnTags()
    {
        ask(nvservice::DataType::Product);
        m_b->takeQuery().handler(replyWith({products({7})}));
        m_a->takeQuery().handler(replyWith({products({1, 2}), products({3})}));
        const CollectedReply got = m_replies.first();
        QCOMPARE(got.records.size(), std::size_t(1));
        const auto resp = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(got.records[0]);
        QVERIFY(resp);
        std::vector<std::pair<int, std::string>> seen;
        for (const nvservice::IDataPtr& record : resp->products) {
            const auto product = boost::dynamic_pointer_cast<nvservice::CProductInfo>(record);
            seen.emplace_back(product->productId, product->getSystemTag());
        }
        const std::vector<std::pair<int, std::string>> expected{{1, "tag-a"}, {2, "tag-a"}, {3, "tag-a"}, {7, "tag-b"}};
        QVERIFY(seen == expected);
    }

    void aServerWithoutAProductRecordChangesNothingInTheOthers()
    {
        ask(nvservice::DataType::Product);
        m_a->takeQuery().handler(replyWithError(EErrorCode::Failed, "x"));
        m_b->takeQuery().handler(replyWith({products({7})}));
        const auto resp = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(m_replies.first().records.at(0));
        QVERIFY(resp);
        QCOMPARE(resp->products.size(), std::size_t(1));
    }

    void extraDocumentsComeUnderTheServersNames()
    {
        ask(625);
        auto reply = replyWith({});
        reply.document = BSON("n" << 5);
        m_b->takeQuery().handler(reply);
        m_a->takeQuery().handler(replyWith({}));
        const bson::BSONObj document = m_replies.first().document;
        QCOMPARE(document.nFields(), 1);
        QCOMPARE(document.getObjectField("B").getField("n").numberLong(), 5);
    }

    void withoutServersAQueryIsAnsweredWithNotConnected()
    {
        m_centre->removeServer("A");
        m_centre->removeServer("B");
        ask(625);
        QVERIFY(m_replies.first().error.code() == EErrorCode::NotConnected);
        QCOMPARE(text(m_replies.first().error), QString("没有已连接的分系统"));
        QVERIFY(m_replies.first().thread != std::this_thread::get_id());
        m_centre->shutDown();
        QCOMPARE(m_replies.count(), std::size_t(1));
    }

    void namesAndTagsAreTranslatedBothWays()
    {
        QCOMPARE(m_centre->getServerNameBySystemTag("tag-a"), std::string("A"));
        QCOMPARE(m_centre->getSystemTagByServerName("B"), std::string("tag-b"));
        QCOMPARE(m_centre->getServerNameBySystemTag("?"), std::string());
        QCOMPARE(m_centre->getSystemTagByServerName("?"), std::string());
        QCOMPARE(m_centre->getClientBySystemTag("tag-a")->serverName(), std::string("A"));
        QCOMPARE(m_centre->getClientByName("B")->systemTag(), std::string("tag-b"));
    }

    void anEmptyNameMeansTheServerThatTheUserWorksWith()
    {
        const auto expectServer = [this](const std::string& name, const std::string& tag) {
            QCOMPARE(m_centre->getSystemTagByServerName(""), tag);
            QCOMPARE(m_centre->getClientByName("")->serverName(), name);
            QCOMPARE(m_centre->getClientByName("")->systemTag(), tag);
        };
        expectServer("", "");
        m_centre->setCurrentServer("B");
        expectServer("B", "tag-b");
        m_centre->removeServer("B");
        expectServer("A", "tag-a");
        m_centre->removeServer("A");
        expectServer("", "");
    }

    void theClientsAreListedByNameAndTwoMakeAMultiServerInstallation()
    {
        QVERIFY(m_centre->isMultiServers());
        const auto clients = m_centre->getAllClients();
        QCOMPARE(clients.size(), std::size_t(2));
        QCOMPARE(clients.begin()->first, std::string("A"));
        QCOMPARE(clients.begin()->second->systemTag(), std::string("tag-a"));
        m_centre->removeServer("A");
        QVERIFY(!m_centre->isMultiServers());
        QCOMPARE(m_centre->getServerNameBySystemTag("tag-a"), std::string());
    }

    void aServerThatCannotBeToldApartIsRefused()
    {
        const auto transport = boost::make_shared<CFakeTransport>();
        QVERIFY(m_centre->addServer("A", "tag-c", transport).code() == EErrorCode::Duplicate);
        QVERIFY(m_centre->addServer("C", "tag-a", transport).code() == EErrorCode::Duplicate);
        QVERIFY(m_centre->addServer("", "tag-c", transport).code() == EErrorCode::InvalidValue);
        QVERIFY(m_centre->addServer("C", "", transport).code() == EErrorCode::InvalidValue);
        QVERIFY(m_centre->addServer("C", "tag-c", nullptr).code() == EErrorCode::InvalidValue);
        QCOMPARE(m_centre->getAllClients().size(), std::size_t(2));
    }

    void connectionStatesAreReportedFromTheStartAndUntilTheEnd()
    {
        m_b->setState(QAV::EConnectionState::Connecting);
        std::vector<std::pair<std::string, QAV::EConnectionState>> heard;
        std::promise<void> three;
        auto subscription = m_centre->listenToStates([&](const std::string& name, QAV::EConnectionState state) {
            heard.emplace_back(name, state);
            if (heard.size() == 3) {
                three.set_value();
            }
        });
        m_a->setState(QAV::EConnectionState::Disconnected);
        QVERIFY(m_centre->getClientByName("A")->state() == QAV::EConnectionState::Disconnected);
        three.get_future().wait();
        subscription.reset();
        m_a->setState(QAV::EConnectionState::Connected);
        m_centre->shutDown();
        const std::vector<std::pair<std::string, QAV::EConnectionState>> expected{
            {"A", QAV::EConnectionState::Connected},
            {"B", QAV::EConnectionState::Connecting},
            {"A", QAV::EConnectionState::Disconnected}};
        QVERIFY(heard == expected);
    }

    void everyListenerHearsTheStatesUntilItsOwnEnd()
    {
        std::promise<void> firstHeardBoth;
        std::promise<void> secondHeardChange;
        int first = 0;
        int second = 0;
        auto firstSubscription = m_centre->listenToStates([&](const std::string&, QAV::EConnectionState) {
            if (++first == 2) {
                firstHeardBoth.set_value();
            }
        });
        firstHeardBoth.get_future().wait();
        auto secondSubscription = m_centre->listenToStates([&](const std::string&, QAV::EConnectionState) {
            if (++second == 3) {
                secondHeardChange.set_value();
            }
        });
        firstSubscription.reset();
        m_a->setState(QAV::EConnectionState::Disconnected);
        secondHeardChange.get_future().wait();
        secondSubscription.reset();
        QCOMPARE(first, 2); // not the states that a later listener is told first, and nothing after its end
        QCOMPARE(second, 3);
    }

    void aListenerMayEndItselfAndAnother()
    {
        std::promise<void> done;
        QAV::CKolmClientCenter::StateSubscription first;
        QAV::CKolmClientCenter::StateSubscription second;
        std::atomic<bool> isReady{false};
        int heardBySecond = 0;
        first = m_centre->listenToStates([&](const std::string&, QAV::EConnectionState) {
            if (isReady) {
                first.reset();
                second.reset();
                done.set_value();
            }
        });
        second = m_centre->listenToStates([&](const std::string&, QAV::EConnectionState) { ++heardBySecond; });
        m_centre->cancelRequests(); // returns when the service thread has done what it was asked before
        isReady = true;
        m_a->setState(QAV::EConnectionState::Disconnected);
        done.get_future().wait();
        m_b->setState(QAV::EConnectionState::Disconnected);
        m_centre->shutDown();
        QCOMPARE(heardBySecond, 2);
    }

    void anExceptionOfAListenerIsLoggedAndTheOthersHear()
    {
        support::UnexpectedLog log;
        log.expect("A callback threw: listener is broken");
        const auto broken = m_centre->listenToStates(
            [](const std::string&, QAV::EConnectionState) { throw std::runtime_error("listener is broken"); });
        std::promise<void> heardBoth;
        int heard = 0;
        const auto other = m_centre->listenToStates([&](const std::string&, QAV::EConnectionState) {
            if (++heard == 2) {
                heardBoth.set_value();
            }
        });
        heardBoth.get_future().wait();
    }

    void aSubscriptionMayOutliveItsCentre()
    {
        const auto subscription = m_centre->listenToStates([](const std::string&, QAV::EConnectionState) {});
        m_centre.reset();
        QVERIFY(subscription);
    }

    void theProcessHasOneCentre()
    {
        QAV::CKolmClientCenter* const one = utils::CSingletonT<QAV::CKolmClientCenter>::instance();
        QVERIFY(one);
        QVERIFY(one == utils::CSingletonT<QAV::CKolmClientCenter>::instance());
    }

private:
    void ask(int dataType) { m_centre->queryData_async(query(dataType), m_replies.onQuery(), 0); }

    CReplyCollector m_replies;
    std::unique_ptr<QAV::CKolmClientCenter> m_centre;
    boost::shared_ptr<CFakeTransport> m_a;
    boost::shared_ptr<CFakeTransport> m_b;
};

TEST_WITHOUT_WIDGETS(CentreTest)
#include "tst_client_centre.moc"
