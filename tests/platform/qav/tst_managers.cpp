// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <QAV/CProductDataManager.h>
#include <QAV/CUserManager.h>
#include <QAV/IkolmDockableWidget.h>
#include <QAV/SdkVersion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/UserRight.h>

#include <boost/make_shared.hpp>

#include <atomic>
#include <thread>

using nvservice::UserRight::DeleteAccountGroup;
using nvservice::UserRight::EditAccountGroup;

class ManagersTest : public QObject
{
    Q_OBJECT

    static boost::shared_ptr<nvservice::CAccountGroup> group(const std::string& tag, int id, const std::string& name)
    {
        auto record = boost::make_shared<nvservice::CAccountGroup>();
        record->setSystemTag(tag);
        record->groupId = id;
        record->groupName = name;
        return record;
    }

private slots:
    void withoutAUserEveryRightIsRefused()
    {
        const QAV::CUserManager users;
        QVERIFY(!users.getUserInfoPtr());
        QVERIFY(!users.checkUserAuth(EditAccountGroup));
        QVERIFY(!users.checkUserAuth(0));
    }

    void aUserHasHisOwnRightsUntilHeLogsOut()
    {
        QAV::CUserManager users;
        const auto user = boost::make_shared<nvservice::CUserInfo>();
        user->userId = "risk01";
        user->rights = {EditAccountGroup};
        users.setUserInfo(user);
        QVERIFY(users.checkUserAuth(EditAccountGroup));
        QVERIFY(!users.checkUserAuth(DeleteAccountGroup));
        QCOMPARE(users.getUserInfoPtr()->userId, std::string("risk01"));

        user->rights.insert(DeleteAccountGroup); // the caller's record is not the manager's
        QVERIFY(!users.checkUserAuth(DeleteAccountGroup));

        users.setUserInfo(nullptr);
        QVERIFY(!users.checkUserAuth(EditAccountGroup));
        QVERIFY(!users.getUserInfoPtr());
    }

    void rightsCanBeAskedForWhileUsersChange()
    {
        QAV::CUserManager users;
        std::atomic<bool> stop{false};
        std::thread asking([&] {
            while (!stop) {
                const auto user = users.getUserInfoPtr();
                if (user && user->userId != "u") {
                    std::abort();
                }
                users.checkUserAuth(EditAccountGroup);
            }
        });
        for (int i = 0; i < 2000; ++i) {
            const auto user = boost::make_shared<nvservice::CUserInfo>();
            user->userId = "u";
            users.setUserInfo(user);
            users.setUserInfo(nullptr);
        }
        stop = true;
        asking.join();
        QVERIFY(!users.getUserInfoPtr());
    }

    void groupsAreNamedByServerAndId()
    {
        QAV::CProductDataManager names;
        QCOMPARE(names.getAccountGroupName("a", 1), std::string());
        names.initAccountGroupNameMap(
            {group("a", 1, "甲"), nullptr, boost::make_shared<nvservice::CKolmProductsResp>(), group("b", 1, "乙")});
        QCOMPARE(names.getAccountGroupName("a", 1), std::string("甲"));
        QCOMPARE(names.getAccountGroupName("b", 1), std::string("乙"));
        QCOMPARE(names.getAccountGroupName("a", 2), std::string());
    }

    void namesAreFoundInWhateverOrderTheyCameAndTheLastOfAnIdCounts()
    {
        QAV::CProductDataManager names;
        names.initAccountGroupNameMap({group("a", 7, "丁"), group("a", -3, ""), group("a", 2, "丙"),
                                       group("a", 7, "戊"), group("a", 5, "己"), group("a", 2, "庚")});
        QCOMPARE(names.getAccountGroupName("a", 7), std::string("戊"));
        QCOMPARE(names.getAccountGroupName("a", 2), std::string("庚"));
        QCOMPARE(names.getAccountGroupName("a", 5), std::string("己"));
        for (const int unknown : {-4, -3, 0, 3, 6, 8}) {
            QCOMPARE(names.getAccountGroupName("a", unknown), std::string());
        }
    }

    void aNewListReplacesTheOldNames()
    {
        QAV::CProductDataManager names;
        names.initAccountGroupNameMap({group("a", 1, "甲")});
        names.initAccountGroupNameMap({group("a", 2, "丙")});
        QCOMPARE(names.getAccountGroupName("a", 1), std::string());
        QCOMPARE(names.getAccountGroupName("a", 2), std::string("丙"));
    }

    void aPanelKnowsItsNameAndTheServerItWasSwitchedTo()
    {
        QWidget parent;
        QAV::IkolmDockableWidget panel(false, "agr", &parent, true);
        QCOMPARE(panel.objectName(), QString("agr"));
        QCOMPARE(panel.parentWidget(), &parent);
        QVERIFY(panel.followsServer());
        QCOMPARE(panel.serverName(), QString());
        panel.switchSystem(1, "深圳");
        QCOMPARE(panel.serverName(), QString("深圳"));
        panel.onActive();
        QCOMPARE(panel.serverName(), QString("深圳"));
        panel.switchSystem(0, "");
        QCOMPARE(panel.serverName(), QString());
    }

    void theVersionTextOfTheSdkIsMadeOfItsNumbers()
    {
        QCOMPARE(QString(QAV_SDK_VERSION), QString("%1.%2").arg(QAV_SDK_VERSION_MAJOR).arg(QAV_SDK_VERSION_MINOR));
    }
};

TEST_WITH_WIDGETS(ManagersTest)
#include "tst_managers.moc"
