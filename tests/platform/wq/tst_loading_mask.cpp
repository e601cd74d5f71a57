// SPDX-License-Identifier: Apache-2.0
#include "MaskWindow.h"
#include "support/TestProgram.h"

#include <WQ/CUiResourceManager.h>

using namespace mask_test;

class MaskTest : public support::FixtureTest<MaskWindow>
{
    Q_OBJECT

    /// Types as the keyboard does: into the window, which hands the keys to the widget that has the focus.
    static void typeInto(QWidget& window, const char* keys)
    {
        for (; *keys != '\0'; ++keys) {
            QTest::keyClick(window.windowHandle(), *keys);
        }
    }

private Q_SLOTS:
    void initTestCase() { WQ::CUiResourceManager::instance()->applyTo(*qApp); }

    void aMaskIsHiddenUntilItIsAttached()
    {
        m_fixture->open();
        QVERIFY(!m_fixture->mask->isVisible());
        QVERIFY(!m_fixture->mask->isAnimating());
        m_fixture->mask->attach(nullptr);
        QVERIFY(!m_fixture->mask->isVisible());
        m_fixture->mask->attach(m_fixture->panel);
        QVERIFY(m_fixture->mask->isVisible());
        QCOMPARE(m_fixture->mask->target(), m_fixture->panel);
    }

    void theMaskCoversItsTargetAndFollowsItsSize()
    {
        m_fixture->cover();
        QCOMPARE(m_fixture->mask->geometry(), m_fixture->panel->rect());
        m_fixture->resize(700, 500);
        QTRY_COMPARE(m_fixture->mask->geometry(), m_fixture->panel->rect());
    }

    void aWidgetThatIsAddedLaterIsCoveredToo()
    {
        m_fixture->cover();
        auto* const late = new WQ::CSmallNormalButton(2, true, 1, m_fixture->panel);
        late->setGeometry(0, 0, 60, 24);
        late->show();
        QTRY_COMPARE(m_fixture->panel->childAt(10, 10), m_fixture->mask);
    }

    void mouseClicksDoNotReachTheCoveredWidget()
    {
        m_fixture->open();
        QSignalSpy clicked(m_fixture->button, &QPushButton::clicked);
        const QPoint inPanel = m_fixture->button->mapTo(m_fixture->panel, m_fixture->button->rect().center());
        const QPoint inWindow = m_fixture->button->mapTo(m_fixture.get(), m_fixture->button->rect().center());
        QCOMPARE(m_fixture->panel->childAt(inPanel), m_fixture->button);
        QTest::mouseClick(m_fixture->windowHandle(), Qt::LeftButton, {}, inWindow);
        QCOMPARE(clicked.count(), 1);

        m_fixture->mask->attach(m_fixture->panel);
        QTest::mouseClick(m_fixture->windowHandle(), Qt::LeftButton, {}, inWindow);
        QCOMPARE(clicked.count(), 1);

        m_fixture->mask->hide();
        QTest::mouseClick(m_fixture->windowHandle(), Qt::LeftButton, {}, inWindow);
        QCOMPARE(clicked.count(), 2);
    }

    void keysDoNotReachTheCoveredWidget()
    {
        m_fixture->open();
        m_fixture->edit->setFocus();
        m_fixture->mask->attach(m_fixture->panel);
        typeInto(*m_fixture, "ab");
        QTest::keyClicks(m_fixture->edit, QStringLiteral("cd"));
        QTest::keyClick(m_fixture->button, Qt::Key_Space);
        QCOMPARE(m_fixture->edit->text(), QString());
        m_fixture->edit->setFocus();
        QTRY_COMPARE(m_fixture->focusWidget(), m_fixture->mask);

        m_fixture->mask->hide();
        QTRY_COMPARE(m_fixture->focusWidget(), m_fixture->edit);
        typeInto(*m_fixture, "ef");
        QCOMPARE(m_fixture->edit->text(), QStringLiteral("ef"));
    }

    void keysStillReachTheRestOfTheWindow()
    {
        m_fixture->open();
        m_fixture->freeEdit->setFocus();
        m_fixture->mask->attach(m_fixture->panel);
        QCOMPARE(m_fixture->focusWidget(), m_fixture->freeEdit);
        typeInto(*m_fixture, "ab");
        QCOMPARE(m_fixture->freeEdit->text(), QStringLiteral("ab"));
    }

    void tabLeavesTheMaskForAFreeControl()
    {
        m_fixture->open();
        m_fixture->edit->setFocus();
        m_fixture->mask->attach(m_fixture->panel);
        QTRY_COMPARE(m_fixture->focusWidget(), m_fixture->mask);
        QTest::keyClick(m_fixture->windowHandle(), Qt::Key_Tab);
        QCOMPARE(m_fixture->focusWidget(), m_fixture->freeEdit);
    }

    void theWheelTurnsOnlyWhileItCanBeSeen()
    {
        m_fixture->cover();
        QVERIFY(m_fixture->mask->isAnimating());
        m_fixture->hide();
        QVERIFY(!m_fixture->mask->isAnimating());
        m_fixture->show();
        QTRY_VERIFY(m_fixture->mask->isAnimating());
        const QImage before = m_fixture->mask->grab().toImage();
        QTRY_VERIFY(m_fixture->mask->grab().toImage() != before);
        m_fixture->mask->hide();
        QVERIFY(!m_fixture->mask->isAnimating());
    }

    void theTextIsShownAndNamesTheMask()
    {
        m_fixture->cover();
        QCOMPARE(m_fixture->mask->text(), QStringLiteral("正在加载基础数据"));
        QCOMPARE(m_fixture->mask->accessibleName(), QStringLiteral("正在加载基础数据"));
        const QImage before = m_fixture->mask->grab().toImage();
        m_fixture->mask->setText(QStringLiteral("正在加载风控数据"));
        QCOMPARE(m_fixture->mask->text(), QStringLiteral("正在加载风控数据"));
        QVERIFY(m_fixture->mask->grab().toImage() != before);
    }

    void aMaskSurvivesItsTarget()
    {
        m_fixture->open();
        auto* const target = new QWidget(m_fixture.get());
        target->setGeometry(0, 0, 100, 100);
        target->show();
        m_fixture->mask->attach(target);
        QVERIFY(m_fixture->mask->isVisible());
        delete target;
        QVERIFY(!m_fixture->mask->isVisible());
        QCOMPARE(m_fixture->mask->target(), nullptr);
        QCOMPARE(m_fixture->mask->parentWidget(), m_fixture->panel);
        m_fixture->mask->attach(m_fixture->panel);
        QVERIFY(m_fixture->mask->isVisible());
    }

    void aMaskOverAnotherWindowSurvivesIt()
    {
        m_fixture->open();
        auto* const other = new QWidget;
        other->show();
        m_fixture->mask->attach(other);
        delete other;
        QCOMPARE(m_fixture->mask->parentWidget(), m_fixture->panel);
    }

    void theOwnerMayGoWhileItsMaskCoversAChild()
    {
        auto* const owner = new QWidget;
        auto* const child = new QWidget(owner);
        const QPointer<WQ::CLoadingMaskWidget> mask(new WQ::CLoadingMaskWidget(QStringLiteral("…"), owner));
        owner->show();
        mask->attach(child);
        delete owner;
        QVERIFY(!mask);
    }

    void aMaskOnAHiddenDialogShowsWithIt()
    {
        MaskedDialog dialog;
        QVERIFY(!dialog.mask->isVisible());
        dialog.show();
        QVERIFY(dialog.mask->isVisible());
        QTRY_COMPARE(dialog.mask->geometry(), dialog.contentArea());
    }

    void escLeavesADialogUnderItsMask()
    {
        MaskedDialog dialog;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        typeInto(dialog, "a");
        QCOMPARE(dialog.edit->text(), QString());
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
    }

    void aDialogOpenedFromTheCoveredWidgetIsFree()
    {
        m_fixture->cover();
        QDialog dialog(m_fixture->panel);
        auto* const edit = new QLineEdit(&dialog);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        edit->setFocus();
        typeInto(dialog, "ab");
        QCOMPARE(edit->text(), QStringLiteral("ab"));
    }
};

TEST_WITH_WIDGETS(MaskTest)
#include "tst_loading_mask.moc"
