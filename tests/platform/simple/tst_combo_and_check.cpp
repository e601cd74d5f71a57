// SPDX-License-Identifier: Apache-2.0
#include "RecordingPanel.h"
#include "support/TestProgram.h"

#include <WQ/CCheckBox.h>
#include <WQ/CComboBox.h>

#include <QAbstractItemView>
#include <QVBoxLayout>

using Events = QVector<test::RecordingPanel::Event>;

/// Combo box and check box: one event per change or click.
class ComboAndCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_panel = std::make_unique<test::RecordingPanel>();
        auto* const layout = new QVBoxLayout(m_panel.get());
        m_combo = new WQ::CComboBox(5, m_panel.get());
        m_check = new WQ::CCheckBox(2, QStringLiteral(" 不统计已撤 (无成交) 委托 "), m_panel.get());
        layout->addWidget(m_combo);
        layout->addWidget(m_check);
    }

    void eachChangeOfTheIndexIsReportedOnce()
    {
        m_combo->addItem(QStringLiteral("东区"), 1);
        QCOMPARE(m_panel->events, Events({{67, 5, 0}}));
        m_combo->addItem(QStringLiteral("西区"), 2);
        QCOMPARE(m_panel->events.size(), 1);
        m_combo->setCurrentIndex(1);
        m_combo->setCurrentIndex(1);
        m_combo->setCurrentText(QStringLiteral("东区"));
        QCOMPARE(m_panel->events, Events({{67, 5, 0}, {67, 5, 1}, {67, 5, 0}}));
        QCOMPARE(m_combo->findText(QStringLiteral("西区")), 1);
        QCOMPARE(m_combo->itemData(1).toInt(), 2);
        QCOMPARE(m_combo->id(), 5);
    }

    void theDataOfAnItemIsThereWhenItsEventArrives()
    {
        QVector<int> seen;
        m_panel->react = [&](const test::RecordingPanel::Event& event) {
            seen << m_combo->itemData(event.param).toInt();
        };
        m_combo->addItem(QStringLiteral("期货账号"), 15002);
        m_combo->addItem(QStringLiteral("证券账号"), 2);
        m_combo->setCurrentIndex(1);
        QCOMPARE(seen, QVector<int>({15002, 2}));
    }

    void emptyingReportsMinusOne()
    {
        m_combo->clear();
        QVERIFY(m_panel->events.isEmpty());
        m_combo->addItem(QStringLiteral("东区"), 1);
        m_combo->addItem(QStringLiteral("西区"), 1);
        m_panel->events.clear();
        m_combo->clear();
        QCOMPARE(m_panel->events, Events({{67, 5, -1}}));
        m_combo->clear();
        QCOMPARE(m_panel->events.size(), 1);
    }

    void theKeyboardChangesTheChoice()
    {
        m_combo->addItems({"a", "b", "c"});
        test::showActive(*m_panel, {200, 100});
        m_panel->events.clear();
        m_combo->setFocus();
        QTest::keyClick(m_combo, Qt::Key_Down);
        QTest::keyClick(m_combo, Qt::Key_Down);
        QTest::keyClick(m_combo, Qt::Key_Down);
        QTest::keyClick(m_combo, Qt::Key_Home);
        QCOMPARE(m_panel->events, Events({{67, 5, 1}, {67, 5, 2}, {67, 5, 0}}));
    }

    void aChoiceInTheListIsOneEvent()
    {
        m_combo->addItems({"a", "a much longer item than the box is wide, by far", "c"});
        m_combo->setFixedWidth(80);
        test::showActive(*m_panel, {200, 100});
        m_panel->events.clear();
        QTest::mouseClick(m_combo, Qt::LeftButton);
        QTRY_VERIFY(m_combo->view()->isVisible());
        QVERIFY(m_combo->view()->width() > 200);
        const QRect item = m_combo->view()->visualRect(m_combo->model()->index(2, 0));
        QTest::qWait(QApplication::doubleClickInterval() + 50); // the list ignores the click that opened it
        QTest::mouseClick(m_combo->view()->viewport(), Qt::LeftButton, Qt::NoModifier, item.center());
        QTRY_COMPARE(m_panel->events, Events({{67, 5, 2}}));
        QCOMPARE(m_combo->currentText(), QStringLiteral("c"));
    }

    void theWheelChangesNothingWithoutFocus()
    {
        m_combo->addItems({"a", "b", "c"});
        test::showActive(*m_panel, {200, 100});
        m_check->setFocus();
        m_panel->events.clear();
        const auto wheel = [this] {
            const QPointF at = m_combo->rect().center();
            QWheelEvent event(at, m_combo->mapToGlobal(at.toPoint()), QPoint(), QPoint(0, -120), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(m_combo, &event);
        };
        wheel();
        QVERIFY(m_panel->events.isEmpty());
        m_combo->setFocus();
        wheel();
        QCOMPARE(m_panel->events, Events({{67, 5, 1}}));
    }

    void nothingIsReportedWhenTheBoxGoes()
    {
        m_combo->addItems({"a", "b"});
        m_panel->events.clear();
        delete m_combo;
        QVERIFY(m_panel->events.isEmpty());
    }

    void aClickOnACheckBoxIsOneEventWithItsState()
    {
        test::showActive(*m_panel, {200, 100});
        QTest::mouseClick(m_check, Qt::LeftButton, Qt::NoModifier, QPoint(8, m_check->height() / 2));
        QVERIFY(m_check->isChecked());
        m_check->setFocus();
        QTest::keyClick(m_check, Qt::Key_Space);
        QVERIFY(!m_check->isChecked());
        QCOMPARE(m_panel->events, Events({{5, 2, 1}, {5, 2, 0}}));
    }

    void settingACheckBoxReportsNothing()
    {
        m_check->setChecked(true);
        QVERIFY(m_check->isChecked());
        QVERIFY(m_panel->events.isEmpty());
    }

    void blanksOfTheTextAreKept()
    {
        QCOMPARE(m_check->text(), QStringLiteral(" 不统计已撤 (无成交) 委托 "));
        QCOMPARE(m_check->accessibleName(), QStringLiteral("不统计已撤 (无成交) 委托"));
    }

    void aTextIsWholeInSomewhatLessRoomAndEndsInAnEllipsisInMuchLess()
    {
        const QString text = QStringLiteral("不统计已撤委托的单");
        m_check->setText(text);
        const auto columnsWithInk = [this](int width) {
            m_check->resize(width, m_check->sizeHint().height());
            const QImage image = m_check->grab().toImage();
            int last = -1;
            for (int x = 0; x < image.width(); ++x) {
                for (int y = 0; y < image.height(); ++y) {
                    if (image.pixel(x, y) != image.pixel(image.width() - 1, 0)) {
                        last = x;
                    }
                }
            }
            return last;
        };
        const int whole = m_check->sizeHint().width();
        QVERIFY(columnsWithInk(whole) < whole);
        const int squeezed = whole - text.size();
        // The last letter ends before the edge, where a text that is cut would have ink.
        QVERIFY(columnsWithInk(squeezed) < squeezed - 1);
        QVERIFY(columnsWithInk(whole / 2) < whole / 2);
        QCOMPARE(m_check->sizeHint().width(), whole);
        QCOMPARE(m_check->text(), text);
    }

private:
    std::unique_ptr<test::RecordingPanel> m_panel;
    WQ::CComboBox* m_combo = nullptr;
    WQ::CCheckBox* m_check = nullptr;
};

TEST_WITH_WIDGETS(ComboAndCheckTest)
#include "tst_combo_and_check.moc"
