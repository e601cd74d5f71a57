// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"

#include "editor/ControlId.h"
#include "support/TestProgram.h"
#include "support/qav/CUnsteadyTransport.h"
#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/ActingPresenter.h"

#include <WQ/CBaseDialog.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CCategoryInfo.h>
#include <nvservice/CInstitutionInfo.h>
#include <nvservice/CKolmAccountInfo.h>

#include <QFile>
#include <QPointer>
#include <QThreadPool>

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <thread>
#include <utility>

using namespace panel_test;
using support::CUnsteadyTransport;

namespace
{

#ifdef QAV_SLOW_BUILD
constexpr int Rounds = 240;
#else
constexpr int Rounds = 1000;
#endif
constexpr int WarmUpRounds = 100;
constexpr int Records = 20;
constexpr int EmptyGroup = 2; ///< the id of a group without accounts
constexpr long Mebibyte = 1024 * 1024;

/// What is on its way when the panel goes.
enum EInFlight { GroupQuery, ProductQuery, Operation, RiskSettings, AccountChoice, Everything, InFlightCount };

template <typename Record, typename Fill>
std::vector<nvservice::IDataPtr> makeRecords(Fill fill)
{
    std::vector<nvservice::IDataPtr> records;
    for (int i = 1; i <= Records; ++i) {
        const auto record = boost::make_shared<Record>();
        fill(*record, i);
        records.push_back(record);
    }
    return records;
}

std::vector<nvservice::IDataPtr> answerTo(int dataType)
{
    switch (dataType) {
    case nvservice::DataType::AccountGroup: {
        std::vector<nvservice::IDataPtr> groups;
        for (int i = 1; i <= Records; ++i) {
            groups.push_back(makeGroup(i, "第" + std::to_string(i) + "组", ShanghaiTag, i == EmptyGroup ? 0 : 3));
        }
        return groups;
    }
    case nvservice::DataType::Product: {
        const auto products = boost::make_shared<nvservice::CKolmProductsResp>();
        products->products =
            makeRecords<nvservice::CProductInfo>([](auto& product, int i) { product.productName = std::to_string(i); });
        return {products};
    }
    case nvservice::DataType::Account:
        return makeRecords<nvservice::CKolmAccountInfo>([](auto& account, int i) {
            account.account = boost::make_shared<nvservice::CAccountInfo>();
            account.account->accountId = std::to_string(i);
        });
    case nvservice::DataType::GroupRiskConfig:
        return {boost::make_shared<nvservice::CAccountGroupRCConfig>()};
    case nvservice::DataType::Category:
        return makeRecords<nvservice::CCategoryInfo>([](auto& category, int i) { category.categoryId = i; });
    case nvservice::DataType::Institution:
        return makeRecords<nvservice::CInstitutionInfo>([](auto& institution, int i) {
            institution.institutionId = i;
            institution.name = "机构" + std::to_string(i);
        });
    default:
        return {};
    }
}

#ifndef QAV_SLOW_BUILD
long heapInUse()
{
    return long(mallinfo2().uordblks + mallinfo2().hblkhd);
}

long residentMemory()
{
    malloc_trim(0);
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly)) {
        qFatal("no /proc/self/statm");
    }
    return statm.readAll().split(' ').at(1).toLong() * sysconf(_SC_PAGESIZE);
}
#endif

} // namespace

/// The panel goes while the service thread hands over answers to all that it and its dialogs have asked.
class PanelLifetimeTest : public PanelTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PanelTest::init();
        const auto server = boost::make_shared<support::CFakeTransport>();
        server->onQuery = [](const nvservice::CKolmQueryDataReq& request, const auto& handler) {
            handler(support::replyWith(answerTo(request.dataType)));
        };
        server->onOperate = [](const nvservice::COperateDataReq&, const auto& handler) { handler({}); };
        m_line = boost::make_shared<CUnsteadyTransport>(server);
        support::centre().addServer(Shanghai, ShanghaiTag, m_line);
    }

    void cleanup()
    {
        m_client.reset();
        m_line.reset();
        PanelTest::cleanup();
    }

    void aPanelThatGoesWhileAnswersArriveLeavesNothingBehind()
    {
        int widgets = 0;
#ifndef QAV_SLOW_BUILD
        long heap = 0;
        long resident = 0;
#endif
        for (int round = 0; round < Rounds; ++round) {
            playRound(EInFlight(round % InFlightCount));
            if (QTest::currentTestFailed()) {
                return;
            }
            if (round == 0) {
                widgets = QApplication::allWidgets().size();
            }
            QCOMPARE(QApplication::allWidgets().size(), widgets);
            QThreadPool::globalInstance()->waitForDone(); // the panel has its records destroyed there
            QCOMPARE(m_line->liveRecords(), std::size_t(0));
            QCOMPARE(m_boxes->failures(), QStringList());
#ifndef QAV_SLOW_BUILD
            if (round == WarmUpRounds) {
                resident = residentMemory();
                heap = heapInUse();
            }
#endif
        }
#ifndef QAV_SLOW_BUILD
        const long residentGrowth = residentMemory() - resident;
        const long heapGrowth = heapInUse() - heap;
        qInfo("after %d rounds the heap has grown by %ld bytes, resident memory by %ld", Rounds - WarmUpRounds,
              heapGrowth, residentGrowth);
        QVERIFY2(heapGrowth <= Mebibyte, "heap");
        QVERIFY2(residentGrowth <= Mebibyte, "resident memory");
#endif
    }

    void aPanelMayGoWhileABoxOrDialogIsOpen_data()
    {
        const support::DataRows<int, int> row("rowButton", "dialogEvent");
        row("the outcome of an operation", -1, 0);
        row("the question before a deletion", QAV::DeleteRowButton, 0);
        row("the group dialog", QAV::EditRowButton, 0);
        row("the refusal of a group", QAV::EditRowButton, QAV::SaveGroupButtonId);
        row("the account picker", QAV::EditRowButton, QAV::AddAccountsButtonId);
        row("the question before an account is removed", QAV::EditRowButton, QAV::FirstDeleteButtonId);
        row("the risk settings", QAV::RiskSettingsRowButton, 0);
    }
    void aPanelMayGoWhileABoxOrDialogIsOpen()
    {
        QFETCH(int, rowButton);
        QFETCH(int, dialogEvent);
        m_client->openPanel();
        load();
        m_line->setHold({});
        QPointer<QObject> panel(m_client->panel.get());
        support::ActingPresenter presenter;
        presenter.onMessage = [this](const WQ::MessageRequest& request) {
            m_client->destroyPanel();
            return request.buttons & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok;
        };
        bool isInside = false;
        presenter.onDialog = [&](WQ::CBaseDialog& dialog) {
            if (dialogEvent == 0 || std::exchange(isInside, true)) {
                m_client->destroyPanel();
                return 0;
            }
            if (dialogEvent == QAV::SaveGroupButtonId) {
                return 1; // as the dialog ends when its own checks are satisfied
            }
            dialog.handleEvent(WQ::ButtonClicked, dialogEvent, 0, {}, nullptr);
            return 0;
        };
        if (rowButton < 0) {
            emit m_client->panel->sigOperatorAccountGroupInfo(int(nvservice::EZvDataOperation::Delete), true, {});
        } else {
            m_client->panel->handleEvent(
                WQ::RowButtonClicked, 4, rowButton,
                QStringLiteral("上海分系统|%1").arg(dialogEvent == QAV::SaveGroupButtonId ? EmptyGroup : 1), nullptr);
        }
        QVERIFY(!panel);
        support::settleCallbacks();
    }

private:
    void playRound(EInFlight inFlight)
    {
        m_line->setHold([](const CUnsteadyTransport::Request&) { return true; });
        m_client->openPanel();
        switch (inFlight) {
        case GroupQuery:
            break;
        case ProductQuery:
            for (const auto& held : m_line->heldReplies()) {
                if (held.request.dataType == nvservice::DataType::AccountGroup) {
                    m_line->release(held.number);
                }
            }
            support::settleCallbacks();
            break;
        case RiskSettings:
            load();
            openAndClose(QAV::RiskSettingsRowButton);
            break;
        case AccountChoice:
            load();
            openAndClose(QAV::EditRowButton);
            break;
        case Operation:
        case Everything:
            load();
            m_boxes->expectQuestion(QMessageBox::Question, "提示", "确定要删除该项?", QMessageBox::Yes);
            pressRowButton(QAV::DeleteRowButton);
            if (inFlight == Everything) {
                openAndClose(QAV::EditRowButton);
                openAndClose(QAV::RiskSettingsRowButton);
                m_client->panel->onActive();
            }
            break;
        case InFlightCount:
            break;
        }
        auto held = m_line->heldReplies();
        QVERIFY(!held.empty());
        std::shuffle(held.begin(), held.end(), m_random);

        std::atomic<bool> begun{false};
        std::thread network([&] {
            for (const auto& reply : held) {
                begun = true;
                m_line->release(reply.number);
            }
        });
        while (!begun) {
            std::this_thread::yield();
        }
        // Now and then some answers have become signals that wait for their slot.
        for (int turns = int(m_random() % 40); turns > 0; --turns) {
            std::this_thread::yield();
        }
        m_client->destroyPanel();
        network.join();
        support::settleCallbacks();
    }

    void load()
    {
        m_line->setHold({});
        m_client->panel->onActive();
        support::settleCallbacks(); // the groups
        support::settleCallbacks(); // the products
        QVERIFY(m_client->mask()->isHidden());
        QCOMPARE(m_client->model()->getDataCount(), Records);
        m_line->setHold([](const CUnsteadyTransport::Request&) { return true; });
    }

    void pressRowButton(int button)
    {
        QVERIFY(m_client->panel->handleEvent(WQ::RowButtonClicked, 4, button, "上海分系统|1", nullptr));
    }

    void openAndClose(int button)
    {
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) { dialog.close(); });
        pressRowButton(button);
    }

    std::mt19937 m_random{1};
    boost::shared_ptr<CUnsteadyTransport> m_line;
};

TEST_WITH_WIDGETS(PanelLifetimeTest)
#include "tst_panel_lifetime.moc"
