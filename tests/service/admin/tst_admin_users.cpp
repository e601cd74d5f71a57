// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"
#include "support/TestProgram.h"

using namespace testservice;

class AdminUsersTest : public AdminTest
{
    Q_OBJECT

private slots:
    void rowNamesThePersonAndTheTool()
    {
        const QStringList add = {"institution", "add", "103",     "丙机构",
                                 "--server",    "E",   "--store", m_fixture->storeName()};
        COMPARE_EXIT(runAdmin(add), 0);
        QCOMPARE(m_fixture->audit(1), QStringList{toolUser() + " 2 institution|103 0"});
        const QStringList rename = {"institution", "rename", "103",     "丁机构",
                                    "--server",    "E",      "--store", m_fixture->storeName()};
        COMPARE_EXIT(runAdmin(rename, {}, "li"), 0);
        const QString login = m_fixture->audit(1)[0].section(' ', 0, 0);
        QVERIFY2(login == "qav-admin:li" || login == "qav-admin:li(" + toolUser().section(':', 1) + ')',
                 qPrintable(login));
        for (const QString& forged : {QString("li as wang"), QString("li\nwang"), QString("a:b"), QString("li(wang)"),
                                      QString("li\u202e"), QString(65, 'x')}) {
            COMPARE_EXIT(runAdmin(add, {}, forged), 1);
            QCOMPARE(m_fixture->audit(1)[0].section(' ', 0, 0), toolUser());
        }
    }

    void changeForSomebodyElseNamesBoth()
    {
        COMPARE_EXIT(m_fixture->run("institution add 103 丙机构 --server E --as wang"), 0);
        QCOMPARE(m_fixture->text("SELECT login FROM audit"), toolUser().toStdString() + " as wang");
        m_fixture->session("wang", everyRight());
        COMPARE_EXIT(m_fixture->run("institution add 103 丙机构 --server E --as wang"), 1);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE login = 'wang'"), 0);
        const QStringList rename = {"institution", "rename", "103", "丁机构", "--server", "E", "--as"};
        for (const QString& name : {QString(" "), QString("wang\n"), QString("wa\nng"), QString("\x1b[2Jwang"),
                                    QString("wang\u202e"), QString(65, 'x')}) {
            COMPARE_EXIT(m_fixture->run(rename + QStringList(name)), 2);
        }
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit"), 2);
    }

    void noLogInLooksLikeTheTool()
    {
        COMPARE_ERROR(m_fixture->run("user add qav-admin:root --server E", "geheim-01\n"), 1, "qav-admin:");
        QCOMPARE(m_fixture->number("SELECT count(*) FROM app_user"), 0);
    }

    void addedUserCanLogInWithTheRightsThatWereGiven()
    {
        const QStringList add = {"user", "add",           "li",    "--server", "东分系统", "--name",
                                 "李岚", "--institution", "甲机构"};
        COMPARE_EXIT(m_fixture->run(add + QStringList{"--rights", "edit-account-group,10041,期货账号", "--as", "boss"},
                                    "geheim-01\nrest"),
                     0);
        const service::LogInReply reply = m_fixture->east().logIn("li", "geheim-01");
        QVERIFY(reply.error.isSuccess());
        QCOMPARE(reply.user->userName, std::string("李岚"));
        QCOMPARE(reply.user->institutionId, First);
        QCOMPARE(reply.user->rights, (std::set<int>{10717, 10041, 10037}));
        QVERIFY(!m_fixture->west().logIn("li", "geheim-01").error.isSuccess());
        QCOMPARE(m_fixture->audit(1), QStringList{toolUserAsBoss() + " 2 user|li 0"});
    }

    void auditHoldsNoPassword()
    {
        COMPARE_EXIT(m_fixture->run("user add li --server E", "geheim-01\n"), 0);
        COMPARE_EXIT(m_fixture->run("user password li --server E", "geheim-02\n"), 0);
        COMPARE_EXIT(m_fixture->run("user add wang --server E", "kurz\n"), 1);
        const QString audit = m_fixture->content().filter(QRegularExpression("^audit\\|")).join('\n');
        QCOMPARE(m_fixture->audit(3).size(), 3);
        for (const QByteArray& secret : {QByteArray("geheim"), QByteArray("kurz"), QByteArray("argon2")}) {
            QVERIFY2(!audit.contains(secret) && !audit.contains(secret.toHex()), secret.constData());
        }
        QVERIFY(audit.contains(QByteArray("newPassword").toHex()));
    }

    void newPasswordReplacesTheOld()
    {
        COMPARE_EXIT(m_fixture->run("user add li --server E", "geheim-01\n"), 0);
        COMPARE_EXIT(m_fixture->run("user password li --server E --as boss", "geheim-02\r\n"), 0);
        QVERIFY(!m_fixture->east().logIn("li", "geheim-01").error.isSuccess());
        QVERIFY(m_fixture->east().logIn("li", "geheim-02").error.isSuccess());
        QCOMPARE(m_fixture->audit(1), QStringList{toolUserAsBoss() + " 0 user|li 0"});
    }

    void userWhoIsDisabledLosesAccessAtOnceAndGetsItAgain()
    {
        COMPARE_EXIT(m_fixture->run("user add li --server E --rights all", "geheim-01\n"), 0);
        const auto session = m_fixture->east().logIn("li", "geheim-01").session;
        COMPARE_EXIT(m_fixture->run("user disable li --server E"), 0);
        COMPARE_CODE(query(m_fixture->east(), session, nvservice::DataType::AccountGroup), EErrorCode::NotLoggedIn);
        QVERIFY(!m_fixture->east().logIn("li", "geheim-01").error.isSuccess());
        const int rows = static_cast<int>(m_fixture->number("SELECT count(*) FROM audit"));
        COMPARE_OUTPUT(m_fixture->run("user disable li --server E"), 0, "没有变化");
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit"), rows);
        COMPARE_EXIT(m_fixture->run("user enable li --server E"), 0);
        COMPARE_CODE(query(m_fixture->east(), session, nvservice::DataType::AccountGroup), EErrorCode::Success);
    }

    void bindingToAnInstitutionLimitsWhatTheUserSees()
    {
        m_fixture->storedGroup("甲组", First);
        m_fixture->storedGroup("乙组", Second);
        const auto session = m_fixture->session("li", everyRight());
        COMPARE_EXIT(m_fixture->run("user bind li --server E --institution 2"), 0);
        QCOMPARE(groupNames(query(m_fixture->east(), session, nvservice::DataType::AccountGroup)),
                 std::vector<std::string>{"乙组"});
        COMPARE_EXIT(m_fixture->run("user bind li --server E --none"), 0);
        QCOMPARE(query(m_fixture->east(), session, nvservice::DataType::AccountGroup).totalCount, 2);
        COMPARE_EXIT(m_fixture->run("user bind li --server E"), 2);
        COMPARE_EXIT(m_fixture->run("user bind li --server E --none --institution 1"), 2);
        COMPARE_ERROR(m_fixture->run("user bind li --server E --institution 丙机构"), 1, "机构“丙机构”不存在");
    }

    void rightsAreGrantedAndRevokedByNumberKeyAndName()
    {
        const auto session = m_fixture->session("li", {});
        COMPARE_EXIT(m_fixture->run("right grant li 10717 future-account 系统类型1的证券分类 --server E"), 0);
        const Outcome list = m_fixture->run("right list --user li --server E --json");
        COMPARE_EXIT(list, 0);
        QCOMPARE(list.json().array().size(), 3);
        QCOMPARE(list.item("id", 10717).value("key").toString(), QString("edit-account-group"));
        QCOMPARE(list.item("id", 14001).value("name").toString(), QString("系统类型1的证券分类"));
        auto added = group("新组", First, {future("8001")});
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Add, added), EErrorCode::Success);
        COMPARE_EXIT(m_fixture->run("right revoke li edit-account-group 10721 --server E"), 0);
        added = group("又一组", First, {future("8001")});
        COMPARE_CODE(operate(m_fixture->east(), session, EZvDataOperation::Add, added), EErrorCode::PermissionDenied);
        COMPARE_ERROR(m_fixture->run("right grant li 10718 --server E"), 1, "没有权限“10718”");
        COMPARE_EXIT(m_fixture->run("right grant nobody 10717 --server E"), 1);
        COMPARE_EXIT(m_fixture->run("right grant li --server E"), 2);
    }

    void rightsToSystemTypesAreListedOnlyWithHolders()
    {
        m_fixture->session("li", {14007});
        const Outcome list = m_fixture->run("right list --server E --json");
        QCOMPARE(list.json().array().size(), 17);
        QCOMPARE(list.item("id", 14007).value("users").toArray(), QJsonArray{"li"});
        QCOMPARE(list.item("id", 10721).value("users").toArray(), QJsonArray());
    }

    void everyRightCanBeGivenAtOnceAndIsListedWithItsHolders()
    {
        m_fixture->session("li", {});
        m_fixture->session("wang", {10719});
        COMPARE_EXIT(m_fixture->run("right grant li all --server E"), 0);
        const Outcome list = m_fixture->run("right list --server E --json");
        QCOMPARE(list.json().array().size(), 116);
        QCOMPARE(list.item("id", 10719).value("users").toArray(), (QJsonArray{"li", "wang"}));
        QCOMPARE(list.item("id", 10721).value("users").toArray(), QJsonArray{"li"});
    }

    void listShowsUsersOfTheServerOnly()
    {
        m_fixture->session("li", {1, 2, 3}, Second);
        m_fixture->session("fremd", {}, None, 1);
        const Outcome list = m_fixture->run("user list --server E --json");
        COMPARE_EXIT(list, 0);
        QCOMPARE(list.json().array().size(), 1);
        QCOMPARE(list.item("login", "li"), (QJsonObject{{"login", "li"},
                                                        {"name", "姓名li"},
                                                        {"institutionId", 2},
                                                        {"institution", "乙机构"},
                                                        {"enabled", true},
                                                        {"rights", 3}}));
        const Outcome text = m_fixture->run("user list --server E");
        QVERIFY(text.output.startsWith("用户名"));
        QCOMPARE(text.output.count('\n'), 2);
    }

    void badUsersAreRefusedAndTheRefusalIsAudited_data()
    {
        const support::DataRows<QStringList, QByteArray, QString> row("arguments", "password", "reason");
        row("login is taken", {"li"}, "geheim-01\n", "用户“li”已存在");
        row("blank login", {" "}, "geheim-01\n", "用户名不能为空");
        row("long login", {QString(65, 'x')}, "geheim-01\n", "用户名不能为空");
        row("invisible login", {"a\tb"}, "geheim-01\n", "不可见字符");
        row("short password", {"wang"}, "1234567\n", "密码至少8个字符");
        row("institution", {"wang", "--institution", "9"}, "geheim-01\n", "机构“9”不存在");
    }
    void badUsersAreRefusedAndTheRefusalIsAudited()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, password);
        QFETCH(QString, reason);
        m_fixture->session("li", {});
        const Outcome outcome =
            m_fixture->run(QStringList{"user", "add", "--server", "E", "--as", "boss"} + arguments, password);
        COMPARE_ERROR(outcome, 1, reason);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM app_user"), 1);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE login LIKE '% as boss' AND outcome <> 0"), 1);
    }

    void passwordHasToBeGiven()
    {
        m_fixture->session("li", {});
        COMPARE_EXIT(m_fixture->run("user password li --server E"), 2);
        COMPARE_EXIT(m_fixture->run("user password nobody --server E", "geheim-01\n"), 1);
    }

    void institutionsAreAddedRenamedAndListed()
    {
        COMPARE_EXIT(m_fixture->run("institution add 103 丙机构 --server E --as boss"), 0);
        COMPARE_EXIT(m_fixture->run("institution rename 103 丁机构 --server E --as boss"), 0);
        COMPARE_OUTPUT(m_fixture->run("institution rename 103 丁机构 --server E --as boss"), 0, "没有变化");
        QCOMPARE(m_fixture->audit(2),
                 (QStringList{toolUserAsBoss() + " 2 institution|103 0", toolUserAsBoss() + " 0 institution|103 0"}));
        const Outcome list = m_fixture->run("institution list --server E --json");
        QCOMPARE(list.json().array().size(), 3);
        QCOMPARE(list.item("id", 103).value("name").toString(), QString("丁机构"));
        QVERIFY(m_fixture->run("institution list --server E").output.contains("103       丁机构"));
    }

    void badInstitutionsAreRefused()
    {
        const auto errors = [this](const QStringList& arguments) {
            const Outcome outcome =
                m_fixture->run(QStringList{"institution"} + arguments + QStringList{"--server", "E"});
            return QString::number(outcome.exitCode) + ' ' + outcome.errors.trimmed();
        };
        QCOMPARE(errors({"add", "1", "新"}), QString("1 机构1已存在"));
        QCOMPARE(errors({"add", "9", "甲机构"}), QString("1 机构名称“甲机构”已被机构1使用"));
        QCOMPARE(errors({"add", "x", "新"}), QString("1 机构编号不是有效的编号：x"));
        QCOMPARE(errors({"add", "2147483647", "新"}), QString("1 机构编号不是有效的编号：2147483647"));
        QCOMPARE(errors({"add", "9", " "}), QString("1 “机构名称”不能为空"));
        QCOMPARE(errors({"add", "9", QString(65, 'x')}), QString("1 “机构名称”不能超过64个字符"));
        QCOMPARE(errors({"rename", "9", "新"}), QString("1 机构9不存在"));
        QCOMPARE(errors({"rename", "1", "乙机构"}), QString("1 机构名称“乙机构”已被机构2使用"));
        QCOMPARE(m_fixture->number("SELECT count(*) FROM institution"), 4);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE outcome <> 0"), 8);
    }

    void serversAreAddedAndListed()
    {
        const QTemporaryDir directory(directoryTemplate());
        const QStringList store = {"--store", directory.filePath("new.db")};
        COMPARE_EXIT(runAdmin(QStringList{"server", "add", "上海分系统", "SH01", "--as", "boss"} + store), 0);
        COMPARE_ERROR(runAdmin(QStringList{"server", "add", "上海分系统", "SH02"} + store), 1,
                      "分系统“上海分系统”已存在");
        const Outcome tag = runAdmin(QStringList{"server", "add", "北京分系统", "SH01"} + store);
        COMPARE_ERROR(tag, 1, "系统标识“SH01”已被使用");
        COMPARE_EXIT(runAdmin(QStringList{"server", "add", " ", "X"} + store), 1);
        const Outcome list = runAdmin(QStringList{"server", "list", "--json"} + store);
        QCOMPARE(list.json().array(),
                 (QJsonArray{QJsonObject{
                     {"name", "上海分系统"}, {"tag", "SH01"}, {"groups", 0}, {"accounts", 0}, {"users", 0}}}));
        // The only one needs no --server.
        COMPARE_EXIT(runAdmin(QStringList{"institution", "add", "1", "甲"} + store), 0);
    }
};

TEST_WITHOUT_WIDGETS(AdminUsersTest)
#include "tst_admin_users.moc"
