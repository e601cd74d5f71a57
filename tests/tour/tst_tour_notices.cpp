// SPDX-License-Identifier: Apache-2.0
#include "Hands.h"
#include "OtherDesk.h"
#include "TourTest.h"

#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"
#include "support/records/Requests.h"

#include <WQ/IBaseHpfTableModel.h>
#include <WQ/StringConversion.h>
#include <nvservice/DataType.h>

#include <QDateTime>
#include <QLabel>
#include <QToolButton>

#include <map>
#include <random>

using namespace tour;
namespace DataType = nvservice::DataType;
using nvservice::CAccountGroup;
using nvservice::CAccountGroupRCConfig;

namespace
{

constexpr int DefaultNoticeSteps = 60;
constexpr int DefaultNoticeSeed = 20260223;
const QString HistoryClass = "QAV::CHistoryPanel";
const QString GroupsClass = "QAV::CAccountGroupRiskManagePanel";

} // namespace

/// Two panels, and two users who change the same groups at random: what the notices of the panels say is what the
/// database says. QAV_NOTICE_SEED and QAV_NOTICE_STEPS choose another course.
class TourNoticesTest : public TourTest
{
    Q_OBJECT

    /// A change that the database holds.
    struct Change {
        qint64 id;
        QString login;
        qint64 at;
        int groupId;
    };

    /// The changes of Shanghai that were carried out after an audit row, in their order.
    QVector<Change> changesSince(qint64 row)
    {
        const QStringList lines = database().column(
            "SELECT a.id || '|' || a.login || '|' || a.at || '|' || a.record_key FROM audit a"
            " JOIN sub_system s ON s.id = a.server_id WHERE s.name = ? AND a.outcome = 0 AND a.id > ? ORDER BY a.id",
            {Shanghai, row});
        QVector<Change> changes;
        for (const QString& line : lines) {
            const QStringList parts = line.split('|');
            changes.append({parts[0].toLongLong(), parts[1], parts[2].toLongLong(), parts.last().toInt()});
        }
        return changes;
    }
    qint64 lastRow() { return database().value("SELECT coalesce(max(id), 0) FROM audit").toLongLong(); }
    QString nameOf(const QString& login)
    {
        return database()
            .value("SELECT u.display_name FROM app_user u JOIN sub_system s ON s.id = u.server_id"
                   " WHERE s.name = ? AND u.login = ?",
                   {Shanghai, login})
            .toString();
    }

    /// The last change of each group by somebody else, since the panel was loaded and the user's own last change of it.
    QString expectedTitle()
    {
        std::map<int, Change> foreign;
        for (const Change& change : changesSince(m_groupsLoaded)) {
            foreign.erase(change.groupId);
            if (change.login != "admin") {
                foreign.insert({change.groupId, change});
            }
        }
        const auto latest = std::max_element(foreign.begin(), foreign.end(),
                                             [](const auto& a, const auto& b) { return a.second.id < b.second.id; });
        if (latest == foreign.end()) {
            return {};
        }
        return QString("%1个账号组已被修改（%2 %3）")
            .arg(QString::number(foreign.size()), nameOf(latest->second.login),
                 QDateTime::fromMSecsSinceEpoch(latest->second.at).toString("HH:mm"));
    }
    QString expectedNotice()
    {
        const QVector<Change> changes = changesSince(m_historyLoaded);
        return changes.isEmpty()
                   ? QString()
                   : QString("有新的修改：%1（%2） %3")
                         .arg(nameOf(changes.last().login), changes.last().login,
                              QDateTime::fromMSecsSinceEpoch(changes.last().at).toString("yyyy-MM-dd HH:mm:ss"));
    }
    QString shownTitle() const
    {
        const auto* const dock = m_client->window().findChild<QDockWidget*>("dock." + GroupsClass);
        const auto* const button = dock->findChild<QToolButton*>("changeNotice");
        return button->isHidden() ? QString() : button->text();
    }
    QString shownNotice() const
    {
        for (const QLabel* const label : m_client->window().panel(HistoryClass)->findChildren<QLabel*>()) {
            if (label->text().startsWith("有新的修改") || label->text().startsWith("可能有")) {
                return label->text();
            }
        }
        return {};
    }

    // What happens.
    void changeElsewhere()
    {
        const QStringList groups = database().column(
            "SELECT g.name FROM account_group g JOIN sub_system s ON s.id = g.server_id WHERE s.name = ? LIMIT 6",
            {Shanghai});
        const QString name = groups[below(groups.size())];
        OtherDesk& desk = below(2) == 0 ? *m_editor : *m_risk;
        if (&desk == m_risk.get()) {
            desk.configure(database().groupId(Shanghai, name), [](CAccountGroupRCConfig& config) {
                config.ratProofSetting.washTradeForbidden = !config.ratProofSetting.washTradeForbidden;
            }); // of some groups it is refused, because a category does not exist
        } else if (below(4) == 0) {
            QVERIFY(!desk.add(name, name).isEmpty()); // refused: nobody hears of it
        } else {
            const QString other = QString("改名%1").arg(++m_serial);
            QCOMPARE(desk.modify(name, [&](CAccountGroup& group) { group.groupName = WQ::qsToS(other); }), QString());
        }
    }
    void changeHere()
    {
        const QStringList groups = database().column(
            "SELECT g.name FROM account_group g JOIN sub_system s ON s.id = g.server_id WHERE s.name = ? LIMIT 6",
            {Shanghai});
        const auto group =
            boost::dynamic_pointer_cast<CAccountGroup>(m_editor->group(groups[below(groups.size())])->copy());
        group->groupName = WQ::qsToS(QString("自己%1").arg(++m_serial));
        bool isDone = false;
        utils::NVError error;
        support::centre()
            .getClientByName(WQ::qsToS(Shanghai))
            ->operateData_async(
                support::shared(
                    support::operationOn(DataType::AccountGroup, nvservice::EZvDataOperation::Modify, group)),
                m_gate.queued(QAV::OperateCallback([&](const utils::NVError& outcome, const bson::BSONObj&) {
                    error = outcome;
                    isDone = true;
                })));
        QTRY_VERIFY_WITH_TIMEOUT(isDone, Patience);
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
    }
    void load(const QString& className)
    {
        m_client->window().openPanel(className);
        m_client->window().refreshCurrentPanel();
        if (className == GroupsClass) {
            m_client->waitUntilLoaded();
            m_groupsLoaded = lastRow();
        } else {
            waitForHistory();
        }
    }
    void waitForHistory()
    {
        const auto isLoaded = [this] {
            const auto labels = m_client->window().panel(HistoryClass)->findChildren<QLabel*>();
            return std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
                return label->text().startsWith("共") || label->text().startsWith("已显示");
            });
        };
        QTRY_VERIFY_WITH_TIMEOUT(isLoaded(), Patience);
        m_historyLoaded = lastRow();
    }
    /// Goes to another server and comes back: both panels begin anew, the one behind when it comes to the front.
    void goAwayAndComeBack()
    {
        m_client->window().openPanel(GroupsClass);
        m_client->chooseServer(Shenzhen);
        const int heard = m_heard;
        const int before = int(changesSince(0).size());
        changeElsewhere();
        // A panel that is loaded before its client has heard of a change tells it, though it shows it.
        QTRY_VERIFY_WITH_TIMEOUT(changesSince(0).size() == before || m_heard > heard, Patience);
        QTRY_COMPARE(shownTitle(), QString());
        QCOMPARE(shownNotice(), QString());
        m_client->chooseServer(Shanghai);
        m_groupsLoaded = lastRow();
        changeElsewhere();
        m_client->window().openPanel(HistoryClass);
        waitForHistory();
    }

    int below(int limit) { return int(m_random() % unsigned(limit)); }

private slots:
    void initTestCase()
    {
        startAsAdmin("11-notices");
        m_editor = std::make_unique<OtherDesk>(m_client->databaseFile(), Shanghai, "editor", "editor123");
        m_risk = std::make_unique<OtherDesk>(m_client->databaseFile(), Shanghai, "risk", "risk123");
        m_changes = support::centre().listenToChanges(
            [this](const std::string&, const auto& changes, bool) { m_heard += int(changes.size()); });
    }

    void whatTheNoticesSayIsWhatTheDatabaseSays()
    {
        const int seed = support::setting("QAV_NOTICE_SEED", DefaultNoticeSeed);
        m_random.seed(unsigned(seed));
        load(HistoryClass);
        load(GroupsClass);
        std::map<QString, int> counts;
        for (int step = 0; step < support::setting("QAV_NOTICE_STEPS", DefaultNoticeSteps); ++step) {
            const int at = below(20);
            if (at < 11) {
                changeElsewhere();
            } else if (at < 16) {
                changeHere();
            } else if (at < 18) {
                load(GroupsClass);
            } else if (at < 19) {
                load(HistoryClass);
            } else {
                goAwayAndComeBack();
            }
            if (QTest::currentTestFailed()) {
                return;
            }
            const QString title = expectedTitle();
            const QString notice = expectedNotice();
            ++counts[title.section("个", 0, 0)];
            const bool isSaid =
                QTest::qWaitFor([&] { return shownTitle() == title && shownNotice() == notice; }, Patience / 4);
            QVERIFY2(isSaid,
                     qPrintable(QString("step %1 of seed %2\nshown:    %3\nexpected: %4\nshown:    %5\nexpected: %6")
                                    .arg(QString::number(step), QString::number(seed), shownTitle(), title,
                                         shownNotice(), notice)));
        }
        QVERIFY2(counts.size() >= 4, "the course changes too little");
        database().newAudit();
    }

    void cleanupTestCase()
    {
        m_gate.close();
        m_changes.reset();
        m_editor.reset();
        m_risk.reset();
        TourTest::cleanupTestCase();
    }

private:
    std::mt19937 m_random;
    std::unique_ptr<OtherDesk> m_editor;
    std::unique_ptr<OtherDesk> m_risk;
    QAV::CCallbackGate m_gate;
    std::atomic<int> m_heard{0}; ///< changes
    QAV::CKolmClientCenter::ChangeSubscription m_changes;
    qint64 m_groupsLoaded = 0; ///< the last row of the audit when the panel was loaded
    qint64 m_historyLoaded = 0;
    int m_serial = 0;
};

TEST_WITH_WIDGETS(TourNoticesTest)
#include "tst_tour_notices.moc"
