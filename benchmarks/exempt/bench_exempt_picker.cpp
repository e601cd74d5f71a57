// The exempt category picker at 20 000 categories: what the user waits for. Each figure is the time from the event to
// the painted frame, on the offscreen platform with the theme and font of the client. "busy" is the processor time of
// the user-interface thread for the same stretch, in milliseconds: what is left of the figure on an idle machine.
//
// Limits: opening 50 ms, one key in the search field 16 ms, moving 5 000 selected rows 100 ms.
#include "ExemptFixture.h"

#include "exempt/CSelectExemptCategoryDialog.h"
#include "exempt/ControlId.h"

#include <WQ/CLineEdit.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CUiResourceManager.h>

#include <benchmark/benchmark.h>

#include <ctime>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QElapsedTimer>
#include <QItemSelectionModel>
#include <QtTest>

using namespace exempt_test;

namespace
{

constexpr int CategoryCount = 20000;
constexpr int MovedRows = 5000;

struct Picker {
    explicit Picker(int count = CategoryCount) : offered(makeManyCategories(count))
    {
        dialog.setCategories(&offered);
        dialog.setSelectedCategories({});
    }

    WQ::CStandardSimpleTable& available() { return *tableOf(dialog, QAV::AvailableCategoryTableId); }
    WQ::CStandardSimpleTable& selected() { return *tableOf(dialog, QAV::SelectedCategoryTableId); }
    QAbstractButton& button(const char* text) { return *buttonOf(dialog, text); }

    /// Selects as a click and a click with Shift do.
    static void selectRows(const WQ::CStandardSimpleTable& table, int first)
    {
        const QAbstractItemModel* const model = table.view()->model();
        const QItemSelection rows(model->index(first, 0), model->index(first + MovedRows - 1, 0));
        table.view()->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect);
    }

    void show()
    {
        dialog.show();
        paint();
    }
    /// Handles what is waiting, the repaint included, so that the next figure counts its own work only.
    static void paint()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }

    QAV::CategoryList offered;
    QAV::CSelectExemptCategoryDialog dialog{nullptr};
};

double busyMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) * 1e-6;
}

template <typename Work>
void measure(benchmark::State& state, Work work)
{
    const double busyBefore = busyMilliseconds();
    QElapsedTimer timer;
    timer.start();
    work();
    Picker::paint();
    state.SetIterationTime(double(timer.nsecsElapsed()) * 1e-9);
    auto& busy = state.counters["busy"];
    busy.flags = benchmark::Counter::kAvgIterations;
    busy.value += busyMilliseconds() - busyBefore;
}

void reload(benchmark::State& state)
{
    Picker picker(int(state.range(0)));
    for ([[maybe_unused]] auto _ : state)
        measure(state, [&] { picker.dialog.setCategories(&picker.offered); });
}

void open(benchmark::State& state)
{
    Picker picker(int(state.range(0)));
    const QAV::CategoryList chosen(picker.offered.begin() + 100, picker.offered.begin() + 200);
    for ([[maybe_unused]] auto _ : state) {
        picker.dialog.hide();
        Picker::paint();
        measure(state, [&] {
            picker.dialog.setSelectedCategories(chosen);
            picker.dialog.show();
        });
    }
}

/// One letter that many names contain, typed and deleted again: the widest and the narrowest result by turns.
void oneKey(benchmark::State& state)
{
    Picker picker(int(state.range(0)));
    picker.show();
    auto* const edit = picker.dialog.findChild<WQ::CLineEdit*>();
    bool typed = false;
    for ([[maybe_unused]] auto _ : state) {
        measure(state, [&] { QTest::keyClick(edit, typed ? Qt::Key_Backspace : Qt::Key_G); });
        typed = !typed;
    }
}

void choose(benchmark::State& state)
{
    Picker picker(int(state.range(0)));
    picker.show();
    for ([[maybe_unused]] auto _ : state) {
        picker.dialog.setSelectedCategories({});
        Picker::selectRows(picker.available(), CategoryCount / 2);
        Picker::paint();
        measure(state, [&] { picker.button(">").click(); });
        if (picker.selected().rowCount() != MovedRows)
            state.SkipWithError("not all rows were moved");
    }
}

void giveBack(benchmark::State& state)
{
    Picker picker(int(state.range(0)));
    picker.show();
    const QAV::CategoryList chosen(picker.offered.begin(), picker.offered.begin() + MovedRows);
    for ([[maybe_unused]] auto _ : state) {
        picker.dialog.setSelectedCategories(chosen);
        Picker::selectRows(picker.selected(), 0);
        Picker::paint();
        measure(state, [&] { picker.button("<").click(); });
        if (picker.selected().rowCount() != 0)
            state.SkipWithError("not all rows were moved");
    }
}

} // namespace

BENCHMARK(open)->Arg(CategoryCount)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(oneKey)->Arg(CategoryCount)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(choose)->Arg(CategoryCount)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(giveBack)->Arg(CategoryCount)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(reload)->Arg(CategoryCount)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    WQ::CUiResourceManager::instance()->applyTo(application);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
