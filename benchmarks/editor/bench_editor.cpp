// SPDX-License-Identifier: Apache-2.0
// The group dialog and the account picker at 100 000 accounts on the installation and 10 000 in one group. Compared is
// processor time, of all threads, on the offscreen platform; medians of rounds that take turns, unless said otherwise.
// What is to grow with the number of accounts is measured at a tenth of it too. Ends with 1 when a bound is missed.
#include "editor/AccountUnitRule.h"
#include "editor/EditorFixture.h"
#include <WQ/CSearchIndex.h>

#include <WQ/CUiResourceManager.h>
#include <WQ/StringConversion.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QLineEdit>
#include <QTableWidget>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <thread>

using namespace editor_test;

namespace
{

constexpr int InstallationAccounts = 100000;
constexpr int GroupAccounts = 10000;
/// A fifth in Qt's own table, whose time grows with the square of the rows.
constexpr int PlainTableRows = GroupAccounts / 5;
constexpr int Rounds = 7;

bool g_passed = true;

double processorMs()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// The median over the rounds; `measure` returns milliseconds.
double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// For short stretches of work: the round that nothing else disturbed.
double least(const std::vector<double>& values)
{
    return *std::min_element(values.begin(), values.end());
}

template <typename Work>
double timed(const Work& work)
{
    const double start = processorMs();
    work();
    return processorMs() - start;
}

void show(const char* what, double value)
{
    std::printf("  %-70s %10.3f ms\n", what, value);
}

void bound(const char* what, double value, double limit, bool atLeast = false)
{
    const bool kept = atLeast ? value >= limit : value <= limit;
    g_passed = g_passed && kept;
    std::printf("  %-70s %10.2f  (%s %.0f) %s\n", what, value, atLeast ? "at least" : "at most", limit,
                kept ? "ok" : "MISSED");
}

std::string accountId(int i)
{
    return std::to_string(880000000 + i);
}

QAV::CandidateList makeCandidates(int count)
{
    QAV::CandidateList candidates;
    for (int i = 0; i < count; ++i) {
        candidates.push_back(makeWrapper(makeAccount(2, accountId(i), ShanghaiTag, i % 10 == 1 ? "U1" : "")));
    }
    return candidates;
}

/// Every second account belongs to one of 200 products.
QAV::ProductMap makeProducts(const QAV::CandidateList& candidates)
{
    std::vector<nvservice::IDataPtr> products;
    for (int i = 0; i < 200; ++i) {
        products.push_back(makeProduct("远山稳健成长" + std::to_string(i) + "号集合资产管理计划"));
    }
    QAV::ProductMap map;
    for (std::size_t i = 0; i < candidates.size(); i += 2) {
        map[candidates[i]->account->getKey()] = products[i % products.size()];
    }
    return map;
}

void measureReply()
{
    std::printf("Reply of %d accounts to the unlocked dialog\n", InstallationAccounts);
    EditorFixture client;
    client.addShanghai().held = {nvservice::DataType::Account};
    client.createDialog().setServerName(QString::fromStdString(Shanghai));
    std::vector<nvservice::IDataPtr> records;
    for (const auto& candidate : makeCandidates(InstallationAccounts)) {
        records.push_back(candidate);
    }

    std::vector<double> copies;
    std::vector<double> handOvers;
    std::vector<double> replies;
    std::vector<double> ratios;
    for (int round = 0; round < 10 * Rounds; ++round) {
        client.again([&](WQ::CBaseDialog& dialog) {
            QTRY_COMPARE(client.shanghai.waiting(nvservice::DataType::Account), std::size_t(round + 1));
            QApplication::processEvents();
            // As the service thread hands it over: the signal copies the list, the slot takes the accounts out of it.
            const auto handOver = [&] { emit client.dialog->sigQuaryAccountInfo(records, true, QString()); };
            handOvers.push_back(timed([&] { std::thread(handOver).join(); }));
            replies.push_back(
                timed([&] { QCoreApplication::sendPostedEvents(client.dialog.get(), QEvent::MetaCall); }));
            copies.push_back(timed([&] {
                const std::vector<nvservice::IDataPtr> copy = records;
                if (copy.size() != records.size()) {
                    std::abort();
                }
            }));
            ratios.push_back(replies.back() / copies.back());
            dialog.done(0);
        });
    }
    show("copying the list", median(copies));
    show("the service thread, handing the reply over", median(handOvers));
    show("the user-interface thread, reply to unlocked dialog", median(replies));
    // Side by side: what the memory of the machine can do changes from one moment to the next.
    bound("the user-interface thread / copying the list", median(ratios), 2);
}

void measurePicker()
{
    std::printf("Picker with %d candidates of one type\n", InstallationAccounts);
    EditorFixture client;
    client.addBothServers();
    const auto candidates = makeCandidates(InstallationAccounts);
    const auto products = makeProducts(candidates);
    client.shanghai.replies[nvservice::DataType::Account] =
        support::replyWith(std::vector<nvservice::IDataPtr>(candidates.begin(), candidates.end()));
    client.shenzhen.replies[nvservice::DataType::Account] = {};
    client.createDialog().setAccountProductMap(products);

    std::vector<double> maps;
    std::vector<double> openings;
    std::vector<double> lists;
    std::vector<double> keys;
    double slowestKey = 0;
    for (int round = 0; round < Rounds; ++round) {
        maps.push_back(timed([&] {
            QMap<QString, QString> map;
            for (const auto& candidate : candidates) {
                const auto& account = candidate->account;
                const auto product =
                    boost::dynamic_pointer_cast<nvservice::CProductInfo>(products.value(account->getKey()));
                const QString name = product ? WQ::sToQs(product->productName) : QStringLiteral("未关联产品");
                map.insert(WQ::sToQs(account->getCsKey()),
                           WQ::sToQs(nvservice::accountDisplayID(account)) + '(' + name + ')');
            }
        }));
        client.add(QString(), [&](WQ::CBaseDialog&) {
            client.waitUntilLoaded();
            // From the click on the dialog's button: the candidates of the chosen server are picked out first.
            double start = 0;
            client.boxes.expectDialog([&](WQ::CBaseDialog& picker) {
                QApplication::processEvents();
                openings.push_back(processorMs() - start);
                auto* const box = picker.findChild<QAV::CUserCombobox*>();
                lists.push_back(timed([&] {
                    box->showPopup();
                    box->findChild<QAbstractItemView*>("items")->viewport()->repaint();
                }));
                // The search keys are made beside the user's work; his first key comes when they are there.
                QTest::qWait(500);
                auto* const search = box->findChild<QLineEdit*>("search");
                for (const char key : {'8', '8', '0', '1', ' ', 'y', 's', 'w', 'j', '\b', '\b', '\b', '\b', 'z'}) {
                    keys.push_back(timed([&] {
                        QTest::sendKeyEvent(QTest::Press, search,
                                            key == '\b' ? Qt::Key_Backspace : Qt::Key(toupper(key)),
                                            key == '\b' ? QString() : QString(QLatin1Char(key)), Qt::NoModifier);
                        QApplication::processEvents();
                    }));
                    slowestKey = std::max(slowestKey, keys.back());
                }
                box->hidePopup();
                clickButton(picker, QStringLiteral("取消"));
            });
            start = processorMs();
            client.click(QStringLiteral("添加账号"));
            client.click(QStringLiteral("关闭"));
        });
    }
    show("the map of keys and texts alone", median(maps));
    show("opening the picker from the dialog's button, to the first frame", median(openings));
    show("opening its list, to the first frame", median(lists));
    show("one key in the search, with its frame", median(keys));
    bound("opening / the map alone", median(openings) / median(maps), 3);
    bound("slowest key with its frame, ms", slowestKey, 16);
}

void measureMatching()
{
    std::printf("Matching at %d accounts\n", InstallationAccounts);
    WQ::CSearchIndex index;
    const double making = timed([&] {
        for (int i = 0; i < InstallationAccounts; ++i) {
            index.append(QStringLiteral("%1(%2)")
                             .arg(880000000 + i)
                             .arg(i % 2 ? QStringLiteral("未关联产品")
                                        : QStringLiteral("远山稳健成长%1号集合资产管理计划").arg(i % 200)));
        }
    });
    show("making the search keys", making);
    std::printf("  %-70s %10.1f MB\n", "size of the search keys", double(index.keys().size()) / 1e6);
    for (const char* const input : {"8", "88004", "880099999", "远山", "yswj", "jihua", "wjcz19", "xq", "q"}) {
        const auto words = WQ::CSearchIndex::words(QString::fromUtf8(input));
        std::vector<double> passes;
        std::vector<double> matches;
        std::size_t found = 0;
        long sum = 0;
        for (int round = 0; round < Rounds; ++round) {
            passes.push_back(timed([&] {
                for (const char byte : index.keys()) {
                    sum += byte;
                }
            }));
            matches.push_back(timed([&] { found = index.find(words).size(); }));
        }
        if (sum == 0) {
            std::abort();
        }
        const std::string what = std::string("matching / one pass over the keys, \"") + input + "\" in " +
                                 std::to_string(found) + " of them";
        show("one pass over the bytes of the search keys", median(passes));
        bound(what.c_str(), median(matches) / median(passes), 5);
    }
}

/// Rows that come into a table which is on screen, as accounts come from the picker, until they are painted.
double fillPlainTable()
{
    QTableWidget table(0, 5);
    table.resize(500, 400);
    table.show();
    QApplication::processEvents();
    return timed([&] {
        for (int row = 0; row < PlainTableRows; ++row) {
            table.insertRow(row);
            for (int column = 0; column < 4; ++column) {
                table.setItem(row, column, new QTableWidgetItem(QStringLiteral("text")));
            }
            table.setCellWidget(row, 4, new QPushButton(QStringLiteral("删除")));
        }
        QApplication::processEvents();
    });
}

void measureGroup()
{
    std::printf("Group of %d accounts in the dialog\n", GroupAccounts);
    EditorFixture client;
    client.addShanghai();
    const auto candidates = makeCandidates(GroupAccounts);
    AccountList accounts;
    for (const auto& candidate : candidates) {
        accounts.push_back(candidate->account);
    }
    const AccountList tenth(accounts.begin(), accounts.begin() + GroupAccounts / 10);
    const auto group = makeGroup("组", ShanghaiTag, 101, accounts);
    const auto smallGroup = makeGroup("组", ShanghaiTag, 101, tenth);
    const auto emptyGroup = makeGroup("组", ShanghaiTag, 101, {});
    const QString server = QString::fromStdString(Shanghai);

    std::vector<double> fills;
    std::vector<double> smallFills;
    std::vector<double> frames;
    std::vector<double> visible;
    std::vector<double> backs;
    std::vector<double> smallBacks;
    client.createDialog();
    const auto fill = [&](const boost::shared_ptr<nvservice::CAccountGroup>& filled, std::vector<double>& times) {
        client.dialog->setGroupInfo(emptyGroup, server);
        QApplication::processEvents();
        times.push_back(timed([&] { client.dialog->setGroupInfo(filled, server); }));
    };
    const auto writeBack = [&](std::vector<double>& times) {
        const auto written = boost::make_shared<nvservice::CAccountGroup>();
        QString serverName = server;
        times.push_back(timed([&] { client.dialog->getGroupInfo(written, serverName); }));
    };
    for (int round = 0; round < 3 * Rounds; ++round) {
        fill(smallGroup, smallFills);
        writeBack(smallBacks);
        fill(group, fills);
        writeBack(backs);
        frames.push_back(timed([&] {
            client.dialog->show();
            QApplication::processEvents();
        }));
        client.dialog->setGroupInfo(smallGroup, server);
        QApplication::processEvents();
        visible.push_back(timed([&] {
            client.dialog->setGroupInfo(group, server);
            QApplication::processEvents();
        }));
        client.dialog->hide();
    }
    const double plain = fillPlainTable();
    show("filling the table", least(fills));
    show("first frame", median(frames));
    show("writing back", least(backs));
    show("filling the visible table, to the first frame", median(visible));
    show("the same of a QTableWidget with 2 000 rows and buttons", plain);
    bound("filling, 10 000 / 1 000 accounts", least(fills) / least(smallFills), 15);
    bound("writing back, 10 000 / 1 000 accounts", least(backs) / least(smallBacks), 15);
    bound("QTableWidget with 2 000 rows and buttons / dialog with 10 000", plain / median(visible), 100, true);
}

void measureUnitRule()
{
    std::printf("Unit rule\n");
    AccountList accounts;
    for (int i = 0; i < 10 * GroupAccounts; ++i) {
        accounts.push_back(makeAccount(2, accountId(i), ShanghaiTag, i % 2 ? "U" : ""));
    }
    std::vector<double> times[3];
    for (int round = 0; round < 3 * Rounds; ++round) {
        for (int size = 0; size < 3; ++size) {
            constexpr int Counts[] = {GroupAccounts / 10, GroupAccounts, 10 * GroupAccounts};
            const AccountList some(accounts.begin(), accounts.begin() + Counts[size]);
            times[size].push_back(timed([&] {
                if (QAV::firstAccountWithOwnUnit(some)) {
                    std::abort();
                }
            }));
        }
    }
    show("10 000 checked accounts without a conflict", least(times[1]));
    bound("10 000 / 1 000 accounts", least(times[1]) / least(times[0]), 15);
    // Ten times as many accounts lie outside the processor's own caches.
    bound("100 000 / 10 000 accounts", least(times[2]) / least(times[1]), 20);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    WQ::CUiResourceManager::instance()->applyTo(application);
    const std::pair<const char*, void (*)()> parts[] = {{"reply", measureReply},
                                                        {"picker", measurePicker},
                                                        {"matching", measureMatching},
                                                        {"group", measureGroup},
                                                        {"units", measureUnitRule}};
    bool known = false;
    for (const auto& [name, measure] : parts) {
        if (argc > 1 && std::string(argv[1]) != name) {
            continue;
        }
        known = true;
        measure();
    }
    if (!known) {
        std::printf("Parts: reply, picker, matching, group, units\n");
        return 2;
    }
    std::printf(g_passed ? "All bounds kept\n" : "BOUNDS MISSED\n");
    return g_passed ? 0 : 1;
}
