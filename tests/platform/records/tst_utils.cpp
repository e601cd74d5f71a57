// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <luawrapper/LuaModuleCtrl.h>
#include <utils/CSingletonTImpl.h>
#include <utils/NVError.h>

#include <atomic>
#include <thread>

using utils::EErrorCode;
using utils::NVError;

namespace
{

std::atomic<int> g_made{0};

class CSlowToMake
{
public:
    CSlowToMake()
    {
        ++g_made;
        std::this_thread::yield();
    }
};

} // namespace

class UtilsTest : public QObject
{
    Q_OBJECT

private slots:
    void anErrorIsASuccessWithoutTextUntilSaidOtherwise()
    {
        QVERIFY(NVError().isSuccess());
        QCOMPARE(NVError().errorMsg(), std::string());
        QCOMPARE(NVError().code(), EErrorCode::Success);
    }

    void aFailureCarriesCodeAndText()
    {
        const NVError error(EErrorCode::Conflict, "数据已被修改");
        QVERIFY(!error.isSuccess());
        QCOMPARE(error.code(), EErrorCode::Conflict);
        QCOMPARE(error.errorMsg(), std::string("数据已被修改"));
        NVError copy;
        copy = error;
        QCOMPARE(copy.errorMsg(), error.errorMsg());
    }

    void aFailureAlwaysHasATextAndASuccessNever()
    {
        QVERIFY(!NVError(EErrorCode::Failed, std::string()).errorMsg().empty());
        QVERIFY(NVError(EErrorCode::Success, "text").errorMsg().empty());
        QVERIFY(NVError(EErrorCode::Success, "text").isSuccess());
    }

    void manyThreadsGetOneObject()
    {
        std::vector<CSlowToMake*> seen(8);
        std::vector<std::thread> threads;
        for (CSlowToMake*& place : seen) {
            threads.emplace_back([&place] { place = utils::CSingletonT<CSlowToMake>::instance(); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QCOMPARE(g_made.load(), 1);
        for (const CSlowToMake* object : seen) {
            QCOMPARE(object, seen[0]);
        }
        QVERIFY(seen[0]);
    }

    void theObjectOfALibraryIsReachedFromOutside()
    {
        luawrapper::LuaModuleCtrl* const object = utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance();
        QVERIFY(object);
        QCOMPARE(utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance(), object);
    }
};

TEST_WITHOUT_WIDGETS(UtilsTest)
#include "tst_utils.moc"
