// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"

#include "service/admin/Commands.h"
#include "support/TestProgram.h"

using namespace testservice;
using service::Command;
using service::EStoreUse;

class AdminCommandLineTest : public AdminTest
{
    Q_OBJECT

    /// A command with an argument for everything that it needs.
    static QStringList complete(const Command& command)
    {
        QStringList words = command.name.split(' ');
        for (const service::Argument& argument : command.arguments) {
            words << (argument.name == "right" ? "10717" : argument.name == "id" ? "1" : "x");
        }
        return words;
    }

    static const Command& commandOf(const QString& name)
    {
        static const std::vector<Command> commands = service::allCommands();
        return *std::find_if(commands.begin(), commands.end(), [&](const Command& one) { return one.name == name; });
    }

    static void addEveryCommand()
    {
        const support::DataRows<QString> row("name");
        for (const Command& command : service::allCommands()) {
            row(command.name, command.name);
        }
    }

private slots:
    void helpNamesEveryCommand()
    {
        const Outcome help = runAdmin({"--help"});
        COMPARE_EXIT(help, 0);
        for (const Command& command : service::allCommands()) {
            QVERIFY2(help.output.contains("  " + command.name + " "), qPrintable(command.name));
        }
        const Outcome ofUsers = runAdmin({"user", "--help"});
        COMPARE_OUTPUT(ofUsers, 0, "user add");
        QVERIFY(!ofUsers.output.contains("right grant"));
        COMPARE_EXIT(runAdmin({"--version"}), 0);
    }

    void everyCommandDescribesItself_data() { addEveryCommand(); }

    void everyCommandDescribesItself()
    {
        QFETCH(QString, name);
        const Outcome help = runAdmin(name.split(' ') + QStringList{"--help"});
        COMPARE_EXIT(help, 0);
        QVERIFY(help.output.startsWith("用法：qav-admin " + name + " [选项]"));
        QVERIFY(help.output.contains(commandOf(name).summary));
        for (const QCommandLineOption& option : commandOf(name).allOptions()) {
            QVERIFY2(help.output.contains("--" + option.names().last()), qPrintable(option.names().last()));
        }
    }

    void everyCommandRefusesAnUnknownOption_data() { addEveryCommand(); }

    void everyCommandRefusesAnUnknownOption()
    {
        QFETCH(QString, name);
        const QStringList before = m_fixture->content();
        const Outcome outcome = run(commandOf(name), complete(commandOf(name)) + QStringList{"--no-such-option"});
        COMPARE_EXIT(outcome, 2);
        QVERIFY(outcome.errors.startsWith("未知选项：no-such-option\n"));
        QVERIFY(outcome.errors.contains("qav-admin " + name + " --help"));
        QCOMPARE(m_fixture->content(), before);
    }

    void everyCommandRefusesMissingAndSurplusArguments_data() { addEveryCommand(); }

    void everyCommandRefusesMissingAndSurplusArguments()
    {
        QFETCH(QString, name);
        const Command& command = commandOf(name);
        QStringList words = complete(command);
        if (!command.arguments.empty()) {
            words.removeLast();
            const Outcome missing = run(command, words);
            COMPARE_EXIT(missing, 2);
            QVERIFY(missing.errors.startsWith("缺少参数：" + command.arguments.back().name));
        }
        if (command.arguments.empty() || !command.arguments.back().isRepeated) {
            const Outcome surplus = run(command, complete(command) + QStringList{"zuviel"});
            COMPARE_EXIT(surplus, 2);
            QVERIFY(surplus.errors.startsWith("多余的参数：zuviel"));
        }
    }

    void unknownCommandsAreNamed()
    {
        const Outcome none = runAdmin({});
        COMPARE_EXIT(none, 2);
        QVERIFY(none.errors.startsWith("请指定命令\n"));
        const Outcome unknown = runAdmin({"frobnicate"});
        COMPARE_EXIT(unknown, 2);
        QVERIFY(unknown.errors.startsWith("未知命令：frobnicate\n"));
        const Outcome half = runAdmin({"user", "frobnicate"});
        COMPARE_EXIT(half, 2);
        QVERIFY(half.errors.startsWith("未知命令：user frobnicate\n"));
        QVERIFY(!half.errors.contains("right grant"));
    }

    void toolSpeaksTheLanguageThatIsChosen()
    {
        COMPARE_OUTPUT(runAdmin({"--help", "--language", "en"}), 0, "Usage: qav-admin <command>");
        COMPARE_OUTPUT(runAdmin({"--language=en", "user", "list", "--help"}), 0, "List the users of a sub-system.");
        COMPARE_OUTPUT(runAdmin({"user", "list", "--help"}), 0, "列出分系统的用户");
        COMPARE_ERROR(m_fixture->run("user list --language en"), 2, "several sub-systems");
        COMPARE_ERROR(m_fixture->run("user list --server X --language en"), 1, "There is no sub-system \"X\"");
        COMPARE_ERROR(runAdmin({"--language", "fr"}), 2, "只能是 zh 或 en");
    }

    void serverHasToBeNamedWhenThereAreSeveral()
    {
        COMPARE_ERROR(m_fixture->run("user list"), 2, "多个分系统");
        COMPARE_ERROR(m_fixture->run("user list --server X"), 1, "分系统“X”不存在");
        COMPARE_EXIT(m_fixture->run("user list --server 东分系统"), 0);
        COMPARE_EXIT(m_fixture->run("user list --server E"), 0);
    }

    void storeMayBeNamedByTheEnvironment()
    {
        qunsetenv("QAV_STORE");
        COMPARE_ERROR(runAdmin({"server", "list"}), 2, "QAV_STORE");
        qputenv("QAV_STORE", m_fixture->storeName().toUtf8());
        COMPARE_EXIT(runAdmin({"server", "list"}), 0);
        qunsetenv("QAV_STORE");
    }

    void missingDatabaseIsNotCreated_data() { addEveryCommand(); }

    void missingDatabaseIsNotCreated()
    {
        QFETCH(QString, name);
        const Command& command = commandOf(name);
        if (command.storeUse != EStoreUse::Read && command.storeUse != EStoreUse::Write) {
            QSKIP("opens the database in its own way");
        }
        const QTemporaryDir directory(directoryTemplate());
        const QString file = directory.filePath("missing.db");
        writeFile(directory.filePath("i.csv"), "机构编号,机构名称\n7,好\n");
        QStringList words = complete(command) + extraOptions(command, directory.filePath("i.csv"));
        COMPARE_ERROR(runAdmin(words + QStringList{"--store", file}, "geheim-01\n"), 3, "数据库文件不存在");
        QVERIFY(!QFile::exists(file));
    }

    void databaseThatCannotBeUsedIsNamed()
    {
        const auto errorsOn = [](const QString& file) {
            const Outcome outcome = runAdmin({"server", "list", "--store", file});
            return QString::number(outcome.exitCode) + ' ' + outcome.errors;
        };
        writeFile(m_fixture->path("text.db"),
                  "this is no database, but it is long enough to be taken for one, isn't it?"
                  "this is no database, but it is long enough to be taken for one, isn't it?");
        QVERIFY2(errorsOn(m_fixture->path("text.db")).startsWith("3 该文件不是数据库文件"),
                 qPrintable(errorsOn(m_fixture->path("text.db"))));
        {
            service::Connection connection(service::StoreOptions::forCreating(m_fixture->path("foreign.db")),
                                           "foreign");
            connection.exec("CREATE TABLE theirs (x INTEGER)");
        }
        QVERIFY(errorsOn(m_fixture->path("foreign.db")).startsWith("3 该数据库属于其他程序"));
        m_fixture->exec("INSERT INTO schema_version VALUES (999, 0)");
        const QString newer = errorsOn(m_fixture->storeName());
        QVERIFY2(newer.startsWith("3 数据库版本（999）"), qPrintable(newer));
        COMPARE_ERROR(m_fixture->run("institution add 9 新 --server E"), 3, "请升级程序");
    }

    void databaseThatIsLockedIsNamedAndLeftAlone()
    {
        service::Transaction lock(m_fixture->store().connection(), service::Transaction::EKind::Write);
        COMPARE_EXIT(m_fixture->run("institution list --server E"), 0);
        COMPARE_ERROR(m_fixture->run("institution add 9 新 --server E --wait 1"), 3, "正被其他程序占用");
    }

private:
    Outcome run(const Command& command, const QStringList& words)
    {
        return command.storeUse == EStoreUse::None ? runAdmin(words) : m_fixture->run(words, "geheim-01\n");
    }

    /// What a command needs beyond its arguments.
    static QStringList extraOptions(const Command& command, const QString& csv)
    {
        if (command.name == "user bind") {
            return {"--none"};
        }
        if (command.name.endsWith(" restore")) {
            return {"--id", "1", "--revision", "1"};
        }
        if (command.name.endsWith(" prune")) {
            return {"--before", "2020-01-01"};
        }
        if (command.name == "import") {
            return {"--institutions", csv};
        }
        if (command.name == "export") {
            return {"--institutions", csv + ".out"};
        }
        return {};
    }
};

TEST_WITHOUT_WIDGETS(AdminCommandLineTest)
#include "tst_admin_command_line.moc"
