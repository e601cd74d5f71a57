// SPDX-License-Identifier: Apache-2.0
#include "RecordingPanel.h"
#include "support/TestProgram.h"

#include <WQ/CMessageTip.h>

#include <QAccessible>
#include <QLineEdit>

using WQ::CMessageTip;

namespace
{

const QString Text = QStringLiteral("所属机构不能为空!");

} // namespace

class MessageTipTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_row = new QWidget(m_window.get());
        m_row->setGeometry(20, 30, 300, 30);
        m_edit = new QLineEdit(m_row);
        m_edit->setGeometry(60, 2, 190, 25);
        test::showActive(*m_window, {500, 300});
    }

    void standsBelowTheLeftEdgeOfItsWidget()
    {
        const CMessageTip* const tip = show();
        QVERIFY(tip);
        QVERIFY(tip->isVisible());
        QCOMPARE(tip->text(), Text);
        QCOMPARE(tip->level(), WQ::MessageError);
        QCOMPARE(tip->accessibleName(), Text);
        QCOMPARE(tip->geometry().left(), 80);
        QVERIFY(tip->geometry().top() > 30 + 2 + 25);
        QVERIFY(tip->geometry().top() < 30 + 2 + 25 + 10);
    }

    void standsInsideTheWindowAndOnTheOtherSideWhenThereIsNoRoom()
    {
        m_row->move(400, 270);
        const CMessageTip* const tip = show();
        QVERIFY(m_window->rect().contains(tip->geometry()));
        QVERIFY(tip->geometry().bottom() < 272);
    }

    void aLongTextIsWrappedAtTheMaximumWidth()
    {
        const QSize single = show()->size();
        const CMessageTip* const tip = CMessageTip::showTip(m_edit, 1 | 64, QString(200, QChar(0x8D26)), 0, 2, 300);
        QVERIFY(tip->width() <= 300);
        QVERIFY(tip->width() > 250);
        QVERIFY(tip->height() > 3 * single.height());
        QVERIFY(single.width() < 200);
        const CMessageTip* const wide = CMessageTip::showTip(m_edit, 1 | 64, QString(200, QChar(0x8D26)), 0, 2, 0);
        QVERIFY(wide->width() > 300);
        QVERIFY(m_window->rect().contains(wide->geometry()));
    }

    void takesNeitherFocusNorMouse()
    {
        m_edit->setFocus();
        const CMessageTip* const tip = show();
        QCoreApplication::processEvents();
        QVERIFY(m_edit->hasFocus());
        QCOMPARE(m_window->childAt(tip->geometry().center()), nullptr);
    }

    void thereIsOnePerWidget()
    {
        QPointer<CMessageTip> first = show();
        CMessageTip* const second = CMessageTip::showTip(m_edit, 1 | 64, QStringLiteral("another"), 0, 2, 300);
        QVERIFY(!first || !first->isVisible());
        QCOMPARE(CMessageTip::tipOf(m_edit), second);
        QTRY_VERIFY(first.isNull());
        QCOMPARE(m_window->findChildren<CMessageTip*>().size(), 1);
        CMessageTip* const other = CMessageTip::showTip(m_row, 1 | 64, Text, 0, 2, 300);
        QVERIFY(other->isVisible());
        QVERIFY(second->isVisible());
    }

    void fadesAwayByItself()
    {
        QPointer<CMessageTip> tip = show(1);
        QVERIFY(tip->isVisible());
        QElapsedTimer timer;
        timer.start();
        QTRY_VERIFY(tip.isNull());
        QVERIFY(timer.elapsed() >= 1000);
        QCOMPARE(CMessageTip::tipOf(m_edit), nullptr);
    }

    void withoutSecondsItStays()
    {
        QPointer<CMessageTip> tip = show(0);
        QPointer<CMessageTip> timed = CMessageTip::showTip(m_row, 1 | 64, Text, 1, 0, 300);
        QTRY_VERIFY(timed.isNull());
        QVERIFY(tip && tip->isVisible());
        CMessageTip::hideTip(m_edit);
        QTRY_VERIFY(tip.isNull());
    }

    void goesWhenItsWidgetIsHidden()
    {
        QPointer<CMessageTip> tip = show();
        m_edit->hide();
        QCOMPARE(CMessageTip::tipOf(m_edit), nullptr);
        QTRY_VERIFY(tip.isNull());
        m_edit->show();
        tip = show();
        m_row->hide();
        QTRY_VERIFY(tip.isNull());
    }

    void goesWhenItsWidgetIsDestroyed()
    {
        QPointer<CMessageTip> tip = show();
        delete m_edit;
        QTRY_VERIFY(tip.isNull());
    }

    void goesWithTheWindow()
    {
        QPointer<CMessageTip> tip = show();
        m_window.reset();
        QVERIFY(tip.isNull());
    }

    void followsItsWidget()
    {
        const CMessageTip* const tip = show();
        const QPoint before = tip->pos();
        m_row->move(m_row->pos() + QPoint(15, 40));
        QCOMPARE(tip->pos(), before + QPoint(15, 40));
        m_edit->move(m_edit->pos() + QPoint(5, 0));
        QCOMPARE(tip->pos(), before + QPoint(20, 40));
    }

    void aHiddenWidgetsMessageIsShownAtItsNearestVisibleAncestor()
    {
        m_edit->hide();
        CMessageTip* tip = show();
        QVERIFY(tip->isVisible());
        QCOMPARE(tip->geometry().left(), 20);
        m_row->hide();
        tip = show();
        QVERIFY(tip->isVisible());
        QVERIFY(m_window->rect().contains(tip->geometry()));
    }

    void withoutAVisibleWidgetNothingIsShown()
    {
        m_window->hide();
        QCOMPARE(show(), nullptr);
        QCOMPARE(CMessageTip::showTip(nullptr, 1 | 64, Text, 2, 2, 300), nullptr);
        CMessageTip::hideTip(nullptr);
        CMessageTip::hideTip(m_edit);
    }

    void isAnAlertToAssistiveTechnology()
    {
        QAccessibleInterface* const tip = QAccessible::queryAccessibleInterface(show());
        QVERIFY(tip);
        QCOMPARE(tip->role(), QAccessible::AlertMessage);
        QCOMPARE(tip->text(QAccessible::Name), Text);
    }

private:
    CMessageTip* show(int seconds = 0) { return CMessageTip::showTip(m_edit, 1 | 64, Text, seconds, 2, 300); }

    std::unique_ptr<QWidget> m_window;
    QWidget* m_row = nullptr;
    QLineEdit* m_edit = nullptr;
};

TEST_WITH_WIDGETS(MessageTipTest)
#include "tst_message_tip.moc"
