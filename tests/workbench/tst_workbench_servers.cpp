// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "workbench/Options.h"
#include "workbench/ServerList.h"

using workbench::Options;
using workbench::ServerSetting;

/// Which servers the client is to reach over the network.
class ServersTest : public QObject
{
    Q_OBJECT

    static bool parse(const QStringList& arguments, Options& options, QString& problem)
    {
        return workbench::parseOptions(QStringList("qav-workbench") + arguments, options, problem);
    }

private slots:
    void aListNamesServersWithTheirAuthorities()
    {
        const QString file = write("[b]\nname=北京分系统\ntag=BJ02\nhost=localhost\nport=7432\nplain=true\n"
                                   "[a]\nname=上海分系统\ntag=SH01\nhost=risk.example.com\nport=7431\nca=ca.pem\n"
                                   "[c]\nname=深圳\ntag=SZ\nhost=::1\nport=1\nca=/etc/ssl/own.pem\n");
        std::vector<ServerSetting> servers;
        QString problem;
        QVERIFY2(workbench::readServerList(file, servers, problem), qPrintable(problem));
        QCOMPARE(servers.size(), std::size_t(3));
        QCOMPARE(servers[0].name, QString("上海分系统"));
        QCOMPARE(servers[0].address.systemTag, std::string("SH01"));
        QCOMPARE(servers[0].address.host, std::string("risk.example.com"));
        QCOMPARE(int(servers[0].address.port), 7431);
        QCOMPARE(servers[0].address.caFile, m_folder.filePath("ca.pem").toStdString());
        QVERIFY(servers[0].address.encrypted);
        QCOMPARE(servers[1].name, QString("北京分系统"));
        QVERIFY(!servers[1].address.encrypted);
        QVERIFY(servers[1].address.caFile.empty());
        QCOMPARE(servers[2].address.caFile, std::string("/etc/ssl/own.pem"));
    }

    void aListWithAMistakeIsRefusedAsAWhole_data()
    {
        const support::DataRows<QByteArray, QString> row("content", "problem");
        const QByteArray good = "[a]\nname=甲\ntag=A\nhost=h\nport=1\n";
        row("empty", {}, "格式错误或为空");
        row("no sections", "name=甲\n", "格式错误或为空");
        row("no name", "[a]\ntag=A\nhost=h\nport=1\n", "名称或标识为空");
        row("no tag", "[a]\nname=甲\nhost=h\nport=1\n", "名称或标识为空");
        row("no host", "[a]\nname=甲\ntag=A\nport=1\n", "主机或端口为空");
        row("no port", "[a]\nname=甲\ntag=A\nhost=h\n", "[a]：port 需要");
        row("port 0", "[a]\nname=甲\ntag=A\nhost=h\nport=0\n", "[a]：port 需要");
        row("port 65536", "[a]\nname=甲\ntag=A\nhost=h\nport=65536\n", "[a]：port 需要");
        row("same name", good + "[b]\nname=甲\ntag=B\nhost=h\nport=1\n", "重复：甲（B）");
        row("same tag", good + "[b]\nname=乙\ntag=A\nhost=h\nport=1\n", "重复：乙（A）");
        row("plain elsewhere", good + "plain=true\n", "未加密的连接只能用于本机");
        row("plain perhaps", good + "plain=perhaps\n", "plain 只能是");
        row("unknown key", good + "verify=false\n", "[a]：未知的设置项：verify");
    }
    void aListWithAMistakeIsRefusedAsAWhole()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, problem);
        std::vector<ServerSetting> servers;
        QString said;
        const QString file = write(content);
        QVERIFY(!workbench::readServerList(file, servers, said));
        QVERIFY2(said.contains(problem), qPrintable(said));
        QVERIFY2(said.contains(file), qPrintable(said));
    }

    void aListThatIsNotThereIsReported()
    {
        std::vector<ServerSetting> servers;
        QString problem;
        QVERIFY(!workbench::readServerList("/nowhere/servers.ini", servers, problem));
        QCOMPARE(problem, QString("无法读取分系统列表：/nowhere/servers.ini"));
    }

    void serversStandOnTheCommandLine()
    {
        Options options;
        QString problem;
        QVERIFY2(parse({"--server", "上海分系统,SH01,risk.example.com:7431", "--server", "北京,BJ02,[::1]:7432", "--ca",
                        "/etc/ca.pem"},
                       options, problem),
                 qPrintable(problem));
        QVERIFY(workbench::completeOptions(options, problem));
        QCOMPARE(options.servers.size(), std::size_t(2));
        QCOMPARE(options.servers[0].name, QString("上海分系统"));
        QCOMPARE(options.servers[0].address.systemTag, std::string("SH01"));
        QCOMPARE(options.servers[0].address.host, std::string("risk.example.com"));
        QCOMPARE(int(options.servers[0].address.port), 7431);
        QCOMPARE(options.servers[1].address.host, std::string("::1"));
        QCOMPARE(options.servers[1].address.caFile, std::string("/etc/ca.pem"));
        QVERIFY(options.servers[1].address.encrypted);
        QVERIFY(options.database.isEmpty()); // no database of its own then
        Options plain;
        QVERIFY(parse({"--server", "甲,A,127.0.0.1:1", "--plain"}, plain, problem));
        QVERIFY(!plain.servers.at(0).address.encrypted);
    }

    void aCommandLineThatMakesNoSenseIsRefused_data()
    {
        const support::DataRows<QStringList> row("arguments");
        row("no tag", {"--server", "甲,localhost:1"});
        row("no port", {"--server", "甲,A,localhost"});
        row("port too large", {"--server", "甲,A,localhost:70000"});
        row("no host", {"--server", "甲,A,:1"});
        row("plain elsewhere", {"--server", "甲,A,example.com:1", "--plain"});
        row("same twice", {"--server", "甲,A,h:1", "--server", "甲,B,h:2"});
        row("authority alone", {"--ca", "ca.pem"});
        row("plain alone", {"--plain"});
        row("server and database", {"--server", "甲,A,h:1", "--database", "d.db"});
        row("list and database", {"--servers", "s.ini", "--database", "d.db"});
        row("list and server", {"--servers", "s.ini", "--server", "甲,A,h:1"});
    }
    void aCommandLineThatMakesNoSenseIsRefused()
    {
        QFETCH(QStringList, arguments);
        Options options;
        QString problem;
        QVERIFY(!parse(arguments, options, problem));
        QVERIFY(!problem.isEmpty());
    }

    void aListBesideTheSettingsIsTakenByItself()
    {
        QStandardPaths::setTestModeEnabled(true);
        const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
        QVERIFY(QDir().mkpath(folder));
        const QString path = folder + "/servers.ini";
        QVERIFY(QFile::copy(write("[a]\nname=甲\ntag=A\nhost=h\nport=1\n"), path));
        Options options;
        Options embedded;
        embedded.database = "d.db";
        QString problem;
        const bool complete = workbench::completeOptions(options, problem);
        const bool embeddedToo = workbench::completeOptions(embedded, problem);
        QFile::remove(path);
        QVERIFY2(complete && embeddedToo, qPrintable(problem));
        QCOMPARE(options.servers.size(), std::size_t(1));
        QVERIFY(options.database.isEmpty());
        QVERIFY(embedded.servers.empty());
    }

private:
    /// Each list has a name of its own: QSettings keeps what it read of a file for as long as size and time of the
    /// file are the same, and two lists of one size written at once are.
    QString write(const QByteArray& content)
    {
        QFile file(m_folder.filePath(QString("servers-%1.ini").arg(++m_written)));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
            qFatal("cannot write");
        }
        return file.fileName();
    }

    QTemporaryDir m_folder;
    int m_written = 0;
};

TEST_WITHOUT_WIDGETS(ServersTest)
#include "tst_workbench_servers.moc"
