// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "support/qav/CFakeTransport.h"
#include "support/records/Requests.h"

#include <QAV/CKolmClientCenter.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/DataType.h>

#include <boost/make_shared.hpp>

#include <future>

using namespace support;
using namespace std::chrono_literals;
using utils::EErrorCode;

/// The requests that wait for their answers: they are listed, and can be cancelled one by one.
class ClientUnderWayTest : public QObject
{
    Q_OBJECT

    using Requests = std::vector<QAV::CKolmClientCenter::RequestUnderWay>;

    static auto query() { return support::shared(support::queryOf(nvservice::DataType::AccountGroup)); }

    std::future<EErrorCode> ask(const std::string& server)
    {
        const auto code = std::make_shared<std::promise<EErrorCode>>();
        m_centre->getClientByName(server)->queryData_async(
            query(),
            [code](const utils::NVError& error, const auto&, int, const auto&) { code->set_value(error.code()); });
        return code->get_future();
    }

private slots:
    void init()
    {
        m_centre = std::make_unique<QAV::CKolmClientCenter>();
        m_a = boost::make_shared<CFakeTransport>();
        m_b = boost::make_shared<CFakeTransport>();
        QVERIFY(m_centre->addServer("A", "a", m_a).isSuccess());
        QVERIFY(m_centre->addServer("B", "b", m_b).isSuccess());
    }

    void cleanup() { m_centre.reset(); }

    void everyRequestIsListedUntilItIsAnswered()
    {
        QVERIFY(m_centre->requestsUnderWay().empty());
        const auto before = std::chrono::steady_clock::now();
        std::future<EErrorCode> asked = ask("A");
        const auto operation = boost::make_shared<nvservice::COperateDataReq>();
        operation->dataType = nvservice::DataType::GroupRiskConfig;
        operation->data = boost::make_shared<nvservice::CAccountGroup>();
        m_centre->getClientByName("B")->operateData_async(operation, {});
        m_centre->getClientByName("B")->logIn_async("risk01", "x", {});
        const Requests listed = m_centre->requestsUnderWay();
        QCOMPARE(listed.size(), std::size_t(3));
        QCOMPARE(listed[0].serverName, std::string("A"));
        QCOMPARE(listed[0].dataType, nvservice::DataType::AccountGroup);
        QVERIFY(!listed[0].isOperation);
        QVERIFY(listed[0].since >= before && listed[0].since <= std::chrono::steady_clock::now());
        QCOMPARE(listed[1].serverName, std::string("B"));
        QCOMPARE(listed[1].dataType, nvservice::DataType::GroupRiskConfig);
        QVERIFY(listed[1].isOperation);
        QCOMPARE(listed[2].dataType, 0);
        m_a->takeQuery().handler(replyWith({}));
        QCOMPARE(asked.get(), EErrorCode::Success);
        QCOMPARE(m_centre->requestsUnderWay().size(), std::size_t(2));
    }

    void aQueryToAllServersCountsOncePerServer()
    {
        m_centre->queryData_async(query(), {});
        QCOMPARE(m_centre->requestsUnderWay().size(), std::size_t(2));
        m_b->takeQuery().handler(replyWith({}));
        QTRY_COMPARE(m_centre->requestsUnderWay().size(), std::size_t(1));
        QCOMPARE(m_centre->requestsUnderWay()[0].serverName, std::string("A"));
    }

    void oneRequestIsCancelledAndTheOthersRunOn()
    {
        std::future<EErrorCode> first = ask("A");
        std::future<EErrorCode> second = ask("A");
        const Requests listed = m_centre->requestsUnderWay();
        m_centre->cancelRequest(listed[0].number);
        QCOMPARE(first.get(), EErrorCode::Cancelled);
        QTRY_COMPARE(m_a->cancelled(), std::vector<QAV::ITransport::RequestId>{1});
        QCOMPARE(m_centre->requestsUnderWay().size(), std::size_t(1));
        m_centre->cancelRequest(listed[0].number); // for the second time
        const CFakeTransport::Query late = m_a->takeQuery();
        m_a->takeQuery().handler(replyWith({}));
        QCOMPARE(second.get(), EErrorCode::Success);
        late.handler(replyWith({})); // a promise that is set twice would throw, which the test would see in the log
        QCOMPARE(m_a->cancelled().size(), std::size_t(1));
    }

    void whatIsNotSentIsNotUnderWay()
    {
        QCOMPARE(ask("nobody").get(), EErrorCode::NotConnected);
        QVERIFY(m_centre->requestsUnderWay().empty());
        m_centre->setDeadline(1ms);
        QCOMPARE(ask("A").get(), EErrorCode::DeadlineExceeded);
        QVERIFY(m_centre->requestsUnderWay().empty());
        std::future<EErrorCode> removed = ask("B");
        m_centre->removeServer("B");
        removed.get();
        QVERIFY(m_centre->requestsUnderWay().empty());
    }

private:
    std::unique_ptr<QAV::CKolmClientCenter> m_centre;
    boost::shared_ptr<CFakeTransport> m_a;
    boost::shared_ptr<CFakeTransport> m_b;
};

TEST_WITHOUT_WIDGETS(ClientUnderWayTest)
#include "tst_client_under_way.moc"
