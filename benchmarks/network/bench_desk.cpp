// SPDX-License-Identifier: Apache-2.0
// The client on an embedded service with many groups and accounts: from the log-in to the first rows, and to all rows.
// Beside it the query of the same groups over TLS on the loopback address, without a client around it. All times are
// those of the clock on the wall, so the machine should have nothing else to do.

#include "Harness.h"
#include "NetworkDesk.h"

#include "support/Paths.h"
#include "workbench/CInstallation.h"
#include "workbench/CMainWindow.h"
#include "workbench/CPluginCatalogue.h"
#include "workbench/CSession.h"
#include "workbench/CUserSettings.h"

#include <QAV/IkolmDockableWidget.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CStandardHpfTable.h>
#include <luawrapper/LuaModuleCtrl.h>
#include <nvservice/MetaTypes.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QEventLoop>
#include <QTemporaryDir>

#include <chrono>
#include <optional>
#include <stdexcept>

namespace
{

using bench::Side;
using WallClock = std::chrono::steady_clock;

constexpr int Rounds = 3;
constexpr double Bound = 1.5;
const QString PanelClass = QStringLiteral("QAV::CAccountGroupRiskManagePanel");

double since(WallClock::time_point begin)
{
    return std::chrono::duration<double>(WallClock::now() - begin).count();
}

template <typename Condition>
void turnUntil(Condition isMet)
{
    while (!isMet()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

double queryOverTheNetwork(const QString& file, support::TestCertificates& certificates, std::size_t groups)
{
    bench::NetworkDesk desk(file, certificates);
    const auto begin = WallClock::now();
    const std::size_t count = desk.queryAllGroups().size();
    const double time = since(begin);
    if (count != groups) {
        throw std::runtime_error("groups are missing");
    }
    return time;
}

struct DeskTimes {
    double firstRows = 0;
    double allRows = 0;
};

DeskTimes useClient(const QString& file, const QString& settingsFile, int groups)
{
    workbench::CInstallation installation;
    bench::require(installation.open(file, {}));
    workbench::CSession session;
    workbench::CUserSettings settings(settingsFile);
    workbench::CPluginCatalogue plugins;
    plugins.scan({support::builtFile(QAV_PLUGIN_FOLDER)});

    const auto begin = WallClock::now();
    std::optional<utils::NVError> loggedIn;
    session.logIn(bench::User, bench::Password,
                  [&](const workbench::CSession::Outcome& outcome) { loggedIn = outcome.error; });
    turnUntil([&] { return loggedIn.has_value(); });
    bench::require(*loggedIn);
    workbench::CMainWindow window(session, settings, plugins);
    window.restoreLayout();
    window.show();
    QWidget* const panel = window.panel(PanelClass);
    if (!panel) {
        throw std::runtime_error("there is no panel");
    }
    const QAbstractItemModel& rows = *panel->findChild<WQ::CStandardHpfTable*>()->view()->model();
    DeskTimes times;
    turnUntil([&] { return rows.rowCount() > 0; });
    QApplication::processEvents(); // they are painted
    times.firstRows = since(begin);
    const auto* const mask = panel->findChild<WQ::CLoadingMaskWidget*>(QString(), Qt::FindDirectChildrenOnly);
    turnUntil([&] { return rows.rowCount() == groups && mask->isHidden(); });
    times.allRows = since(begin);
    window.close();
    session.logOut();
    return times;
}

int run(int size)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("store.db");
    bench::makeDatabase(file, size, size);
    support::TestCertificates certificates;

    std::vector<double> allRows;
    Side query{"the query over the network",
               [&] { return queryOverTheNetwork(file, certificates, static_cast<std::size_t>(size)); }};
    Side firstRows{"from the log-in to the first rows", [&] {
                       const DeskTimes times = useClient(file, folder.filePath("client.ini"), size);
                       allRows.push_back(times.allRows);
                       return times.firstRows;
                   }};
    bench::interleave({&query, &firstRows}, Rounds);

    std::printf("%d groups, %d accounts\n", size, size);
    bench::Report report;
    report.time(query.name, query.result);
    report.time(firstRows.name, firstRows.result);
    report.time("from the log-in to all rows and products", bench::median(allRows));
    report.atMost("first rows beside the query", firstRows.result / query.result, Bound);
    return report.allKept() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    bench::prepareProcess();
    QApplication application(argc, argv);
    nvservice::registerMetaTypes();
    try {
        bench::require(utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->load(
            support::sourceFile("data/modules.lua").toStdString()));
        return run(argc > 1 ? QByteArray(argv[1]).toInt() : 100000);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 2;
    }
}
