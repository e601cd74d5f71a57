// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <WQ/CBaseDialog.h>
#include <WQ/CBaseWidget.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CWidgetList.h>

#include <QVBoxLayout>

#include <vector>

namespace
{

struct Event {
    int type;
    int id;
    int param;
    QString text;
    void* data;
};

template <class Base>
class Recorder : public Base
{
public:
    using Base::Base;

    bool handleEvent(int type, int id, int param, QString text, void* data) override
    {
        events.push_back({type, id, param, text, data});
        return takes || Base::handleEvent(type, id, param, text, data);
    }

    std::vector<Event> events;
    bool takes = false;
};

using Panel = Recorder<WQ::CBaseWidget>;
using DialogRecorder = Recorder<WQ::CBaseDialog>;

template <class Widget>
void place(Widget* control, QWidget* parent)
{
    if (!parent->layout()) {
        new QVBoxLayout(parent);
    }
    parent->layout()->addWidget(control);
}

} // namespace

class EventTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMouseClickOfAButtonIsOneEvent()
    {
        Panel panel(nullptr);
        auto* const button = new WQ::CSmallNormalButton(7, true, 1, &panel);
        place(button, &panel);
        panel.show();
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(panel.events.size(), std::size_t(1));
        QCOMPARE(panel.events[0].type, int(WQ::ButtonClicked));
        QCOMPARE(panel.events[0].type, 5);
        QCOMPARE(panel.events[0].id, 7);
    }

    void spaceAndEnterPressAFocusedButtonOnceEach_data()
    {
        const support::DataRows<int> row("key");
        row("space", int(Qt::Key_Space));
        row("return", int(Qt::Key_Return));
        row("enter on the keypad", int(Qt::Key_Enter));
    }
    void spaceAndEnterPressAFocusedButtonOnceEach()
    {
        QFETCH(int, key);
        Panel panel(nullptr);
        auto* const button = new WQ::CMediumNormalButton(3, 1, &panel);
        place(button, &panel);
        panel.show();
        button->setFocus();
        QTest::keyClick(button, Qt::Key(key));
        QCOMPARE(panel.events.size(), std::size_t(1));
        QCOMPARE(panel.events[0].type, 5);
        QCOMPARE(panel.events[0].id, 3);
    }

    void aDisabledButtonReportsNothing()
    {
        Panel panel(nullptr);
        auto* const button = new WQ::CSmallNormalButton(7, true, 1, &panel);
        button->setEnabled(false);
        place(button, &panel);
        panel.show();
        QTest::mouseClick(button, Qt::LeftButton);
        QTest::keyClick(button, Qt::Key_Space);
        QCOMPARE(panel.events.size(), std::size_t(0));
    }

    void aReleaseBesideTheButtonIsNoClick()
    {
        Panel panel(nullptr);
        auto* const button = new WQ::CSmallNormalButton(7, true, 1, &panel);
        place(button, &panel);
        panel.show();
        QTest::mousePress(button, Qt::LeftButton);
        QTest::mouseRelease(button, Qt::LeftButton, {}, QPoint(-20, -20));
        QCOMPARE(panel.events.size(), std::size_t(0));
    }

    void enterInALineEditIsOneEventWithItsText()
    {
        Panel panel(nullptr);
        auto* const edit = new WQ::CLineEdit(0, &panel);
        place(edit, &panel);
        edit->setText(QStringLiteral("稳健"));
        panel.events.clear();
        panel.show();
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(panel.events.size(), std::size_t(1));
        QCOMPARE(panel.events[0].type, 99);
        QCOMPARE(panel.events[0].id, 0);
        QCOMPARE(panel.events[0].text, QStringLiteral("稳健"));
    }

    void everyTypedCharacterIsOneTextEvent()
    {
        Panel panel(nullptr);
        auto* const edit = new WQ::CLineEdit(6, &panel);
        place(edit, &panel);
        panel.show();
        QTest::keyClicks(edit, QStringLiteral("ab"));
        QCOMPARE(panel.events.size(), std::size_t(2));
        QCOMPARE(panel.events[0].type, 97);
        QCOMPARE(panel.events[0].id, 6);
        QCOMPARE(panel.events[0].text, QStringLiteral("a"));
        QCOMPARE(panel.events[1].text, QStringLiteral("ab"));
        edit->setText(QStringLiteral("ab"));
        QCOMPARE(panel.events.size(), std::size_t(2));
    }

    void enterInADialogsLineEditPressesNoButton()
    {
        DialogRecorder dialog;
        auto* const edit = new WQ::CLineEdit(0, &dialog);
        auto* const button = new WQ::CMediumNormalButton(1, 1, &dialog);
        place(edit, &dialog);
        place(button, &dialog);
        dialog.show();
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_Return);
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.events.size(), std::size_t(1));
        QCOMPARE(dialog.events[0].type, 99);
    }

    void aHeldEnterIsOneEvent()
    {
        Panel panel(nullptr);
        auto* const edit = new WQ::CLineEdit(0, &panel);
        place(edit, &panel);
        panel.show();
        for (const bool repeated : {false, true, true}) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), repeated);
            QApplication::sendEvent(edit, &press);
        }
        QCOMPARE(panel.events.size(), std::size_t(1));
    }

    void anEventThatIsNotTakenGoesToTheDelivererAbove()
    {
        Panel panel(nullptr);
        auto* const inner = new Panel(&panel);
        auto* const plain = new QWidget(inner);
        auto* const list = new WQ::CWidgetList(1, plain);
        auto* const button = new WQ::CSmallNormalButton(9, true, 1, list);
        list->addFixedWidget(button, 3, true);
        panel.show();
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(inner->events.size(), std::size_t(1));
        QCOMPARE(panel.events.size(), std::size_t(1));
        QCOMPARE(panel.events[0].id, 9);

        inner->takes = true;
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(inner->events.size(), std::size_t(2));
        QCOMPARE(panel.events.size(), std::size_t(1));
    }

    void anEventIsPassedOnUnchanged()
    {
        Panel panel(nullptr);
        auto* const inner = new Panel(&panel);
        int data = 0;
        QVERIFY(!inner->handleEvent(218, 4, 2, QStringLiteral("A|17"), &data));
        QCOMPARE(panel.events.size(), std::size_t(1));
        QCOMPARE(panel.events[0].type, 218);
        QCOMPARE(panel.events[0].id, 4);
        QCOMPARE(panel.events[0].param, 2);
        QCOMPARE(panel.events[0].text, QStringLiteral("A|17"));
        QCOMPARE(panel.events[0].data, static_cast<void*>(&data));
        panel.takes = true;
        QVERIFY(inner->handleEvent(218, 4, 2, QString(), nullptr));
    }

    void aControlWithoutADelivererAboveReportsToNobody()
    {
        QWidget window;
        auto* const button = new WQ::CSmallNormalButton(9, true, 1, &window);
        place(button, &window);
        window.show();
        QTest::mouseClick(button, Qt::LeftButton);
        QVERIFY(!WQ::deliverEvent(button, 5, 9));
        QVERIFY(!WQ::delivererAbove(button));
    }

    void whatHappensInADialogDoesNotReachThePanelBelow()
    {
        Panel panel(nullptr);
        panel.show();
        DialogRecorder dialog(&panel);
        auto* const edit = new WQ::CLineEdit(0, &dialog);
        place(edit, &dialog);
        dialog.show();
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(dialog.events.size(), std::size_t(1));
        QCOMPARE(panel.events.size(), std::size_t(0));
    }

    void aClickableTextReportsItsClick()
    {
        Panel panel(nullptr);
        auto* const link = new WQ::CSimpleTextWidget(true, 12, QStringLiteral("更多"), &panel);
        auto* const label = new WQ::CSimpleTextWidget(false, 13, QStringLiteral("标签"), &panel);
        place(link, &panel);
        place(label, &panel);
        panel.show();
        QTest::mouseClick(label, Qt::LeftButton);
        QCOMPARE(panel.events.size(), std::size_t(0));
        QTest::mouseClick(link, Qt::LeftButton);
        QTest::keyClick(link, Qt::Key_Space);
        QCOMPARE(panel.events.size(), std::size_t(2));
        QCOMPARE(panel.events[1].type, 5);
        QCOMPARE(panel.events[1].id, 12);
    }

    void aHandlerMayDiscardTheControlThatReports()
    {
        class Discarding : public WQ::CBaseWidget
        {
        public:
            Discarding() : WQ::CBaseWidget(nullptr) {}
            bool handleEvent(int, int, int, QString, void*) override
            {
                child->deleteLater();
                return true;
            }
            QPointer<QWidget> child;
        };
        Discarding panel;
        auto* const button = new WQ::CSmallNormalButton(1, true, 1, &panel);
        panel.child = button;
        place(button, &panel);
        panel.show();
        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_VERIFY(!panel.child);
    }
};

TEST_WITH_WIDGETS(EventTest)
#include "tst_events.moc"
