// SPDX-License-Identifier: Apache-2.0
#include "support/qav/CReplyCollector.h"
#include "support/qav/Client.h"
#include "support/records/Requests.h"
#include "support/service/RealService.h"

#include "workbench/CEmbeddedTransport.h"
#include "workbench/CInstallation.h"

#include "support/TestProgram.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/DataType.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <future>
#include <mutex>

using support::CollectedReply;
using support::CReplyCollector;
using utils::EErrorCode;

/// The client's requests against a real engine and a real database.
class EmbeddedTransportTest : public QObject
{
    Q_OBJECT

    static constexpr int Groups = 30;

    static boost::shared_ptr<nvservice::CKolmQueryDataReq> query(int dataType)
    {
        return support::shared(support::queryOf(dataType));
    }

    /// Logs in on every server.
    static bool logIn(const std::string& user, const std::string& password)
    {
        CReplyCollector replies;
        const auto clients = support::centre().getAllClients();
        for (const auto& [name, client] : clients) {
            client->logIn_async(user, password, replies.onLogIn());
        }
        if (!replies.waitFor(clients.size())) {
            return false;
        }
        const auto all = replies.replies();
        return std::all_of(all.begin(), all.end(), [](const CollectedReply& reply) { return reply.error.isSuccess(); });
    }

    static CollectedReply groups()
    {
        CReplyCollector replies;
        support::centre().queryData_async(query(nvservice::DataType::AccountGroup), replies.onQuery(), 0);
        return replies.first();
    }

    struct Heard {
        std::mutex mutex;
        std::vector<nvservice::CChangeInfoPtr> changes;

        /// Whether the group's change to this name was told, and whether it is this client's own.
        bool knows(const std::string& name, bool isOwn)
        {
            const std::lock_guard<std::mutex> lock(mutex);
            return std::any_of(changes.begin(), changes.end(), [&](const nvservice::CChangeInfoPtr& change) {
                return change->groupName == name && support::centre().isOwnChange(*change) == isOwn;
            });
        }
    };

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_installation = std::make_unique<workbench::CInstallation>();
        const utils::NVError error = m_installation->open(file(), {Groups, 240});
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
    }

    void cleanup()
    {
        m_installation.reset();
        support::centre().shutDown();
        m_folder.reset();
    }

    void changesOfThisClientAndOfOthersAreTold()
    {
        Heard heard;
        QVERIFY(logIn("admin", "admin123"));
        const auto subscription = support::centre().listenToChanges(
            [&](const std::string&, const std::vector<nvservice::CChangeInfoPtr>& changes, bool) {
                const std::lock_guard<std::mutex> lock(heard.mutex);
                heard.changes.insert(heard.changes.end(), changes.begin(), changes.end());
            });
        const auto renamed = [](const nvservice::IDataPtr& stored, const std::string& name) {
            const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(stored);
            group->groupName = name;
            return group;
        };
        const auto groupsNow = groups();
        QVERIFY(groupsNow.records.size() > 1);
        const nvservice::IDataPtr own = groupsNow.records[0];
        const nvservice::IDataPtr others = groupsNow.records[1];
        CReplyCollector replies;
        support::centre()
            .getClientBySystemTag(own->getSystemTag())
            ->operateData_async(
                support::shared(support::operationOn(nvservice::DataType::AccountGroup,
                                                     nvservice::EZvDataOperation::Modify, renamed(own, "本机修改"))),
                replies.onOperate());
        QVERIFY(replies.waitFor(1) && replies.first().error.isSuccess());
        QTRY_VERIFY(heard.knows("本机修改", true));
        const support::RealService elsewhere(file());
        for (const service::DataEnginePtr& engine : elsewhere.engines()) {
            if (engine->systemTag() == others->getSystemTag()) {
                const service::SessionPtr session = engine->logIn("admin", "admin123").session;
                const service::Reply reply = engine->operate(
                    session, support::operationOn(nvservice::DataType::AccountGroup,
                                                  nvservice::EZvDataOperation::Modify, renamed(others, "他人修改")));
                QVERIFY2(reply.error.isSuccess(), reply.error.errorMsg().c_str());
            }
        }
        QTRY_VERIFY(heard.knows("他人修改", false));
    }

    void aNewDatabaseHasServersAndEachIsConnected()
    {
        const auto clients = support::centre().getAllClients();
        QCOMPARE(clients.size(), std::size_t(3));
        for (const auto& [name, client] : clients) {
            QVERIFY(client->state() == QAV::EConnectionState::Connected);
            QVERIFY(!client->systemTag().empty());
        }
    }

    void theUserComesWithHisRights()
    {
        CReplyCollector replies;
        support::centre().getAllClients().begin()->second->logIn_async("admin", "admin123", replies.onLogIn());
        QVERIFY2(replies.first().error.isSuccess(), replies.first().error.errorMsg().c_str());
        const auto user = boost::dynamic_pointer_cast<nvservice::CUserInfo>(replies.first().records.at(0));
        QVERIFY(user);
        QCOMPARE(user->userId, std::string("admin"));
        QVERIFY(user->rights.count(10717) == 1);
        QVERIFY(!user->getSystemTag().empty());
    }

    void aWrongPasswordIsRefusedAndSoIsWhatFollows()
    {
        CReplyCollector replies;
        const auto client = support::centre().getAllClients().begin()->second;
        client->logIn_async("admin", "wrong", replies.onLogIn());
        QVERIFY(replies.first().error.code() == EErrorCode::NotLoggedIn);
        QVERIFY(!replies.first().error.errorMsg().empty());
        QVERIFY(!replies.first().records.at(0));
        QVERIFY(groups().error.code() == EErrorCode::NotLoggedIn);
    }

    void allServersAnswerAQueryAsOne()
    {
        QVERIFY(logIn("admin", "admin123"));
        const CollectedReply reply = groups();
        QVERIFY2(reply.error.isSuccess(), reply.error.errorMsg().c_str());
        QCOMPARE(reply.records.size(), std::size_t(Groups));
        QCOMPARE(reply.totalCount, Groups);
        std::set<std::string> servers;
        for (const nvservice::IDataPtr& record : reply.records) {
            servers.insert(support::centre().getServerNameBySystemTag(record->getSystemTag()));
        }
        QCOMPARE(servers.size(), std::size_t(3));
        QVERIFY(servers.count("") == 0);
    }

    void productsOfAllServersComeAsOneRecord()
    {
        QVERIFY(logIn("admin", "admin123"));
        CReplyCollector replies;
        support::centre().queryData_async(query(nvservice::DataType::Product), replies.onQuery(), 0);
        QVERIFY(replies.first().error.isSuccess());
        QCOMPARE(replies.first().records.size(), std::size_t(1));
        const auto resp = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(replies.first().records[0]);
        QVERIFY(resp);
        std::set<std::string> tags;
        for (const nvservice::IDataPtr& product : resp->products) {
            tags.insert(product->getSystemTag());
        }
        QCOMPARE(tags.size(), std::size_t(3));
    }

    void aChangedGroupIsThereInTheNextQueryAndAfterARestart()
    {
        QVERIFY(logIn("admin", "admin123"));
        const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(groups().records.at(0));
        group->groupName = "改名后的组";
        const auto request = support::shared(
            support::operationOn(nvservice::DataType::AccountGroup, nvservice::EZvDataOperation::Modify, group));
        CReplyCollector replies;
        support::centre()
            .getClientBySystemTag(group->getSystemTag())
            ->operateData_async(request, replies.onOperate(), 0);
        QVERIFY2(replies.first().error.isSuccess(), replies.first().error.errorMsg().c_str());
        QVERIFY(replies.first().document.isEmpty());

        m_installation.reset();
        QVERIFY(support::centre().getAllClients().empty());
        m_installation = std::make_unique<workbench::CInstallation>();
        QVERIFY(m_installation->open(file(), {}).isSuccess());
        QVERIFY(logIn("admin", "admin123"));
        const auto records = groups().records;
        QCOMPARE(records.size(), std::size_t(Groups));
        QVERIFY(std::any_of(records.begin(), records.end(), [&](const nvservice::IDataPtr& record) {
            return record->getKey() == group->getKey() &&
                   static_cast<const nvservice::CAccountGroup&>(*record).groupName == "改名后的组";
        }));
    }

    void requestsThatWaitWhenTheClientClosesAreEachAnsweredOnce()
    {
        QVERIFY(logIn("admin", "admin123"));
        CReplyCollector replies;
        for (int i = 0; i < 200; ++i) {
            support::centre().queryData_async(query(nvservice::DataType::AccountGroup), replies.onQuery(), 0);
        }
        m_installation.reset();
        support::centre().shutDown();
        QCOMPARE(replies.count(), std::size_t(200));
    }

    void aRequestThatIsCancelledBeforeItBeginsIsNotCarriedOut()
    {
        workbench::CEmbeddedTransport transport(support::RealService(file()).engines().front());
        std::promise<void> asked;
        std::promise<utils::NVError> last;
        bool cancelledCame = false;
        transport.logIn("admin", "admin123", [&](const auto&, const auto&) { asked.get_future().wait(); });
        const auto cancelled =
            transport.logIn("admin", "wrong", [&](const auto&, const auto&) { cancelledCame = true; });
        transport.query(*query(nvservice::DataType::AccountGroup),
                        [&](const QAV::ITransport::Reply& reply) { last.set_value(reply.error); });
        transport.cancel(cancelled);
        asked.set_value();
        const utils::NVError error = last.get_future().get();
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str()); // the refused log-in would have logged out
        QVERIFY(!cancelledCame);
    }

    /// A check may take half a minute.
    void aCheckUnderWayHoldsNobodyUpAndEndsWhenItIsCancelled()
    {
        for (const bool isDestroyed : {false, true}) {
            std::promise<void> began;
            std::promise<void> mayGoOn;
            std::atomic<bool> isChecking{false};
            service::StoreOptions options;
            options.faultHook = [&](const QString& sql) {
                // Only the check reads the configurations here.
                if (sql.contains("group_risk_config") && !isChecking.exchange(true)) {
                    began.set_value();
                    mayGoOn.get_future().wait();
                } else if (isDestroyed && isChecking) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(100)); // which gives the destructor time
                }
                return false;
            };
            auto transport = std::make_unique<workbench::CEmbeddedTransport>(
                support::RealService(file(), options).engines().front());
            std::promise<QAV::ITransport::Reply> checked;
            std::promise<QAV::ITransport::Reply> asked;
            transport->logIn("admin", "admin123", [](const auto&, const auto&) {});
            const auto check =
                transport->query(*query(nvservice::DataType::Finding),
                                 [&](QAV::ITransport::Reply reply) { checked.set_value(std::move(reply)); });
            began.get_future().wait();
            transport->query(*query(nvservice::DataType::Institution),
                             [&](QAV::ITransport::Reply reply) { asked.set_value(std::move(reply)); });
            QVERIFY(asked.get_future().get().error.isSuccess());
            std::thread ending;
            if (isDestroyed) {
                ending = std::thread([&] { transport.reset(); });
            } else {
                transport->cancel(check);
            }
            mayGoOn.set_value();
            const utils::NVError error = checked.get_future().get().error;
            if (ending.joinable()) {
                ending.join();
            }
            QVERIFY2(error.code() == EErrorCode::Cancelled, error.errorMsg().c_str());
        }
    }

    void severalThreadsMayAskAtOnce()
    {
        QVERIFY(logIn("admin", "admin123"));
        CReplyCollector replies;
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&] {
                for (int i = 0; i < 10; ++i) {
                    support::centre().queryData_async(query(nvservice::DataType::AccountGroup), replies.onQuery(), 0);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QVERIFY(replies.waitFor(40));
        for (const CollectedReply& reply : replies.replies()) {
            QVERIFY(reply.error.isSuccess());
            QCOMPARE(reply.records.size(), std::size_t(Groups));
        }
    }

    void aFileThatIsNoDatabaseIsRefusedAndLeftAsItWas()
    {
        const QString path = m_folder->filePath("text.db");
        QFile text(path);
        QVERIFY(text.open(QIODevice::WriteOnly));
        const QByteArray content =
            "This is no database, but it is long enough to look like one. " + QByteArray(4096, 'x');
        text.write(content);
        text.close();
        workbench::CInstallation other;
        const utils::NVError error = other.open(path, {});
        QVERIFY(!error.isSuccess());
        QVERIFY(text.open(QIODevice::ReadOnly));
        QCOMPARE(text.readAll(), content);
    }

    void aFolderThatCannotBeMadeIsReported()
    {
        workbench::CInstallation other;
        const utils::NVError error = other.open("/proc/none/workbench.db", {});
        QVERIFY(error.code() == EErrorCode::StorageFailure);
        QVERIFY(QString::fromStdString(error.errorMsg()).contains("/proc/none"));
    }

    void aDatabaseThatCannotBeFilledIsRemovedAgain()
    {
        workbench::CInstallation other;
        const QString path = m_folder->filePath("few.db");
        QVERIFY(!other.open(path, {10, 3}).isSuccess()); // too few accounts
        QVERIFY(!QFileInfo::exists(path));
    }

private:
    QString file() const { return m_folder->filePath("data/workbench.db"); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<workbench::CInstallation> m_installation;
};

TEST_WITHOUT_WIDGETS(EmbeddedTransportTest)
#include "tst_workbench_embedded_transport.moc"
