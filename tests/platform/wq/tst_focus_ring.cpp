// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CCheckBox.h>
#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QAbstractItemView>
#include <QTabBar>
#include <QVBoxLayout>

#include <cmath>

/// Whoever works by keyboard sees where he is: what the focus changes on the screen differs by 3:1 at least.
class FocusRingTest : public QObject
{
    Q_OBJECT

    static double luminance(const QColor& colour)
    {
        const auto part = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    }

    static double contrast(const QColor& a, const QColor& b)
    {
        const double first = luminance(a) + 0.05;
        const double second = luminance(b) + 0.05;
        return std::max(first, second) / std::min(first, second);
    }

    /// How many pixels differ by 3:1 at least.
    static int clearPixels(const QImage& before, const QImage& after)
    {
        int count = 0;
        for (int y = 0; y < before.height(); ++y) {
            for (int x = 0; x < before.width(); ++x) {
                count += contrast(before.pixelColor(x, y), after.pixelColor(x, y)) >= 3 ? 1 : 0;
            }
        }
        return count;
    }

private slots:
    void theFocusChangesEnoughInEveryTheme_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::addColumn<int>("control");
        for (const QString& theme : WQ::CUiResourceManager::instance()->themes()) {
            for (std::size_t i = 0; i < controls().size(); ++i) {
                QTest::newRow(qPrintable(theme + ", " + controls()[i].first)) << theme << int(i);
            }
        }
    }
    void theFocusChangesEnoughInEveryTheme()
    {
        QFETCH(QString, theme);
        QFETCH(int, control);
        auto* const resources = WQ::CUiResourceManager::instance();
        QVERIFY(resources->setTheme(theme));
        resources->applyTo(*qApp);
        QWidget window;
        auto* const layout = new QVBoxLayout(&window);
        auto* const elsewhere = new QLineEdit(&window);
        QWidget* const widget = controls()[std::size_t(control)].second(window);
        layout->addWidget(elsewhere);
        layout->addWidget(widget);
        window.resize(300, 300);
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QWidget* const takes = widget->focusProxy() ? widget->focusProxy() : widget;
        elsewhere->setFocus();
        const QImage before = widget->grab().toImage();
        takes->setFocus(Qt::TabFocusReason);
        QVERIFY(takes->hasFocus());
        const QImage after = widget->grab().toImage();
        const int clear = clearPixels(before, after);
        QVERIFY2(clear >= 24, qPrintable(QString("only %1 pixels").arg(clear)));
    }

    void theRingStandsOutFromWhatItIsDrawnOn()
    {
        auto* const resources = WQ::CUiResourceManager::instance();
        for (const QString& theme : resources->themes()) {
            QVERIFY(resources->setTheme(theme));
            for (const QString& surface :
                 {QString(WQ::key::Window), QString(WQ::key::PanelBackground), QString(WQ::key::EditBackground),
                  QString(WQ::key::TableBackground), QString(WQ::key::TableBackground2), QString(WQ::key::TableHover),
                  QString(WQ::key::TableSelection), QString(WQ::key::TableHeader),
                  QString(WQ::key::TableHeaderHover)}) {
                const double ratio = contrast(resources->colour(WQ::key::FocusRing), resources->colour(surface));
                QVERIFY2(ratio >= 3, qPrintable(QString("%1 %2: %3").arg(theme, surface).arg(ratio)));
            }
        }
    }

private:
    using Make = std::function<QWidget*(QWidget&)>;

    static const std::vector<std::pair<QString, Make>>& controls()
    {
        const auto button = [](int type) {
            return [type](QWidget& window) {
                auto* const made = new WQ::CSmallNormalButton(1, true, type, &window);
                made->setText("保存");
                return made;
            };
        };
        const auto check = [](bool isChecked) {
            return [isChecked](QWidget& window) {
                auto* const made = new WQ::CCheckBox(1, QString(), &window);
                made->setChecked(isChecked);
                return made;
            };
        };
        static const std::vector<std::pair<QString, Make>> all = {
            {"plain button", button(WQ::PlainButton)},
            {"normal button", button(WQ::NormalButton)},
            {"primary button", button(WQ::PrimaryButton)},
            {"danger button", button(WQ::DangerButton)},
            {"check box", check(false)},
            {"checked check box", check(true)},
            {"line edit", [](QWidget& window) { return new WQ::CLineEdit(1, &window); }},
            {"combo box",
             [](QWidget& window) {
                 auto* const made = new WQ::CComboBox(1, &window);
                 made->addItem("甲");
                 return made;
             }},
            {"cell of a table",
             [](QWidget& window) {
                 auto* const made = new WQ::CStandardSimpleTable(1, &window);
                 made->setColumnCount(2);
                 const int row = made->appendRow();
                 made->setItemText(row, 0, "甲", true);
                 made->setCurrentRow(row, 0);
                 return made;
             }},
            {"empty table",
             [](QWidget& window) {
                 auto* const made = new WQ::CStandardSimpleTable(1, &window);
                 made->setColumnCount(2);
                 return made;
             }},
            {"tabs",
             [](QWidget& window) {
                 auto* const made = new QTabBar(&window);
                 made->addTab("甲");
                 made->addTab("乙");
                 return made;
             }},
        };
        return all;
    }
};

TEST_WITH_WIDGETS(FocusRingTest)
#include "tst_focus_ring.moc"
