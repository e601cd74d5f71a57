// SPDX-License-Identifier: Apache-2.0
// The panel's reply slot with 100 000 groups, from the call to the complete table on screen, beside the limit: the same
// row records in a plain vector, one model reset, QTableView.
#include "Harness.h"
#include "Sides.h"

#include "panel/CAccountGroupRiskManagePanel.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CUserManager.h>
#include <WQ/CStandardHpfTable.h>
#include <nvservice/CAccountGroup.h>

#include <QAbstractItemView>
#include <QApplication>

#include <limits>

namespace
{

using namespace bench;

constexpr int GroupCount = 100000;
constexpr int Rounds = 9;

/// A server that never answers: what is measured begins with the answer.
class SilentServer : public QAV::ITransport
{
public:
    RequestId logIn(const std::string&, const std::string&, LogInHandler) override { return 0; }
    RequestId query(const nvservice::CKolmQueryDataReq&, ReplyHandler) override { return 0; }
    RequestId operate(const nvservice::COperateDataReq&, ReplyHandler) override { return 0; }
    void cancel(RequestId) noexcept override {}
    QAV::EConnectionState state() const override { return QAV::EConnectionState::Connected; }
    void setStateHandler(StateHandler) override {}
};

/// Sees the first frame of a widget.
class FrameWatch : public QObject
{
public:
    explicit FrameWatch(QWidget* widget) { widget->installEventFilter(this); }
    void wait()
    {
        while (!m_painted) {
            QApplication::processEvents();
        }
    }
    bool eventFilter(QObject*, QEvent* event) override
    {
        m_painted = m_painted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_painted = false;
};

std::vector<nvservice::IDataPtr> makeReply(const std::vector<Group>& groups)
{
    std::vector<boost::shared_ptr<nvservice::CAccountInfo>> accounts;
    for (int i = 0; i < 10; ++i) {
        accounts.push_back(boost::make_shared<nvservice::CAccountInfo>());
    }
    std::vector<nvservice::IDataPtr> reply;
    for (const Group& group : groups) {
        const auto record = boost::make_shared<nvservice::CAccountGroup>();
        record->groupId = group.id;
        record->groupName = group.name;
        record->institutionName = group.institution;
        record->accounts = accounts;
        record->setSystemTag("SH");
        reply.push_back(record);
    }
    return reply;
}

double fillPanel(QAV::CAccountGroupRiskManagePanel& panel, const std::vector<nvservice::IDataPtr>& reply)
{
    panel.clear();
    QApplication::processEvents();
    FrameWatch watch(panel.findChild<WQ::CStandardHpfTable*>()->view()->viewport());
    const double from = Clock::now();
    QMetaObject::invokeMethod(&panel, "slotQuaryAccountGroup", Qt::DirectConnection,
                              Q_ARG(std::vector<nvservice::IDataPtr>, reply), Q_ARG(int, int(reply.size())));
    watch.wait();
    return seconds(from, Clock::now());
}

} // namespace

int main(int argc, char** argv)
{
    prepareProcess();
    QApplication app(argc, argv);

    auto* const center = utils::CSingletonT<QAV::CKolmClientCenter>::instance();
    center->addServer("上海分系统", "SH", boost::make_shared<SilentServer>());
    const auto user = boost::make_shared<nvservice::CUserInfo>();
    user->rights = {10717, 10719, 10721};
    utils::CSingletonT<QAV::CUserManager>::instance()->setUserInfo(user);

    const std::vector<Group> groups = makeGroups(GroupCount);
    const std::vector<nvservice::IDataPtr> reply = makeReply(groups);
    PlainTable plain;
    QAV::CAccountGroupRiskManagePanel panel(nullptr);
    panel.resize(1280, 800);
    panel.show();
    panel.switchSystem(0, QStringLiteral("上海分系统"));

    Side limit{"L plain vector, one reset, QTableView", [&] { return plain.fill(groups); }};
    Side slot{"reply slot of the panel", [&] { return fillPanel(panel, reply); }};
    interleave({&limit, &slot}, Rounds);
    Report report;
    report.heading("Reply of 100 000 groups to the complete table");
    report.time(limit.name, limit.result);
    report.time(slot.name, slot.result);
    report.atMost("reply slot / L", slot.result / limit.result, 3);
    center->shutDown();
    return report.allKept() ? 0 : 1;
}
