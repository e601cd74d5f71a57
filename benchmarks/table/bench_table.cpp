// SPDX-License-Identifier: Apache-2.0
// Speed and memory of the high-performance table beside other ways to show the same rows. All sides of a comparison run
// in turn in this one process; medians are compared. Ends with 1 if a bound is missed.
#include "Harness.h"
#include "Sides.h"

#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CStandardHpfTable.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QScrollBar>

#include <limits>
#include <numeric>

using namespace bench;

namespace
{

constexpr int rounds = 9;

void measureFill(Report& report)
{
    report.heading("Fill, 100 000 rows (records, buttons, repaint and fit requests per row; first frame included)");
    const std::vector<Group> groups = makeGroups(100000);
    PlainTable plain;
    Table ours;
    Side l{"L plain vector, one reset, QTableView", [&] { return plain.fill(groups); }};
    Side t{"table", [&] { return ours.fill(groups); }};
    Side requests{"100 000 x updateTable and adjustColumnWidth", [&] {
                      const auto from = Clock::now();
                      for (int i = 0; i < 100000; ++i) {
                          ours.table->updateTable();
                          ours.table->adjustColumnWidth();
                      }
                      QApplication::processEvents();
                      return seconds(from, Clock::now());
                  }};
    interleave({&l, &t, &requests}, rounds);
    for (const Side* side : {&l, &t, &requests}) {
        report.time(side->name, side->result);
    }
    report.atMost("fill / L", t.result / l.result, 3);
    report.atMost("repaint and fit requests / fill", requests.result / t.result, 0.1);
}

void measureGrowth(Report& report)
{
    report.heading("Fill without first frame, cost per row");
    Table ours;
    std::vector<Group> small = makeGroups(10000);
    std::vector<Group> large = makeGroups(1000000);
    Side s{"10 000 rows (mean of 20 fills)", [&] {
               double sum = 0;
               for (int i = 0; i < 20; ++i) {
                   sum += ours.fillOnly(small);
               }
               return sum / 20;
           }};
    Side l{"1 000 000 rows", [&] { return ours.fillOnly(large); }};
    PlainModel plain;
    const auto fillPlain = [&](const std::vector<Group>& groups) {
        plain.clear();
        const auto from = Clock::now();
        plain.fill(groups);
        return seconds(from, Clock::now());
    };
    Side ps{"L, 10 000 rows (mean of 20 fills)", [&] {
                double sum = 0;
                for (int i = 0; i < 20; ++i) {
                    sum += fillPlain(small);
                }
                return sum / 20;
            }};
    Side pl{"L, 1 000 000 rows", [&] {
                const double time = fillPlain(large);
                plain.clear();
                return time;
            }};
    interleave({&s, &l, &ps, &pl}, 5);
    for (const Side* side : {&s, &l, &ps, &pl}) {
        report.time(side->name, side->result);
    }
    std::printf("  L per row, 1 000 000 / 10 000: %.3f\n", pl.result / 1e6 / (ps.result / 1e4));
    report.atMost("per row, 1 000 000 / 10 000", l.result / 1e6 / (s.result / 1e4), 1.3);
}

void measureWidgets(Report& report)
{
    report.heading("10 000 rows with three buttons, fill and first frame");
    const std::vector<Group> groups = makeGroups(10000);
    Table ours;
    Side t{"table", [&] { return ours.fill(groups); }};
    interleave({&t}, rounds);
    const double widgets = fillTableWidget(groups);
    report.time("W QTableWidget with push buttons (one run)", widgets);
    report.time(t.name, t.result);
    report.atLeast("W / table", widgets / t.result, 300);
}

/// Seconds per frame, every row on screen changing; or scrolling by three rows, as a wheel does.
double scroll(QAbstractItemView& view, int frames, bool pages)
{
    QScrollBar& bar = *view.verticalScrollBar();
    bar.setValue(0);
    QApplication::processEvents();
    unsigned state = 7;
    const auto from = Clock::now();
    for (int i = 0; i < frames; ++i) {
        state = state * 1664525u + 1013904223u;
        bar.setValue(pages ? static_cast<int>((state >> 4) % static_cast<unsigned>(bar.maximum())) : 3 * (i % 250));
        QApplication::processEvents();
    }
    return seconds(from, Clock::now()) / frames;
}

void measureScrolling(Report& report)
{
    constexpr int frames = 150;
    const std::vector<Group> few = makeGroups(1000);
    const std::vector<Group> many = makeGroups(1000000);
    PlainTable plain;
    Table small, large, bare;
    plain.fill(many);
    small.fill(few);
    large.fill(many);
    bare.fill(many, false);
    for (bool pages : {true, false}) {
        report.heading(pages ? "Scroll frame, every row on screen changes" : "Scroll frame, three rows on");
        Side q{"plain QTableView, 1 000 000 rows", [&] { return scroll(plain.view, frames, pages); }};
        Side s{"table, 1 000 rows", [&] { return scroll(*small.table->view(), frames, pages); }};
        Side l{"table, 1 000 000 rows", [&] { return scroll(*large.table->view(), frames, pages); }};
        Side b{"table, 1 000 000 rows, no buttons", [&] { return scroll(*bare.table->view(), frames, pages); }};
        interleave({&q, &s, &l, &b}, rounds);
        for (const Side* side : {&q, &s, &l, &b}) {
            report.time(side->name, side->result);
        }
        report.atMost("1 000 000 rows / 1 000 rows", l.result / s.result, 1.1);
        report.atMost("three buttons / none", l.result / b.result, 1.25);
        report.atMost("three buttons / plain QTableView", l.result / q.result, 1.3);
        report.atMost("no buttons / plain QTableView", b.result / q.result, 1.3);
    }
}

void measureFilter(Report& report)
{
    report.heading("Filter by name, 100 000 rows");
    const std::vector<Group> groups = makeGroups(100000);
    Table ours;
    ours.fill(groups);
    PlainModel plain;
    plain.fill(groups);
    const QString text = QStringLiteral("量化");
    std::size_t found = 0;
    Side scan{"plain scan of the names", [&] {
                  const auto from = Clock::now();
                  std::vector<int> hits;
                  for (std::size_t i = 0; i < plain.rows.size(); ++i) {
                      if (plain.rows[i]->m_name.contains(text, Qt::CaseInsensitive)) {
                          hits.push_back(static_cast<int>(i));
                      }
                  }
                  const double time = seconds(from, Clock::now());
                  found = hits.size();
                  return time;
              }};
    double clearing = 0;
    std::vector<double> clearings;
    const auto filter = [&](const QString& wanted) {
        const auto from = Clock::now();
        ours.model->filterColumn(0, {WQ::FilterContains, {wanted}});
        const auto filtered = Clock::now();
        if (wanted == text && ours.model->rowCount() != static_cast<int>(found)) {
            qFatal("the filter and the scan disagree");
        }
        ours.model->clearFilter();
        clearing = seconds(filtered, Clock::now());
        clearings.push_back(clearing);
        return seconds(from, filtered);
    };
    Side t{"table", [&] { return filter(text); }};
    Side initials{"table, by pinyin initials (again)", [&] { return filter(QStringLiteral("lhdc")); }};
    Side first{"table, by pinyin initials, first time", [&] {
                   ours.fill(groups);
                   return filter(QStringLiteral("lhdc"));
               }};
    interleave({&scan, &t, &first, &initials}, rounds);
    const double proxy = filterByProxy(groups, text);
    for (const Side* side : {&scan, &t, &first, &initials}) {
        report.time(side->name, side->result);
    }
    report.time("table, clear", median(clearings));
    report.time("P QSortFilterProxyModel (one run)", proxy);
    report.atMost("filter / plain scan", t.result / scan.result, 1.5);
    report.atMost("clear / filter", median(clearings) / t.result, 0.1);
}

void measureSort(Report& report)
{
    report.heading("Sort, 100 000 rows");
    const std::vector<Group> groups = makeGroups(100000);
    Table ours;
    PlainModel plain;
    plain.fill(groups);
    const auto plainSort = [&](QString GroupRow::* field) {
        const auto from = Clock::now();
        std::vector<int> rows(plain.rows.size());
        std::iota(rows.begin(), rows.end(), 0);
        std::sort(rows.begin(), rows.end(), [&](int a, int b) {
            return (*plain.rows[static_cast<std::size_t>(a)]).*field <
                   (*plain.rows[static_cast<std::size_t>(b)]).*field;
        });
        return seconds(from, Clock::now());
    };
    const auto sort = [&](int column, Qt::SortOrder order) {
        const auto from = Clock::now();
        ours.model->sort(column, order);
        return seconds(from, Clock::now());
    };
    for (int column : {0, 2}) {
        Side index{"plain index sort by code",
                   [&] { return plainSort(column == 0 ? &GroupRow::m_name : &GroupRow::m_institution); }};
        Side first{"table, pinyin order", [&] {
                       ours.fill(groups);
                       return sort(column, Qt::AscendingOrder);
                   }};
        Side again{"table, again, other way", [&] { return sort(column, Qt::DescendingOrder); }};
        interleave({&index, &first, &again}, rounds);
        report.heading(column == 0 ? "  by name (all different)" : "  by institution (480 different)");
        for (const Side* side : {&index, &first, &again}) {
            report.time(side->name, side->result);
        }
        report.atMost("pinyin sort / plain index sort", first.result / index.result, 2);
        report.atMost("sort again / first sort", again.result / first.result, 0.2);
    }
    report.time("S QStandardItemModel by institution (one run)", sortStandardItems(groups));
}

void measureMemory(Report& report)
{
    report.heading("Memory, 1 000 000 rows");
    const std::vector<Group> groups = makeGroups(1000000);
    const double count = static_cast<double>(groups.size());
    const auto perRow = [&](std::size_t before) { return static_cast<double>(heapBytes() - before) / count; };
    double whole = 0, bare = 0, ours = 0, worked = 0;
    {
        const std::size_t before = heapBytes();
        PlainModel plain;
        plain.fill(groups);
        whole = perRow(before);
        for (auto& row : plain.rows) {
            row->m_name = QString();
            row->m_institution = QString();
        }
        bare = perRow(before);
    }
    {
        Table table;
        const std::size_t before = heapBytes();
        table.fill(groups);
        ours = perRow(before);
        table.model->filterColumn(0, {WQ::FilterContains, {QStringLiteral("量化")}});
        table.model->sort(2);
        worked = perRow(before);
    }
    const double strings = whole - bare;
    std::printf("  bytes per row: strings %.1f, plain vector of rows %.1f, table %.1f, sorted and filtered %.1f\n",
                strings, bare, ours - strings, worked - strings);
    report.atMost("table / plain vector of rows", (ours - strings) / bare, 1.5);
    report.atMost("table, sorted and filtered / plain vector of rows", (worked - strings) / bare, 1.5);
}

} // namespace

int main(int argc, char** argv)
{
    prepareProcess();
    QApplication app(argc, argv);
    const std::string wanted = argc > 1 ? argv[1] : "";
    Report report;
    const std::vector<std::pair<std::string, void (*)(Report&)>> parts = {
        {"fill", measureFill},     {"growth", measureGrowth}, {"widgets", measureWidgets}, {"scroll", measureScrolling},
        {"filter", measureFilter}, {"sort", measureSort},     {"memory", measureMemory}};
    for (const auto& [name, measure] : parts) {
        if (wanted.empty() || wanted == name) {
            measure(report);
        }
    }
    std::printf("\n%s\n", report.allKept() ? "All bounds kept." : "Some bounds are MISSED.");
    return report.allKept() ? 0 : 1;
}
