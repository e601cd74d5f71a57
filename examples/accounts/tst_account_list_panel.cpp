// SPDX-License-Identifier: Apache-2.0
#include "CAccountListPanel.h"

#include <QAV/CKolmClientCenter.h>
#include <WQ/CLineEdit.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/IBaseHpfTableModel.h>
#include <nvservice/CKolmAccountInfo.h>

#include <QtTest>

#include <boost/make_shared.hpp>

#include <mutex>

namespace
{

QAV::CKolmClientCenter& centre()
{
    return *utils::CSingletonT<QAV::CKolmClientCenter>::instance();
}

nvservice::IDataPtr account(const std::string& id, const std::string& name)
{
    auto record = boost::make_shared<nvservice::CKolmAccountInfo>();
    record->account->accountId = id;
    record->account->accountName = name;
    return record;
}

/// A server whose answers the test gives.
class CFakeServer : public QAV::ITransport
{
public:
    /// Answers the oldest request.
    void answer(Reply reply)
    {
        ReplyHandler handler;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            handler = m_requests.front();
            m_requests.erase(m_requests.begin());
        }
        handler(std::move(reply));
    }

    RequestId query(const nvservice::CKolmQueryDataReq&, ReplyHandler handler) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_requests.push_back(std::move(handler));
        return ++m_lastId;
    }
    RequestId operate(const nvservice::COperateDataReq&, ReplyHandler) override { return ++m_lastId; }
    RequestId logIn(const std::string&, const std::string&, LogInHandler) override { return ++m_lastId; }
    void cancel(RequestId) noexcept override {}
    QAV::EConnectionState state() const override { return QAV::EConnectionState::Connected; }
    void setStateHandler(StateHandler) override {}

private:
    std::mutex m_mutex;
    std::vector<ReplyHandler> m_requests;
    RequestId m_lastId = 0;
};

} // namespace

class AccountListPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_server = boost::make_shared<CFakeServer>();
        QVERIFY(centre().addServer("上海", "SH", m_server).isSuccess());
        m_panel = std::make_unique<Example::CAccountListPanel>(nullptr);
        m_panel->switchSystem(1, QStringLiteral("上海"));
    }

    void cleanup()
    {
        centre().shutDown(); // first the callbacks, then what they refer to
        m_panel.reset();
    }

    void theAccountsOfTheServerAreListed()
    {
        m_server->answer(reply({account("0017", "张三"), account("0018", "李四")}));
        QTRY_COMPARE(state(), QStringLiteral("2 个账号"));
        QCOMPARE(texts(1), QStringList({"张三", "李四"}));
        QCOMPARE(texts(4), QStringList({"上海", "上海"}));
    }

    void theSearchFindsByNumberAndByPinyinOfTheName()
    {
        m_server->answer(reply({account("0017", "张三"), account("0018", "李四")}));
        QTRY_COMPARE(state(), QStringLiteral("2 个账号"));
        auto* search = m_panel->findChild<WQ::CLineEdit*>();
        QTest::keyClicks(search, "18");
        QCOMPARE(texts(1), QStringList("李四"));
        search->clear();
        QTest::keyClicks(search, "zs");
        QCOMPARE(texts(1), QStringList("张三"));
        QTest::mouseClick(m_panel->findChild<WQ::CSmallNormalButton*>(), Qt::LeftButton);
        m_server->answer(reply({account("0017", "张三"), account("0020", "王五")}));
        QTRY_COMPARE(texts(0), QStringList("0017")); // the search stays
    }

    void aFailureIsShown()
    {
        QAV::ITransport::Reply failure;
        failure.error = utils::NVError(utils::EErrorCode::Failed, "服务端忙");
        m_server->answer(failure);
        QTRY_VERIFY2(state().contains(QStringLiteral("服务端忙")), qPrintable(state()));
    }

    void onlyTheLatestAnswerIsShown()
    {
        m_panel->onActive();
        m_server->answer(reply({account("0001", "旧")}));
        m_server->answer(reply({account("0002", "新")}));
        QTRY_COMPARE(state(), QStringLiteral("1 个账号"));
        QCOMPARE(texts(1), QStringList("新"));
    }

    void aLateAnswerFindsNobody()
    {
        m_panel.reset();
        m_server->answer(reply({account("0001", "晚")}));
        centre().shutDown();
        QCoreApplication::processEvents();
    }

    void theLayoutIsKept()
    {
        auto* table = m_panel->findChild<WQ::CStandardHpfTable*>();
        table->setColumnWidth(1, 321);
        const QString param = m_panel->param();
        Example::CAccountListPanel next(nullptr);
        next.setParam(QStringLiteral("nonsense"));
        next.setParam(param);
        QCOMPARE(next.findChild<WQ::CStandardHpfTable*>()->columnWidth(1), 321);
    }

private:
    static QAV::ITransport::Reply reply(std::vector<nvservice::IDataPtr> records)
    {
        QAV::ITransport::Reply reply;
        reply.records = std::move(records);
        return reply;
    }

    QString state() const { return m_panel->findChild<WQ::CSimpleTextWidget*>()->text(); }

    /// What a column shows, row by row.
    QStringList texts(int column) const
    {
        const auto* model = m_panel->findChild<WQ::CStandardHpfTable*>()->dataModel();
        QStringList texts;
        for (int row = 0; row < model->rowCount(); ++row) {
            texts << model->index(row, column).data().toString();
        }
        return texts;
    }

    boost::shared_ptr<CFakeServer> m_server;
    std::unique_ptr<Example::CAccountListPanel> m_panel;
};

QTEST_MAIN(AccountListPanelTest)
#include "tst_account_list_panel.moc"
