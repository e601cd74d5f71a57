// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Configuration.h"
#include "support/TestProgram.h"
#include "support/service/TestDatabase.h"

#include <QDir>
#include <QFile>

using namespace service::daemon;

/// The configuration of the package and the files beside it.
class DaemonOwnSettingsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_directory;

    QString path(const QString& name) const { return m_directory->filePath(name); }
    void write(const QString& name, const QByteArray& text) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }
    ConfigurationResult loaded() const { return loadConfiguration(path("main.toml")); }
    QStringList mistakes() const
    {
        QStringList texts;
        for (const ConfigurationMistake& mistake : loaded().mistakes) {
            texts << describe(mistake);
        }
        return texts;
    }

private slots:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>(support::directoryTemplate());
        QVERIFY(QDir(path("")).mkdir("conf.d"));
        write("main.toml", "[store]\n"
                           "location = \"shipped.db\"\n"
                           "[[listen]]\n"
                           "address = \"127.0.0.1\"\n"
                           "port = 1\n"
                           "plaintext = true\n"
                           "[limits]\n"
                           "connections = 10\n"
                           "waiting_log_ins = 11\n");
    }

    void keyOfALaterFileHolds()
    {
        write("conf.d/20-b.toml", "[limits]\nconnections = 22\n[store]\nlocation = \"own.db\"\n");
        write("conf.d/10-a.toml", "[limits]\nconnections = 21\nrequests_per_connection = 5\n");
        write("conf.d/30-c.toml.off", "[limits]\nconnections = 23\n");
        const ConfigurationResult result = loaded();
        QCOMPARE(mistakes(), QStringList());
        QCOMPARE(result.configuration.limits.connections, 22);
        QCOMPARE(result.configuration.limits.requestsPerConnection, 5);
        QCOMPARE(result.configuration.limits.waitingLogIns, 11);
        // Paths are relative to the same folder in all files.
        QCOMPARE(result.configuration.store, path("own.db"));
        QCOMPARE(result.configuration.listen.size(), std::size_t(1));
    }

    void listOfPortsReplacesTheEarlierOne()
    {
        write("conf.d/ports.toml", "[[listen]]\nsub_system = \"东\"\naddress = \"::1\"\nport = 2\nplaintext = true\n"
                                   "[[listen]]\nsub_system = \"西\"\naddress = \"::1\"\nport = 3\nplaintext = true\n");
        const ConfigurationResult result = loaded();
        QCOMPARE(mistakes(), QStringList());
        QCOMPARE(result.configuration.listen.size(), std::size_t(2));
        QCOMPARE(result.configuration.listen[1].port, 3);
    }

    void everySettingIsShownWithItsPlace()
    {
        write("conf.d/own.toml", "[limits]\nconnections = 22\n[log]\nlevel = \"debug\"\n");
        QStringList settings;
        for (const ConfigurationSetting& setting : loaded().settings) {
            settings << describe(setting);
        }
        QCOMPARE(
            settings,
            (QStringList{"store.location = \"shipped.db\"（main.toml第2行）",
                         "listen.address = \"127.0.0.1\"（main.toml第4行）", "listen.port = 1（main.toml第5行）",
                         "listen.plaintext = true（main.toml第6行）", "limits.connections = 22（conf.d/own.toml第2行）",
                         "limits.waiting_log_ins = 11（main.toml第9行）",
                         "log.level = \"debug\"（conf.d/own.toml第4行）"}));
    }

    void mistakeNamesItsFile()
    {
        write("conf.d/10-a.toml", "\n[limits]\nconections = 5\n");
        write("conf.d/20-b.toml", "[workers]\nrequests = 0\n");
        QCOMPARE(mistakes(), (QStringList{"conf.d/10-a.toml第3行：未知的配置项 limits.conections",
                                          "conf.d/20-b.toml第2行：配置项 workers.requests 必须是 1 到 256 的整数"}));
        write("conf.d/20-b.toml", "limits = 3\n");
        QCOMPARE(mistakes().last(), QString("conf.d/20-b.toml第1行：配置项 limits 必须是一节，写作 [limits]"));
        write("conf.d/20-b.toml", "[limits\n");
        QCOMPARE(mistakes().size(), 1);
        QVERIFY(mistakes()[0].startsWith("conf.d/20-b.toml第1行：不符合TOML格式"));
    }

    void fileThatCannotBeReadIsAMistake()
    {
        QVERIFY(QFile::link(path("nowhere.toml"), path("conf.d/10-link.toml")));
        QCOMPARE(mistakes().size(), 1);
        QVERIFY2(mistakes()[0].startsWith("无法读取配置文件 " + path("conf.d/10-link.toml")),
                 qPrintable(mistakes()[0]));
        QVERIFY(QDir(path("conf.d")).removeRecursively());
        QCOMPARE(mistakes(), QStringList());
        write("conf.d", "");
        QCOMPARE(mistakes(), QStringList{"无法读取目录 " + path("conf.d")});
    }
};

TEST_WITHOUT_WIDGETS(DaemonOwnSettingsTest)
#include "tst_daemon_own_settings.moc"
