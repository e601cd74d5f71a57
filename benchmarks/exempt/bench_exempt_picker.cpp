// SPDX-License-Identifier: Apache-2.0
// The exempt category picker at 20 000 categories: what the user waits for, from the event to the painted frame, with
// the theme and font of the client. Processor time of the one thread that does everything; medians. Ends with 1 when a
// bound is missed.
#include "ExemptFixture.h"
#include "Harness.h"

#include "exempt/CSelectExemptCategoryDialog.h"
#include "exempt/ControlId.h"

#include <WQ/CLineEdit.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CUiResourceManager.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QItemSelectionModel>
#include <QtTest>

using namespace bench;
using namespace exempt_test;

namespace
{

constexpr int CategoryCount = 20000;
constexpr int MovedRows = 5000;
constexpr int Rounds = 25;

class Picker
{
public:
    Picker() : m_offered(makeManyCategories(CategoryCount)) { m_dialog.setCategories(&m_offered); }

    double open()
    {
        const QAV::CategoryList chosen(m_offered.begin() + 100, m_offered.begin() + 200);
        m_dialog.hide();
        paint();
        return timed([&] {
            m_dialog.setSelectedCategories(chosen);
            m_dialog.show();
        });
    }

    double press(Qt::Key key)
    {
        auto* const edit = m_dialog.findChild<WQ::CLineEdit*>();
        return timed([&] { QTest::keyClick(edit, key); });
    }

    double choose()
    {
        m_dialog.setSelectedCategories({});
        return moveRows(QAV::AvailableCategoryTableId, CategoryCount / 2, ">", MovedRows);
    }

    double giveBack()
    {
        m_dialog.setSelectedCategories({m_offered.begin(), m_offered.begin() + MovedRows});
        return moveRows(QAV::SelectedCategoryTableId, 0, "<", 0);
    }

    double reload()
    {
        return timed([&] { m_dialog.setCategories(&m_offered); });
    }

private:
    /// Selects as a click and a click with Shift do, and moves.
    double moveRows(int tableId, int first, const char* button, int chosenAfterwards)
    {
        const WQ::CStandardSimpleTable& table = *tableOf(m_dialog, tableId);
        const QAbstractItemModel* const model = table.view()->model();
        const QItemSelection rows(model->index(first, 0), model->index(first + MovedRows - 1, 0));
        table.view()->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect);
        paint();
        const double time = timed([&] { buttonOf(m_dialog, button)->click(); });
        if (tableOf(m_dialog, QAV::SelectedCategoryTableId)->rowCount() != chosenAfterwards) {
            qFatal("not all rows were moved");
        }
        return time;
    }

    /// Handles what is waiting, the repaint included.
    static void paint()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }

    template <typename Work>
    static double timed(const Work& work)
    {
        paint();
        const double from = Clock::now();
        work();
        paint();
        return seconds(from, Clock::now());
    }

    QAV::CategoryList m_offered;
    QAV::CSelectExemptCategoryDialog m_dialog{nullptr};
};

} // namespace

int main(int argc, char** argv)
{
    prepareProcess();
    QApplication application(argc, argv);
    WQ::CUiResourceManager::instance()->applyTo(application);

    Picker picker;
    Side open{"open", [&] { return picker.open(); }};
    // One letter that many names contain: the widest and the narrowest result by turns.
    Side key{"a key in the search field", [&] { return picker.press(Qt::Key_G); }};
    Side back{"Backspace, which shows everything again", [&] { return picker.press(Qt::Key_Backspace); }};
    Side choose{"choose 5 000 selected rows", [&] { return picker.choose(); }};
    Side giveBack{"give 5 000 selected rows back", [&] { return picker.giveBack(); }};
    Side reload{"take a new list of categories", [&] { return picker.reload(); }};
    interleave({&open, &key, &back, &choose, &giveBack, &reload}, Rounds);

    Report report;
    report.heading("Picker of 20 000 categories, milliseconds to the painted frame");
    report.atMost(open.name, open.result * 1e3, 50);
    report.atMost(key.name, key.result * 1e3, 16);
    report.atMost(back.name, back.result * 1e3, 16);
    report.atMost(choose.name, choose.result * 1e3, 100);
    report.atMost(giveBack.name, giveBack.result * 1e3, 100);
    report.time(reload.name, reload.result);
    return report.allKept() ? 0 : 1;
}
