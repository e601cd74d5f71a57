// SPDX-License-Identifier: Apache-2.0
#include "AssetsEditor.h"
#include "assets/AssetsChecks.h"
#include "support/TestProgram.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QScrollBar>
#include <QWindow>

#include <algorithm>
#include <random>

using namespace rule_editor_test;
using nvservice::CAssetsRC;

namespace
{

/// A user who does anything, and a model that knows which limits there have to be afterwards. Limits come and go by
/// their buttons alone; what the cells show is what the editor returns.
class Course
{
public:
    explicit Course(unsigned seed) : m_random(seed)
    {
        std::vector<CAssetsRC> limits;
        for (int id = 1; id <= below(6); ++id) {
            limits.push_back(soundLimit(id, id));
            m_ids.push_back(id);
        }
        m_editor.load(limits, "深圳");
        QApplication::setActiveWindow(&m_editor.window);
    }

    /// Does one thing. Returns what differs from the model then; empty if nothing does.
    QString step()
    {
        switch (below(14)) {
        case 0:
            clickAt(button("add"));
            break;
        case 1:
            clickAt(button("remove"));
            break;
        case 2:
            button("add").setFocus();
            break;
        case 3:
            m_editor.widget().refresh();
            m_done += "refresh ";
            break;
        case 4:
            scroll(*view().horizontalScrollBar());
            break;
        case 5:
            scroll(*view().verticalScrollBar());
            break;
        case 6:
        case 7:
        case 8:
            clickAt(*view().viewport(), QPoint(below(view().viewport()->width()), below(view().viewport()->height())));
            break;
        default:
            pressKey();
        }
        if (below(4) == 0) {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
        }
        const QString wrong = difference();
        return wrong.isEmpty() ? wrong : wrong + " after " + m_done;
    }

private:
    int below(int limit) { return int(m_random() % unsigned(limit)); }
    QAbstractItemView& view() { return *m_editor.table().view(); }
    QPushButton& button(const char* name) { return m_editor.window.part<QPushButton>(name); }
    int rowOf(int rowId) { return m_editor.table().rowIndex(rowId); }

    /// What the model expects of a click on the button.
    void expectClick(const QWidget* widget)
    {
        const auto* const clicked = qobject_cast<const QPushButton*>(widget);
        if (!clicked || !clicked->isEnabled()) {
            return;
        }
        if (clicked == &button("add")) {
            m_ids.push_back(NewLimit);
            return;
        }
        std::vector<int> rows;
        if (clicked == &button("remove")) {
            for (const int rowId : m_editor.table().selectedRows()) {
                rows.push_back(rowOf(rowId));
            }
        } else {
            for (int row = 0; row < m_editor.table().rowCount(); ++row) {
                if (&m_editor.cell(row, Remove) == clicked) {
                    rows.push_back(row);
                }
            }
        }
        std::sort(rows.rbegin(), rows.rend());
        for (const int row : rows) {
            m_ids.erase(m_ids.begin() + row);
        }
    }

    void clickAt(QWidget& widget) { clickAt(widget, widget.rect().center()); }
    void clickAt(QWidget& widget, const QPoint& place)
    {
        closePopup();
        QWidget& window = *widget.window();
        const QPoint inWindow = widget.mapTo(&window, place);
        QWidget* const under = window.childAt(inWindow);
        m_done += QString("click %1,%2 ").arg(inWindow.x()).arg(inWindow.y());
        expectClick(under);
        const auto modifiers = below(4) == 0 ? Qt::ControlModifier : Qt::NoModifier;
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, modifiers, inWindow);
        closePopup();
    }

    /// A drop-down list or menu: its first entries are chosen by key, or none.
    void closePopup()
    {
        while (QWidget* const popup = QApplication::activePopupWidget()) {
            QWidget* const target = popup->focusWidget() ? popup->focusWidget() : popup;
            const bool isList = qobject_cast<QAbstractItemView*>(target);
            QTest::keyClick(target, isList && below(2) == 0 ? Qt::Key_Return : Qt::Key_Escape);
            if (QApplication::activePopupWidget() == popup) {
                popup->close();
            }
        }
    }

    void pressKey()
    {
        static const QList<QPair<Qt::Key, Qt::KeyboardModifiers>> keys = {
            {Qt::Key_Tab, Qt::NoModifier},      {Qt::Key_Tab, Qt::NoModifier},    {Qt::Key_Backtab, Qt::NoModifier},
            {Qt::Key_Space, Qt::NoModifier},    {Qt::Key_Return, Qt::NoModifier}, {Qt::Key_Escape, Qt::NoModifier},
            {Qt::Key_Up, Qt::NoModifier},       {Qt::Key_Down, Qt::NoModifier},   {Qt::Key_Left, Qt::NoModifier},
            {Qt::Key_Right, Qt::NoModifier},    {Qt::Key_Delete, Qt::NoModifier}, {Qt::Key_Backspace, Qt::NoModifier},
            {Qt::Key_5, Qt::NoModifier},        {Qt::Key_7, Qt::NoModifier},      {Qt::Key_Period, Qt::NoModifier},
            {Qt::Key_A, Qt::ControlModifier},   {Qt::Key_F, Qt::ControlModifier}, {Qt::Key_Z, Qt::ControlModifier},
            {Qt::Key_X, Qt::ControlModifier},   {Qt::Key_F2, Qt::NoModifier},     {Qt::Key_Home, Qt::NoModifier},
            {Qt::Key_PageDown, Qt::NoModifier},
        };
        QWidget* const focus = QApplication::focusWidget() ? QApplication::focusWidget() : &view();
        const auto& [key, modifiers] = keys.at(below(keys.size()));
        m_done += QKeySequence(int(key) | int(modifiers)).toString() + ' ';
        const auto* const focused = qobject_cast<const QPushButton*>(focus);
        if (key == Qt::Key_Space || key == Qt::Key_Return) {
            const QModelIndex cell = view().currentIndex();
            expectClick(focused                              ? focused
                        : focus == &view() && cell.isValid() ? &m_editor.cell(cell.row(), cell.column())
                                                             : nullptr);
        }
        QTest::keyClick(focus, key, modifiers);
        closePopup();
    }

    void scroll(QScrollBar& bar)
    {
        bar.setValue(below(bar.maximum() + 1));
        m_done += "scroll ";
    }

    QString difference()
    {
        const std::vector<CAssetsRC> limits = m_editor.limits();
        std::vector<int> ids;
        for (const CAssetsRC& limit : limits) {
            ids.push_back(int(limit.ruleId));
        }
        if (ids != m_ids) {
            return QString("%1 limits instead of %2").arg(ids.size()).arg(m_ids.size());
        }
        if (m_editor.table().rowCount() != int(ids.size())) {
            return QString("%1 rows for %2 limits").arg(m_editor.table().rowCount()).arg(ids.size());
        }
        bool isComplete = true;
        for (int row = 0; row < int(limits.size()); ++row) {
            const CAssetsRC& limit = limits[std::size_t(row)];
            const QString threshold = m_editor.cell<QLineEdit>(row, Threshold).text();
            double number = 0;
            isComplete = isComplete && !threshold.trimmed().isEmpty();
            if (QAV::parseThreshold(threshold, number) && number != limit.threshold) {
                return QString("row %1 shows the threshold %2 for %3").arg(row).arg(threshold).arg(limit.threshold);
            }
            if (m_editor.cell<WQ::CCheckBox>(row, Enabled).isChecked() != limit.enabled ||
                m_editor.cell<QLineEdit>(row, Remark).text() != WQ::sToQs(limit.remark)) {
                return QString("row %1 shows another limit").arg(row);
            }
            for (const QAV::AssetsChoiceColumn& choice : QAV::assetsChoiceColumns()) {
                if (m_editor.cell<WQ::CComboBox>(row, choice.column).currentData().toInt() != choice.get(limit)) {
                    return QString("row %1 shows another choice in column %2").arg(row).arg(choice.column);
                }
            }
        }
        QString message;
        if (below(8) == 0 && m_editor.widget().isDataValid(message) && !isComplete) {
            return "a limit without a threshold is valid";
        }
        return {};
    }

    static constexpr int NewLimit = -1;

    std::mt19937 m_random;
    OneServer m_server;
    AssetsEditor m_editor;
    std::vector<int> m_ids; ///< of the limits that there have to be
    QString m_done;
};

} // namespace

class AssetsRandomTest : public support::WatchedTest
{
    Q_OBJECT

    static constexpr int DefaultCourses = 20;
    static constexpr int StepsOfACourse = 200;
    static constexpr int DefaultSeed = 1;

private slots:
    void whateverTheUserDoesNoLimitIsLost()
    {
        const int first = support::setting("QAV_ASSETS_SEED", DefaultSeed);
        const int courses = support::setting("QAV_ASSETS_COURSES", DefaultCourses);
        for (int seed = first; seed < first + courses; ++seed) {
            Course course{unsigned(seed)};
            for (int step = 0; step < StepsOfACourse; ++step) {
                const QString difference = course.step();
                QVERIFY2(difference.isEmpty(), qPrintable(QString("QAV_ASSETS_SEED=%1: %2").arg(seed).arg(difference)));
            }
        }
    }
};

TEST_WITH_WIDGETS(AssetsRandomTest)
#include "tst_assets_random.moc"
