// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Installation.h"
#include "service/engine/Texts.h"
#include "support/TestProgram.h"

#include <utils/Translation.h>

#include <QProcess>

using namespace testservice;
using nvservice::DataType::AccountGroup;

namespace
{

/// What standard error and output of the daemon say.
QString said(const QStringList& arguments, const char* locale)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", locale);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(support::builtFile("bin/qav-dataserviced"), arguments);
    return process.waitForFinished(60000) ? QString::fromUtf8(process.readAll()) : QString();
}

QString textOf(const utils::NVError& error)
{
    return QString::fromStdString(error.errorMsg());
}

} // namespace

/// One daemon, and clients with different languages at the same time.
class DaemonLanguagesTest : public InstallationTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        service::registerTexts();
        utils::setLanguage(utils::ELanguage::Chinese);
    }

    void refusalsComeInTheLanguageOfEachClient()
    {
        DaemonThread daemon(m_installation->configuration);
        RawClient english;
        RawClient chinese;
        for (RawClient* client : {&english, &chinese}) {
            QVERIFY(client->open(daemon.port()));
            QVERIFY(client->hello());
        }
        QCOMPARE(textOf(english.logIn("reader", "wrong", "en")), QString("Wrong user name or password"));
        QCOMPARE(textOf(chinese.logIn("reader", "wrong", "zh")), QString("用户名或密码错误"));
        QVERIFY(english.logIn("reader", "right", "en").isSuccess());
        QVERIFY(chinese.logIn("reader", "right", "zh").isSuccess());
        for (int i = 0; i < 20; ++i) {
            const auto add = [&](RawClient& client, const std::string& operation) {
                return client.sendOperation(AccountGroup, EZvDataOperation::Add, group("甲", First, {future("8001")}),
                                            operation);
            };
            const std::int64_t ofEnglish = add(english, "en" + std::to_string(i));
            const std::int64_t ofChinese = add(chinese, "zh" + std::to_string(i));
            QCOMPARE(textOf(english.answerTo(ofEnglish).error), QString("You lack the right \"Add account groups\""));
            QCOMPARE(textOf(chinese.answerTo(ofChinese).error), QString("您没有添加账号组的权限"));
        }
        // The conversation's own refusals, too.
        english.send(wire::encode(wire::Hello{1, 1, wire::sdkVersion(), "again"}));
        const auto fault = english.expect<wire::Fault>();
        QVERIFY(fault);
        QCOMPARE(textOf(fault->error), QString("Message out of turn: the handshake is repeated"));
    }

    void largeRequestsAreRefusedInTheLanguageOfTheClient()
    {
        DaemonThread daemon(m_installation->configuration);
        RawClient client;
        QVERIFY(client.open(daemon.port()));
        QVERIFY(client.hello());
        QVERIFY(client.logIn("admin", "right", "en").isSuccess());
        const std::string name(200000, 'x');
        QCOMPARE(
            textOf(
                client.operate(AccountGroup, EZvDataOperation::Add, group(name, First, {future("8001")}), "1").error),
            QString("A text in the document is too long (field request.data.groupName)"));
    }

    void clientWithoutALanguageGetsThatOfTheDaemon()
    {
        DaemonThread daemon(m_installation->configuration);
        for (const char* language : {"", "fr"}) {
            RawClient client;
            QVERIFY(client.open(daemon.port()));
            QVERIFY(client.hello());
            QCOMPARE(textOf(client.logIn("reader", "wrong", language)), QString("用户名或密码错误"));
        }
    }

    void programSpeaksTheLanguageThatIsChosen()
    {
        QCOMPARE(said({"stray"}, "C.UTF-8"), QString("未知的参数 stray\n"));
        QCOMPARE(said({"stray"}, "zh_CN.UTF-8"), QString("未知的参数 stray\n"));
        QCOMPARE(said({"stray"}, "en_GB.UTF-8"), QString("Unknown argument stray\n"));
        QCOMPARE(said({"stray", "--language", "en"}, "zh_CN.UTF-8"), QString("Unknown argument stray\n"));
        QCOMPARE(said({"--language=zh", "stray"}, "en_GB.UTF-8"), QString("未知的参数 stray\n"));
        QCOMPARE(said({"--language", "fr"}, "en_GB.UTF-8"), QString("--language: has to be zh or en\n"));
        QCOMPARE(said({"--language"}, "C.UTF-8"), QString("--language：只能是 zh 或 en\n"));
    }
};

TEST_WITHOUT_WIDGETS(DaemonLanguagesTest)
#include "tst_daemon_languages.moc"
