// SPDX-License-Identifier: Apache-2.0
// The editor of one black and white list with 100 000 entries: from what the user does to the painted frame, and from
// the record and back. Processor time of the user-interface thread; medians. Ends with 1 when a bound is missed.
#include "Harness.h"
#include "TradeLimitEditor.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>

using namespace bench;
using namespace rule_editor_test;

namespace
{

constexpr int EntryCount = 100000;
constexpr int Rounds = 9;
/// What takes less is felt as no pause.
constexpr double BoundMs = 100;
/// Taking in a whole file or clipboard of this size.
constexpr double PasteBoundMs = 500;

nvservice::CAccountGroupRCRule makeRule()
{
    nvservice::CAccountGroupRCRule rule;
    for (int i = 0; i < EntryCount; ++i) {
        nvservice::CTradeLimitEntry entry;
        entry.securityCode = std::to_string(100000 + i);
        entry.securityName = "证券" + std::to_string(i);
        rule.list(nvservice::EZvTraderType::Stock).entries.push_back(entry);
    }
    return rule;
}

QString makeRows()
{
    QString rows;
    for (int i = 0; i < EntryCount; ++i) {
        rows += QStringLiteral("%1\t证券%2\t白名单\n").arg(500000 + i).arg(i);
    }
    return rows;
}

class Lists
{
public:
    double load()
    {
        return timed([&] { m_editor.widget().setAccountGroupRCRule(m_rule); });
    }

    double write()
    {
        nvservice::CAccountGroupRCRule rule;
        return timed([&] { m_editor.widget().updateAccountGroupRCRule(rule); });
    }

    double removeOne()
    {
        m_editor.select({EntryCount / 2});
        return press(Qt::Key_Delete);
    }

    double undo() { return press(Qt::Key_Z, Qt::ControlModifier); }

    double add()
    {
        m_editor.edit().setText("999999");
        return timed([&] { QTest::keyClick(&m_editor.edit(), Qt::Key_Return); });
    }

    double changeAll()
    {
        m_editor.table().view()->selectAll();
        m_editor.window.click("change");
        auto* const menu = m_editor.pane().findChild<QMenu*>("changeMenu");
        QAction* const toWhite = menu->actions().at(1);
        const double time = timed([&] { toWhite->trigger(); });
        menu->close();
        return time;
    }

    double search()
    {
        return timed([&] { m_editor.searchEdit().setText("证券9"); });
    }

    double endSearch()
    {
        return timed([&] { m_editor.searchEdit().clear(); });
    }

    double paste()
    {
        load();
        return timed([&] { m_editor.window.click("paste"); });
    }

private:
    template <typename Work>
    static double timed(const Work& work)
    {
        QCoreApplication::processEvents();
        const double from = Clock::now();
        work();
        QCoreApplication::processEvents();
        return seconds(from, Clock::now());
    }

    double press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        return timed([&] { QTest::keyClick(m_editor.table().view(), key, modifiers); });
    }

    const nvservice::CAccountGroupRCRule m_rule = makeRule();
    TradeLimitEditor m_editor;
};

} // namespace

int main(int argc, char** argv)
{
    prepareProcess();
    QApplication application(argc, argv);
    QApplication::clipboard()->setText(makeRows());

    Lists lists;
    Side load{"load and show", [&] { return lists.load(); }};
    Side removeOne{"delete one", [&] { return lists.removeOne(); }};
    Side undo{"undo that", [&] { return lists.undo(); }};
    Side add{"add one", [&] { return lists.add(); }};
    Side changeAll{"put all on the other list", [&] { return lists.changeAll(); }};
    Side search{"search", [&] { return lists.search(); }};
    Side endSearch{"end the search", [&] { return lists.endSearch(); }};
    Side write{"write into the record", [&] { return lists.write(); }};
    Side paste{"paste 100 000 more", [&] { return lists.paste(); }};
    interleave({&load, &removeOne, &undo, &add, &changeAll, &search, &endSearch, &write, &paste}, Rounds);

    Report report;
    report.heading("List of 100 000 entries, milliseconds");
    for (const Side* const side : {&load, &removeOne, &undo, &add, &changeAll, &search, &endSearch, &write}) {
        report.atMost(side->name, side->result * 1e3, BoundMs);
    }
    report.atMost(paste.name, paste.result * 1e3, PasteBoundMs);
    return report.allKept() ? 0 : 1;
}
