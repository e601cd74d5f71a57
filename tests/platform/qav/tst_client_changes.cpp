// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "support/qav/CFakeTransport.h"
#include "support/qav/CReplyCollector.h"
#include "support/records/Requests.h"

#include <QAV/CKolmClientCenter.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/DataType.h>

#include <boost/make_shared.hpp>

using namespace support;
namespace DataType = nvservice::DataType;

/// The centre tells its listeners what changes on the servers.
class ClientChangesTest : public QObject
{
    Q_OBJECT

    static nvservice::CChangeInfoPtr change(int groupId, const std::string& operationId = {})
    {
        auto record = boost::make_shared<nvservice::CChangeInfo>();
        record->dataType = DataType::AccountGroup;
        record->groupId = groupId;
        record->operationId = operationId;
        return record;
    }

    /// What a listener has heard, as text. Read it after `settle`.
    auto into(QStringList& heard)
    {
        return [&heard](const std::string& server, const std::vector<nvservice::CChangeInfoPtr>& changes,
                        bool isComplete) {
            QString text = QString::fromStdString(server) + ':';
            for (const nvservice::CChangeInfoPtr& each : changes) {
                text += QString(" %1").arg(each->groupId);
            }
            heard << (isComplete ? text : text + " everything");
        };
    }

    /// Returns when the service thread has done what it was asked before.
    void settle() { m_centre->cancelRequests(); }

private slots:
    void init()
    {
        m_centre = std::make_unique<QAV::CKolmClientCenter>();
        m_a = boost::make_shared<CFakeTransport>();
        QVERIFY(m_centre->addServer("A", "tag-a", m_a).isSuccess());
    }

    void cleanup()
    {
        m_centre.reset();
        m_a.reset();
    }

    void everyListenerHearsOfEveryServerUntilItsOwnEnd()
    {
        QStringList first;
        QStringList second;
        auto firstSubscription = m_centre->listenToChanges(into(first));
        const auto secondSubscription = m_centre->listenToChanges(into(second));
        const auto b = boost::make_shared<CFakeTransport>();
        QVERIFY(m_centre->addServer("B", "tag-b", b).isSuccess());
        m_a->tellChanges({{change(1), change(2)}, true});
        b->tellChanges({{}, false});
        settle();
        firstSubscription.reset();
        m_a->tellChanges({{change(3)}, true});
        settle();
        QCOMPARE(first, QStringList({"A: 1 2", "B: everything"}));
        QCOMPARE(second, QStringList({"A: 1 2", "B: everything", "A: 3"}));
    }

    void aServerIsListenedToFromTheFirstListenerOn()
    {
        QVERIFY(!m_a->isListenedTo());
        QStringList heard;
        const auto subscription = m_centre->listenToChanges(into(heard));
        QVERIFY(m_a->isListenedTo());
    }

    void aServerThatWasRemovedTellsNothing()
    {
        QStringList heard;
        const auto subscription = m_centre->listenToChanges(into(heard));
        m_a->tellChanges({{change(1)}, true});
        settle();
        m_centre->removeServer("A");
        QVERIFY(!m_a->isListenedTo());
        m_a->tellChanges({{change(2)}, true});
        settle();
        QCOMPARE(heard, QStringList({"A: 1"}));
    }

    void aListenerMayEndItself()
    {
        int heard = 0;
        QAV::CKolmClientCenter::ChangeSubscription subscription;
        subscription =
            m_centre->listenToChanges([&](const std::string&, const std::vector<nvservice::CChangeInfoPtr>&, bool) {
                ++heard;
                subscription.reset();
            });
        m_a->tellChanges({{change(1)}, true});
        m_a->tellChanges({{change(2)}, true});
        settle();
        QCOMPARE(heard, 1);
    }

    void theChangesOfThisProcessAreKnownByTheirOperations()
    {
        QVERIFY(!m_centre->isOwnChange(*change(1)));
        QVERIFY(!m_centre->isOwnChange(*change(1, "of another client")));
        const std::string own = operate("own");
        QVERIFY(m_centre->isOwnChange(*change(1, own)));
        QVERIFY(m_centre->isOwnChange(*change(1, operate({}))));
        QVERIFY(!m_centre->isOwnChange(*change(1)));
    }

    void onlyTheLastOperationsAreKnown()
    {
        operate("first");
        operate("second");
        for (int i = 2; i <= 4096; ++i) {
            operate(std::to_string(i));
        }
        QVERIFY(!m_centre->isOwnChange(*change(1, "first")));
        QVERIFY(m_centre->isOwnChange(*change(1, "second")));
    }

private:
    /// Sends an operation and returns its id.
    std::string operate(const std::string& id)
    {
        m_centre->getClientByName("A")->operateData_async(
            shared(operationOn(DataType::AccountGroup, nvservice::EZvDataOperation::Add,
                               boost::make_shared<nvservice::CAccountGroup>(), id)),
            {});
        const CFakeTransport::Operation sent = m_a->takeOperation();
        sent.handler({});
        return sent.request.operationId;
    }

    std::unique_ptr<QAV::CKolmClientCenter> m_centre;
    boost::shared_ptr<CFakeTransport> m_a;
};

TEST_WITHOUT_WIDGETS(ClientChangesTest)
#include "tst_client_changes.moc"
