// SPDX-License-Identifier: Apache-2.0
#include "InstitutionFixture.h"

#include "support/TestProgram.h"
#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"

#include <nvservice/DataType.h>

#include <boost/make_shared.hpp>

using namespace institution_test;

/// How the institution search edit loads what it offers.
class ManagerSearchLoadingTest : public QObject, private InstitutionFixture
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void itAsksItsServerForInstitutions()
    {
        int dataType = 0;
        m_shanghai->onQuery = [&](const nvservice::CKolmQueryDataReq& request, const auto& handler) {
            dataType = request.dataType;
            handler(m_shanghaiReply);
        };
        bool othersAsked = false;
        m_shenzhen->onQuery = [&](const nvservice::CKolmQueryDataReq&, const auto&) { othersAsked = true; };
        load("SH");
        QCOMPARE(dataType, nvservice::DataType::Institution);
        QVERIFY(!othersAsked);
    }

    void withoutATagItAsksAllServers()
    {
        load("");
        QTest::keyClick(m_edit, Qt::Key_Down);
        QCOMPARE(matches().size(), 6);
    }

    void everyTagIsAnsweredThroughTheEventLoop()
    {
        for (const char* const tag : {"SH", "SH", "SZ", "", "unknown"}) {
            const int before = m_holder->loads;
            m_edit->setSystemTag(tag);
            QCOMPARE(m_holder->loads, before);
            QTRY_COMPARE(m_holder->loads, before + 1);
        }
        QCOMPARE(m_holder->changes, 0);
    }

    void aFailedLoadIsReportedAsLoadedToo_data()
    {
        const support::DataRows<QString> row("tag");
        row("the server fails", "SH");
        row("one of two servers fails", "");
        row("nobody knows the tag", "XX");
    }
    void aFailedLoadIsReportedAsLoadedToo()
    {
        QFETCH(QString, tag);
        m_shanghaiReply = support::replyWithError(utils::EErrorCode::StorageFailure, "数据库忙");
        load(tag.toStdString());
        QVERIFY(!m_edit->toolTip().isEmpty());
        m_shanghaiReply = support::replyWith({});
        load("SH");
        QVERIFY(m_edit->toolTip().isEmpty());
    }

    void afterAFailureItGoesOnWithWhatItHad()
    {
        load("");
        m_shanghaiReply = support::replyWithError(utils::EErrorCode::Failed, "断线");
        load("");
        QTest::keyClick(m_edit, Qt::Key_Down);
        QCOMPARE(matches().size(), 6);
    }

    void onlyTheReplyToTheLastTagCounts()
    {
        m_shanghai->onQuery = {};
        m_edit->setSystemTag("SH");
        m_edit->setSystemTag("SH");
        const auto first = m_shanghai->takeQuery();
        const auto second = m_shanghai->takeQuery();
        second.handler(support::replyWith({institution(2, "第二", "SH")}));
        first.handler(support::replyWith({institution(1, "第一", "SH")}));
        QTRY_COMPARE(m_holder->loads, 1);
        support::centre().shutDown();
        QCoreApplication::processEvents();
        QCOMPARE(m_holder->loads, 1);
        QTest::keyClick(m_edit, Qt::Key_Down);
        QCOMPARE(matches(), QStringList("第二"));
    }

    void anIdIsChosenWhenTheDataHaveCome()
    {
        m_edit->setSystemTag("SH");
        m_edit->setCurrentManagerId(13);
        QCOMPARE(chosen(), 13);
        QTRY_COMPARE(m_holder->loads, 1);
        QCOMPARE(chosen(), 13);
        QCOMPARE(m_edit->text(), QString("招商证券"));
        QCOMPARE(m_holder->changes, 0);
    }

    void anUnknownIdChoosesNone()
    {
        m_edit->setSystemTag("SH");
        m_edit->setCurrentManagerId(21); // of another server
        QTRY_COMPARE(m_holder->loads, 1);
        QCOMPARE(chosen(), None);
        QCOMPARE(m_edit->text(), QString());
    }

    void theChoiceStaysAcrossALoadAndGoesWithAForeignTag()
    {
        load("");
        m_edit->setCurrentManagerId(12);
        load("SH");
        QCOMPARE(chosen(), 12);
        m_edit->setSystemTag("SZ");
        QCOMPARE(chosen(), None);
        QCOMPARE(m_edit->text(), QString());
        QTRY_COMPARE(m_holder->loads, 3);
        QCOMPARE(m_holder->changes, 0);
    }

    void aLoadDoesNotInterruptTyping()
    {
        load("SH");
        typeChinese(m_edit, " 招商银行");
        QCOMPARE(chosen(), 12);
        load("SH");
        QCOMPARE(chosen(), 12);
        QCOMPARE(m_edit->text(), QString(" 招商银行"));
    }

    void aBoundUserIsOfferedHisInstitutionOnly()
    {
        const auto user = boost::make_shared<nvservice::CUserInfo>();
        user->institutionId = 13;
        support::logInAs(user);
        load("SH");
        m_edit->setDependUser(true);
        QTest::keyClick(m_edit, Qt::Key_Down);
        QCOMPARE(matches(), QStringList("招商证券"));
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        m_edit->setDependUser(false);
        QTest::keyClick(m_edit, Qt::Key_Down);
        QCOMPARE(matches().size(), 4);
    }

    void nullAndForeignRecordsAreSkipped()
    {
        m_shanghaiReply = support::replyWith({nullptr, boost::make_shared<nvservice::CUserInfo>(),
                                              institution(None, "没有编号", "SH"), institution(11, "远山基金", "")});
        load("SH");
        QTest::keyClick(m_edit, Qt::Key_Down);
        // A record without a tag is of the server that was asked.
        QCOMPARE(matches(), QStringList("远山基金"));
    }

    void aReplyAfterDestructionFindsNobody()
    {
        m_shanghai->onQuery = {};
        for (const bool queued : {false, true}) {
            auto* const edit = new QAV::CManagerSearchLineEdit(EditId, m_holder.get());
            edit->setSystemTag("SH");
            const auto query = m_shanghai->takeQuery();
            if (queued) {
                // The reply has left the service thread and waits for the user-interface thread.
                query.handler(m_shanghaiReply);
                support::awaitCallbacks();
            }
            delete edit;
            query.handler(m_shanghaiReply);
        }
        support::centre().shutDown();
        QCoreApplication::processEvents();
        QCOMPARE(m_holder->loads, 0);
    }
};

TEST_WITH_WIDGETS(ManagerSearchLoadingTest)
#include "tst_manager_search_loading.moc"
