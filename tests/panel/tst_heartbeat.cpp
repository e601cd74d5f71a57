// SPDX-License-Identifier: Apache-2.0
#include "FlowDialogs.h"
#include "PanelTest.h"
#include "support/Heartbeat.h"

#include "service/store/Accounts.h"
#include "support/TestProgram.h"

#include <QAV/CManagerSearchLineEdit.h>
#include <QAV/CUserCombobox.h>
#include <WQ/CBaseDialog.h>
#include <WQ/CComboBox.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CStandardTabControl.h>

#include <QElapsedTimer>

#include <algorithm>
#include <ctime>
#include <limits>

using namespace panel_test;

namespace
{

/// How many groups there are, and accounts. More of them take longer to make than the suite may.
int dataSize()
{
    const int wanted = qEnvironmentVariableIntValue("QAV_HEARTBEAT_SIZE");
    return wanted > 0 ? wanted : 10000;
}

/// Milliseconds of processor time between two turns of the event loop.
#if defined(QAV_TIMELESS_BUILD)
constexpr double LongestPause = std::numeric_limits<double>::infinity();
#elif defined(QAV_SLOW_BUILD)
constexpr double LongestPause = 1000;
#else
constexpr double LongestPause = 100;
#endif

service::SampleOptions sample()
{
    service::SampleOptions options;
    options.servers = 1;
    options.groups = dataSize();
    options.accounts = dataSize();
    return options;
}

} // namespace

/// With many groups and accounts, no interaction keeps the user-interface thread from its events for long.
class HeartbeatTest : public PanelTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        PanelTest::init();
        support::switchModules(moduleSwitches());
        m_servers = std::make_unique<RealServers>(sample());
        m_client->createPanel().resize(1280, 800);
        turn();
    }

    void cleanupTestCase()
    {
        m_client->destroyPanel();
        m_servers.reset();
        PanelTest::cleanup();
    }

    void init() {} // one client for all functions
    void cleanup() { m_boxes->verify(); }

    void itSeesAThreadThatIsKeptFromItsEvents()
    {
        turn();
        m_heartbeat.restart();
        turn();
        QVERIFY(m_heartbeat.longestPause() < 40);
        QTimer::singleShot(0, [] {
            timespec from{};
            timespec now{};
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &from);
            do {
                clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
            } while ((now.tv_sec - from.tv_sec) * 1000000000L + now.tv_nsec - from.tv_nsec < 50000000L);
        });
        turn();
        QVERIFY(m_heartbeat.longestPause() >= 50);
    }

    void theAnswerToAQuery()
    {
        const QString server = QString::fromStdString(m_servers->servers().front().subSystem.name);
        play("switch server", [&] { m_client->panel->switchSystem(0, server); }, [this] { return isLoaded(); });
    }

    void aRefresh()
    {
        play("refresh", [&] { pressButton(*m_client->panel, "立即刷新"); }, [this] { return isLoaded(); });
    }

    void searching()
    {
        play(
            "search by a character",
            [&] {
                m_client->typeInSearchEdit("一");
                QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
            },
            [this] { return m_client->model()->rowCount() < dataSize(); });
        play(
            "search by pinyin",
            [&] {
                m_client->searchEdit()->clear();
                QTest::keyClicks(m_client->searchEdit(), "lianghua");
                QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
            },
            [this] { return m_client->model()->rowCount() > 0; });
        play(
            "end of the search",
            [&] {
                m_client->searchEdit()->clear();
                QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
            },
            [this] { return isLoaded(); });
    }

    void sorting()
    {
        for (int column = 0; column < 3; ++column) {
            for (const char* order : {"up", "down", "off"}) {
                const QByteArray what = "sort column " + QByteArray::number(column) + " " + order;
                play(
                    what, [&] { clickHeader(column, m_client->table()->header()->sectionSize(column) / 2); },
                    [this] { return isLoaded(); });
            }
        }
    }

    void filtering()
    {
        const auto popup = [this] { return m_client->table()->findChild<QFrame*>("tableFilterPopup"); };
        play(
            "open the filter of the institutions", [&] { clickHeader(2, 13); },
            [&] { return popup() && popup()->isVisible(); });
        play(
            "choose one institution",
            [&] {
                QTest::mouseClick(popup()->findChild<QCheckBox*>("tableFilterAll"), Qt::LeftButton, {}, {8, 8});
                auto* const values = popup()->findChild<QListView*>();
                values->setCurrentIndex(values->model()->index(0, 0));
                QTest::keyClick(values, Qt::Key_Space);
                QTest::mouseClick(popup()->findChild<QPushButton*>("tableFilterOk"), Qt::LeftButton);
            },
            [this] { return m_client->model()->rowCount() < dataSize(); });
        play("drop the filter", [&] { m_client->table()->clearFilter(); }, [this] { return isLoaded(); });
    }

    void scrolling()
    {
        QWidget* const view = m_client->table()->view();
        play(
            "scroll to the end", [&] { QTest::keyClick(view, Qt::Key_End, Qt::ControlModifier); }, [] { return true; });
        play(
            "scroll page by page",
            [&] {
                for (int page = 0; page < 100; ++page) {
                    QTest::keyClick(view, Qt::Key_PageUp);
                    QCoreApplication::processEvents();
                }
            },
            [] { return true; });
        play(
            "scroll to the start", [&] { QTest::keyClick(view, Qt::Key_Home, Qt::ControlModifier); },
            [] { return true; });
    }

    void theGroupDialogAndItsPicker()
    {
        QSet<QString> mainAccounts;
        const auto& server = m_servers->servers().front();
        for (const service::StoredAccount& account :
             service::loadAccounts({m_servers->store().connection(), server.subSystem}, {})) {
            if (account.info->unitId.empty()) {
                mainAccounts.insert(QString::fromStdString(account.info->getCsKey()));
            }
        }
        const auto usePicker = [&](WQ::CBaseDialog& picker) {
            auto* const types = picker.findChild<WQ::CComboBox*>();
            auto* const box = picker.findChild<QAV::CUserCombobox*>();
            turn();
            play("choose an account type", [&] { types->setCurrentIndex(1); }, [&] { return box->itemCount() > 1000; });
            play(
                "open the list of accounts", [&] { QTest::mouseClick(box, Qt::LeftButton); },
                [&] { return box->isPopupOpen(); });
            auto* const search = box->findChild<QLineEdit*>(QStringLiteral("search"));
            play("search the list of accounts", [&] { QTest::keyClicks(search, "0"); }, [] { return true; });
            play(
                "check all accounts", [&] { pressButton(*search->parentWidget(), "全选"); },
                [&] { return box->checkedCount() > 1000; });
            play(
                "close the list", [&] { QTest::keyClick(search, Qt::Key_Escape); },
                [&] { return !box->isPopupOpen(); });
            box->setCheckItems(mainAccounts);
            QVERIFY(box->checkedCount() > 1000);
            pressButton(picker, "确定");
        };
        const auto useDialog = [&](WQ::CBaseDialog& dialog) {
            auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
            auto* const table = dialog.findChild<WQ::CStandardSimpleTable*>();
            QVERIFY(waitUntil([&] { return mask->isHidden(); }));
            turn();
            m_boxes->expectDialog(usePicker);
            play(
                "pick thousands of accounts", [&] { pressButton(dialog, "添加账号"); },
                [&] { return table->rowCount() > 1000; });
            auto* const view = table->findChild<QAbstractItemView*>();
            play(
                "scroll thousands of accounts",
                [&] {
                    for (int page = 0; page < 50; ++page) {
                        QTest::keyClick(view, Qt::Key_PageDown);
                        QCoreApplication::processEvents();
                    }
                },
                [] { return true; });
            play(
                "sort thousands of accounts", [&] { table->sortByColumn(1, Qt::DescendingOrder); },
                [] { return true; });
            pressButton(dialog, "关闭");
        };
        play("open and close the group dialog", [&] { openRow(QAV::EditRowButton, useDialog); }, [] { return true; });
        play(
            "open, close it again",
            [&] {
                openRow(QAV::EditRowButton, [&](WQ::CBaseDialog& dialog) {
                    auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
                    QVERIFY(waitUntil([&] { return mask->isHidden(); }));
                    pressButton(dialog, "关闭");
                });
            },
            [] { return true; });
    }

    void savingAGroup()
    {
        m_boxes->expectDialog([&](WQ::CBaseDialog& dialog) {
            auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
            QVERIFY(waitUntil([&] { return mask->isHidden(); }));
            auto* const name = dialog.findChild<WQ::CLineEdit*>();
            name->setText(QStringLiteral("改过的组"));
            pressButton(dialog, "保存");
            m_boxes->expectMessage(QMessageBox::Information, "提示", "编辑账号组成功!");
        });
        play(
            "save a group",
            [&] {
                m_client->panel->handleEvent(WQ::RowButtonClicked, 4, QAV::EditRowButton, keyOfRow(0), nullptr);
                QVERIFY(waitUntil([this] { return m_client->mask()->isVisible(); }));
            },
            [this] { return isLoaded(); });
    }

    void addingAGroup()
    {
        const auto accounts =
            service::loadAccounts({m_servers->store().connection(), m_servers->servers().front().subSystem}, {});
        const auto found = std::find_if(accounts.begin(), accounts.end(), [](const service::StoredAccount& each) {
            return each.info->unitId.empty() && !each.excluded &&
                   each.stateCode != nvservice::CKolmAccountInfo::ClosedState &&
                   each.info->institutionId != nvservice::NoInstitutionId;
        });
        QVERIFY(found != accounts.end());
        const nvservice::CAccountInfo& account = *found->info;
        const auto pick = [&account](WQ::CBaseDialog& picker) {
            auto* const types = picker.findChild<WQ::CComboBox*>();
            types->setCurrentIndex(types->findData(static_cast<int>(account.brokerType)));
            picker.findChild<QAV::CUserCombobox*>()->setCheckItems({QString::fromStdString(account.getCsKey())});
            pressButton(picker, "确定");
        };
        m_boxes->expectDialog([&](WQ::CBaseDialog& dialog) {
            auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
            QVERIFY(waitUntil([&] { return mask->isHidden(); }));
            dialog.findChild<WQ::CLineEdit*>()->setText(QStringLiteral("新的组"));
            dialog.findChild<QAV::CManagerSearchLineEdit*>()->setCurrentManagerId(account.institutionId);
            m_boxes->expectDialog(pick);
            pressButton(dialog, "添加账号");
            pressButton(dialog, "保存");
            m_boxes->expectMessage(QMessageBox::Information, "提示", "添加账号组成功!");
        });
        play(
            "add a group",
            [&] {
                ++m_groups;
                pressButton(*m_client->panel, "添加账号组");
                QVERIFY(waitUntil([this] { return m_client->mask()->isVisible(); }));
            },
            [this] { return isLoaded(); });
        QCOMPARE(m_client->model()->getDataByKey(m_client->table()->currentKey())->getQStringValue(0),
                 QStringLiteral("新的组"));
    }

    void theRiskSettings()
    {
        const auto useDialog = [&](WQ::CBaseDialog& dialog) {
            QVERIFY(waitUntil([&] { return isUncovered(dialog); }));
            for (auto* const tabs : dialog.findChildren<WQ::CStandardTabControl*>()) {
                for (int page = 0; page < tabs->count(); ++page) {
                    play("turn a page of the risk settings", [&] { tabs->setCurrentIndex(page); }, [] { return true; });
                }
            }
            m_boxes->expectMessage(QMessageBox::Information, "提示", "保存成功");
            play(
                "save the risk settings", [&] { pressButton(dialog, "保存设置"); },
                [&] { return isUncovered(dialog); });
            dialog.close();
        };
        play(
            "open, close the risk settings", [&] { openRow(QAV::RiskSettingsRowButton, useDialog); },
            [] { return true; });
    }

    void deletingAGroup()
    {
        m_boxes->expectQuestion(QMessageBox::Question, "提示", "确定要删除该项?", QMessageBox::Yes);
        m_boxes->expectMessage(QMessageBox::Information, "提示", "删除账号组成功!");
        play(
            "delete a group",
            [&] {
                --m_groups;
                m_client->panel->handleEvent(WQ::RowButtonClicked, 4, QAV::DeleteRowButton, keyOfRow(0), nullptr);
                QVERIFY(waitUntil([this] { return m_client->mask()->isVisible(); }));
            },
            [this] { return isLoaded(); });
    }

private:
    /// Plays one interaction until `isDone` and compares its longest pause with the limit.
    void play(const char* what, const std::function<void()>& interaction, const std::function<bool()>& isDone)
    {
        // It may be a part of another one.
        const double before = m_heartbeat.longestPause();
        turn();
        m_heartbeat.restart();
        QElapsedTimer timer;
        timer.start();
        interaction();
        QVERIFY2(waitUntil(isDone), what);
        const qint64 elapsed = timer.elapsed();
        turn();
        const double pause = m_heartbeat.longestPause();
        m_heartbeat.restart(before);
        qInfo("%-40s %6.1f ms, done after %lld ms", what, pause, elapsed);
        if (pause > LongestPause) {
            QFAIL(qPrintable(QStringLiteral("%1 blocks for %2 ms").arg(what).arg(pause)));
        }
    }

    /// Lets the event loop turn a few times.
    static void turn()
    {
        int turns = 0;
        waitUntil([&turns] { return ++turns > 5; });
    }

    bool isLoaded() const { return m_client->mask()->isHidden() && m_client->model()->rowCount() == m_groups; }
    QString keyOfRow(int row) const { return m_client->model()->getDataByRow(row)->getKey(); }

    void openRow(int button, const support::ScriptedPresenter::Script& script)
    {
        m_boxes->expectDialog(script);
        m_client->panel->handleEvent(WQ::RowButtonClicked, 4, button, keyOfRow(0), nullptr);
    }

    void clickHeader(int column, int fromRight)
    {
        const QHeaderView* const header = m_client->table()->header();
        const int right = header->sectionViewportPosition(column) + header->sectionSize(column);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, {right - fromRight, header->height() / 2});
    }

    int m_groups = dataSize();
    std::unique_ptr<RealServers> m_servers;
    support::Heartbeat m_heartbeat;
};

TEST_WITH_WIDGETS(HeartbeatTest)
#include "tst_heartbeat.moc"
