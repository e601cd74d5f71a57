// SPDX-License-Identifier: Apache-2.0
#include "support/qav/CFakeTransport.h"
#include "support/qav/Client.h"
#include "support/wq/WatchedTest.h"

#include "support/TestProgram.h"
#include "workbench/CLogInDialog.h"
#include "workbench/CSession.h"
#include "workbench/CUserSettings.h"

#include <QAV/CUserManager.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>

#include <boost/make_shared.hpp>

#include <QtWidgets/QtWidgets>

using support::CFakeTransport;
using utils::EErrorCode;
using workbench::CLogInDialog;
using workbench::CSession;

class LogInTest : public support::WatchedTest
{
    Q_OBJECT

    static QAV::CUserManager& users() { return *utils::CSingletonT<QAV::CUserManager>::instance(); }

    /// A server that lets "admin" with the password "right" in and gives him one right.
    static boost::shared_ptr<CFakeTransport> serverGranting(int right)
    {
        auto transport = boost::make_shared<CFakeTransport>();
        transport->onLogIn = [right](const std::string& user, const std::string& password, const auto& handler) {
            if (user != "admin" || password != "right") {
                handler(utils::NVError(EErrorCode::NotLoggedIn, "用户名或密码错误"), nullptr);
                return;
            }
            handler(utils::NVError(), support::makeUser(user, {right}));
        };
        return transport;
    }

private slots:
    void init()
    {
        WatchedTest::init();
        m_folder = std::make_unique<QTemporaryDir>();
        m_settings = std::make_unique<workbench::CUserSettings>(m_folder->filePath("s.ini"));
        m_session = std::make_unique<CSession>();
    }

    void cleanup()
    {
        m_session->logOut();
        m_session.reset();
        support::centre().shutDown();
        m_settings.reset();
        m_folder.reset();
        WatchedTest::cleanup();
    }

    void theRightPasswordEndsTheDialogAndTheUserIsKnown()
    {
        QVERIFY(support::centre().addServer("A", "a", serverGranting(10717)).isSuccess());
        CLogInDialog dialog(*m_session, *m_settings, nullptr);
        m_boxes->expectDialog([&](WQ::CBaseDialog&) {
            dialog.setCredentials(" admin ", "right");
            QTest::mouseClick(dialog.findChild<QPushButton*>("logInButton"), Qt::LeftButton);
            QVERIFY(dialog.isBusy());
            QTRY_VERIFY(!dialog.isVisible());
        });
        QCOMPARE(dialog.exec(), 1);
        QVERIFY(m_session->isLoggedIn());
        QVERIFY(users().checkUserAuth(10717));
        QCOMPARE(m_settings->lastUser(), QString("admin"));
    }

    void theLastUserIsFilledInAndThePasswordNever()
    {
        m_settings->setLastUser("admin");
        CLogInDialog dialog(*m_session, *m_settings, nullptr);
        QCOMPARE(dialog.findChild<WQ::CLineEdit*>("user")->getText(), QString("admin"));
        QCOMPARE(dialog.findChild<WQ::CLineEdit*>("password")->getText(), QString());
        QCOMPARE(dialog.findChild<WQ::CLineEdit*>("password")->echoMode(), QLineEdit::Password);
    }

    void aWrongPasswordIsSaidAndTheDialogStaysOpen()
    {
        QVERIFY(support::centre().addServer("A", "a", serverGranting(1)).isSuccess());
        QVERIFY(support::centre().addServer("B", "b", serverGranting(1)).isSuccess());
        CLogInDialog dialog(*m_session, *m_settings, nullptr);
        m_boxes->expectDialog([&](WQ::CBaseDialog&) {
            dialog.setCredentials("admin", "wrong");
            dialog.submit();
            QCOMPARE(dialog.errorText(), QString());
            QTRY_COMPARE(dialog.errorText(), QString("用户名或密码错误"));
            QVERIFY(!dialog.isBusy());
            QVERIFY(dialog.isVisible());
            QCOMPARE(dialog.findChild<WQ::CLineEdit*>("password")->getText(), QString());
            dialog.setCredentials("admin", "right");
            dialog.submit();
            QTRY_VERIFY(!dialog.isVisible());
        });
        QCOMPARE(dialog.exec(), 1);
    }

    void withoutAServerTheDialogSaysSo()
    {
        CLogInDialog dialog(*m_session, *m_settings, nullptr);
        dialog.setCredentials("admin", "right");
        dialog.submit();
        QTRY_COMPARE(dialog.errorText(), QString("没有可用的分系统，无法登录"));
        QVERIFY(!m_session->isLoggedIn());
    }

    void withoutAUserNameNoServerIsAsked()
    {
        const auto transport = boost::make_shared<CFakeTransport>();
        bool asked = false;
        transport->onLogIn = [&](const auto&, const auto&, const auto&) { asked = true; };
        QVERIFY(support::centre().addServer("A", "a", transport).isSuccess());
        CLogInDialog dialog(*m_session, *m_settings, nullptr);
        dialog.setCredentials("  ", "right");
        dialog.submit();
        QCOMPARE(dialog.errorText(), QString("请输入用户名"));
        support::centre().shutDown();
        QVERIFY(!asked);
    }

    void enterGoesFromTheUserToThePasswordAndFromThereLogsIn()
    {
        QVERIFY(support::centre().addServer("A", "a", serverGranting(1)).isSuccess());
        CLogInDialog dialog(*m_session, *m_settings, nullptr);
        m_boxes->expectDialog([&](WQ::CBaseDialog&) {
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            QTest::keyClicks(QApplication::focusWidget(), "admin");
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QTRY_COMPARE(QApplication::focusWidget()->objectName(), QString("password"));
            QTest::keyClicks(QApplication::focusWidget(), "right");
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QTRY_VERIFY(!dialog.isVisible());
        });
        QCOMPARE(dialog.exec(), 1);
    }

    void escLeavesTheDialogWhileAServerStaysSilent()
    {
        const auto transport = boost::make_shared<CFakeTransport>();
        QAV::ITransport::LogInHandler late;
        transport->onLogIn = [&](const auto&, const auto&, const auto& handler) { late = handler; };
        QVERIFY(support::centre().addServer("A", "a", transport).isSuccess());
        {
            CLogInDialog dialog(*m_session, *m_settings, nullptr);
            m_boxes->expectDialog([&](WQ::CBaseDialog&) {
                dialog.setCredentials("admin", "right");
                dialog.submit();
                QVERIFY(dialog.isBusy());
                QTest::keyClick(&dialog, Qt::Key_Escape);
                QVERIFY(!dialog.isVisible());
            });
            QCOMPARE(dialog.exec(), 0);
        }
        late(utils::NVError(), boost::make_shared<nvservice::CUserInfo>());
        support::centre().shutDown();
        QCoreApplication::processEvents();
        QVERIFY(!m_session->isLoggedIn());
    }

    void oneServerThatLetsTheUserInIsEnoughAndTheOthersAreNamed()
    {
        const auto dead = boost::make_shared<CFakeTransport>();
        dead->onLogIn = [](const auto&, const auto&, const auto& handler) {
            handler(utils::NVError(EErrorCode::NotConnected, "连接中断"), nullptr);
        };
        QVERIFY(support::centre().addServer("A", "a", dead).isSuccess());
        QVERIFY(support::centre().addServer("B", "b", serverGranting(10717)).isSuccess());
        QVERIFY(support::centre().addServer("C", "c", serverGranting(10721)).isSuccess());
        CSession::Outcome outcome;
        bool done = false;
        m_session->logIn("admin", "right", [&](const CSession::Outcome& reached) {
            outcome = reached;
            done = true;
        });
        QVERIFY(!done);
        QTRY_VERIFY(done);
        QVERIFY(outcome.error.isSuccess());
        QCOMPARE(m_session->refusedServers(), QStringList("A：连接中断"));
        QVERIFY(users().checkUserAuth(10717));
        QVERIFY(users().checkUserAuth(10721));
        QCOMPARE(users().getUserInfoPtr()->getSystemTag(), std::string("b"));
    }

    void serversThatRefuseForDifferentReasonsAreEachNamed()
    {
        const auto dead = boost::make_shared<CFakeTransport>();
        dead->onLogIn = [](const auto&, const auto&, const auto& handler) {
            handler(utils::NVError(EErrorCode::NotConnected, "连接中断"), nullptr);
        };
        QVERIFY(support::centre().addServer("A", "a", dead).isSuccess());
        QVERIFY(support::centre().addServer("B", "b", serverGranting(1)).isSuccess());
        utils::NVError error;
        bool done = false;
        m_session->logIn("admin", "wrong", [&](const CSession::Outcome& reached) {
            error = reached.error;
            done = true;
        });
        QTRY_VERIFY(done);
        QCOMPARE(QString::fromStdString(error.errorMsg()), QString("A：连接中断\nB：用户名或密码错误"));
        QVERIFY(!m_session->isLoggedIn());
    }

    void theReasonOfEveryServerCanBeReadInFull()
    {
        const auto unreachable = boost::make_shared<CFakeTransport>();
        const QString expired = "无法连接：服务端证书已过期（有效期至 2026-01-05 09:30:15），请联系管理员更换证书";
        unreachable->onLogIn = [&](const auto&, const auto&, const auto& handler) {
            handler(utils::NVError(EErrorCode::NotConnected, expired.toStdString()), nullptr);
        };
        QVERIFY(support::centre().addServer("上海", "a", unreachable).isSuccess());
        QVERIFY(support::centre().addServer("深圳", "b", serverGranting(1)).isSuccess());
        CLogInDialog dialog(*m_session, *m_settings, nullptr);
        dialog.show();
        const int height = dialog.height();
        dialog.setCredentials("admin", "wrong");
        dialog.submit();
        QTRY_COMPARE(dialog.errorText(), "上海：" + expired + "\n深圳：用户名或密码错误");
        const auto* label = dialog.findChild<QLabel*>("error");
        QTRY_VERIFY(label->height() >= label->heightForWidth(label->width()));
        QVERIFY(dialog.height() > height);
        QVERIFY(dialog.rect().contains(QRect(label->mapTo(&dialog, QPoint()), label->size())));
        dialog.setCredentials("admin", "wrong");
        dialog.submit();
        QCOMPARE(dialog.height(), height);
    }

    void onlyTheLatestOfTwoLogInsIsAnswered()
    {
        QVERIFY(support::centre().addServer("A", "a", serverGranting(1)).isSuccess());
        int first = 0;
        int second = 0;
        m_session->logIn("admin", "right", [&](const CSession::Outcome&) { ++first; });
        m_session->logIn("admin", "right", [&](const CSession::Outcome&) { ++second; });
        QTRY_COMPARE(second, 1);
        support::centre().shutDown();
        QCoreApplication::processEvents();
        QCOMPARE(first, 0);
        QCOMPARE(second, 1);
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<workbench::CUserSettings> m_settings;
    std::unique_ptr<CSession> m_session;
};

TEST_WITH_WIDGETS(LogInTest)
#include "tst_workbench_log_in.moc"
