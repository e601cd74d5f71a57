// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"

#include "service/engine/Password.h"
#include "support/TestProgram.h"

#include <algorithm>
#include <atomic>
#include <ctime>
#include <limits>
#include <thread>

using namespace testservice;

class LogInTest : public ServiceTest
{
    Q_OBJECT

private:
    void addUser(const char* login, const std::string& password, bool enabled = true, int institution = None,
                 int server = 0)
    {
        service::StoredUser user;
        user.login = login;
        user.displayName = "某人";
        static std::map<std::string, std::string> hashes; // hashing is slow on purpose
        std::string& hash = hashes[password];
        if (hash.empty()) {
            hash = service::hashPassword(password);
        }
        user.passwordHash = hash;
        user.enabled = enabled;
        user.rights = {10717, 10037};
        if (institution != None) {
            user.institution = institution;
        }
        service::insertUser({m_fixture->store().connection(), m_fixture->server(server)}, user);
    }

private slots:
    void rightPasswordOpensASessionWithTheUsersRights()
    {
        addUser("wang", "密码 with blank", true, Second);
        const service::LogInReply reply = m_fixture->east().logIn("wang", "密码 with blank");
        COMPARE_CODE(reply, EErrorCode::Success);
        QCOMPARE(reply.user->userId, std::string("wang"));
        QCOMPARE(reply.user->userName, std::string("某人"));
        QCOMPARE(reply.user->institutionId, Second);
        QCOMPARE(reply.user->getSystemTag(), std::string("E"));
        QCOMPARE(reply.user->rights, (std::set<int>{10717, 10037}));
        COMPARE_CODE(query(m_fixture->east(), reply.session, nvservice::DataType::AccountGroup), EErrorCode::Success);
        COMPARE_CODE(query(m_fixture->west(), reply.session, nvservice::DataType::AccountGroup),
                     EErrorCode::NotLoggedIn);
    }

    void userWithoutInstitutionIsBoundToNone()
    {
        addUser("wang", "12345678");
        QCOMPARE(m_fixture->east().logIn("wang", "12345678").user->institutionId, None);
    }

    void everyWrongLogInGetsTheSameAnswer_data()
    {
        const support::DataRows<QByteArray, QByteArray> row("user", "password");
        row("wrong password", "wang", "12345679");
        row("empty password", "wang", {});
        row("password with more behind a zero byte", "wang", QByteArray("12345678\0x", 10));
        row("unknown user", "nobody", "12345678");
        row("empty user", {}, {});
        row("user of other case", "Wang", "12345678");
        row("disabled user, right password", "gone", "12345678");
        row("user of another server", "western", "12345678");
        row("huge user", QByteArray(100000, 'u'), "12345678");
        row("huge password", "wang", QByteArray(1000000, 'p'));
        row("user without a password hash", "broken", {});
    }
    void everyWrongLogInGetsTheSameAnswer()
    {
        QFETCH(QByteArray, user);
        QFETCH(QByteArray, password);
        addUser("wang", "12345678");
        addUser("gone", "12345678", false);
        addUser("western", "12345678", true, None, 1);
        addUser("broken", "12345678");
        m_fixture->exec("UPDATE app_user SET password_hash = '' WHERE login = 'broken'");
        const service::LogInReply reply = m_fixture->east().logIn(user.toStdString(), password.toStdString());
        COMPARE_CODE(reply, EErrorCode::NotLoggedIn);
        QCOMPARE(reply.error.errorMsg(), std::string("用户名或密码错误"));
        QVERIFY(!reply.session);
        QVERIFY(!reply.user);
    }

    void anotherPasswordEndsTheSessionsOfTheOldOne()
    {
        addUser("wang", "12345678");
        const service::SessionPtr old = m_fixture->east().logIn("wang", "12345678").session;
        COMPARE_CODE(query(m_fixture->east(), old, nvservice::DataType::AccountGroup), EErrorCode::Success);

        service::Connection& connection = m_fixture->store().connection();
        service::StoredUser user = *service::findUser({connection, m_fixture->server(0)}, "wang");
        user.displayName = "王";
        service::updateUser(connection, user);
        COMPARE_CODE(query(m_fixture->east(), old, nvservice::DataType::AccountGroup), EErrorCode::Success);
        user.passwordHash = service::hashPassword("87654321");
        service::updateUser(connection, user);

        COMPARE_CODE(query(m_fixture->east(), old, nvservice::DataType::AccountGroup), EErrorCode::NotLoggedIn);
        COMPARE_CODE(operate(m_fixture->east(), old, EZvDataOperation::Add, group("新组", First, {future("8001")})),
                     EErrorCode::NotLoggedIn);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group"), std::int64_t(0));
        const service::SessionPtr current = m_fixture->east().logIn("wang", "87654321").session;
        COMPARE_CODE(query(m_fixture->east(), current, nvservice::DataType::AccountGroup), EErrorCode::Success);
    }

    void unknownUserCostsAsMuchAsAWrongPassword()
    {
        addUser("wang", "12345678");
        const auto fastest = [&](const char* user) {
            std::clock_t best = std::numeric_limits<std::clock_t>::max();
            for (int i = 0; i < 3; ++i) {
                const std::clock_t begin = std::clock();
                m_fixture->east().logIn(user, "wrong");
                best = std::min(best, std::clock() - begin);
            }
            return static_cast<double>(best);
        };
        const double known = fastest("wang");
        const double unknown = fastest("nobody");
        // Both hash with the same memory and number of passes; without that the unknown user is 1000 times as fast.
        QVERIFY2(unknown > known / 3 && known > unknown / 3,
                 qPrintable(QString("known %1, unknown %2").arg(known).arg(unknown)));
    }

    void manyLogInsAtOnceAreAllAnswered()
    {
        addUser("wang", "12345678");
        std::atomic<int> right{0};
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 9; ++i) {
            threads.emplace_back([&, i] {
                const bool good = i % 3 != 0;
                const service::LogInReply reply = m_fixture->east().logIn("wang", good ? "12345678" : "no");
                ++(reply.error.isSuccess() ? right : wrong);
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QCOMPARE(right.load(), 6);
        QCOMPARE(wrong.load(), 3);
    }
};

TEST_WITHOUT_WIDGETS(LogInTest)
#include "tst_log_in.moc"
