// SPDX-License-Identifier: Apache-2.0
#include "MaskWindow.h"
#include "support/TestProgram.h"

#include <WQ/CUiResourceManager.h>

using namespace mask_test;

namespace
{

/// Types as the keyboard does: into the window, which hands the keys to the widget that has the focus.
void typeInto(QWidget& window, const char* keys)
{
    for (; *keys != '\0'; ++keys) {
        QTest::keyClick(window.windowHandle(), *keys);
    }
}

} // namespace

class MaskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { WQ::CUiResourceManager::instance()->applyTo(*qApp); }

    void aMaskIsHiddenUntilItIsAttached()
    {
        MaskWindow window;
        window.open();
        QVERIFY(!window.mask->isVisible());
        QVERIFY(!window.mask->isAnimating());
        window.mask->attach(nullptr);
        QVERIFY(!window.mask->isVisible());
        window.mask->attach(window.panel);
        QVERIFY(window.mask->isVisible());
        QCOMPARE(window.mask->target(), window.panel);
    }

    void theMaskCoversItsTargetAndFollowsItsSize()
    {
        MaskWindow window;
        window.cover();
        QCOMPARE(window.mask->geometry(), window.panel->rect());
        window.resize(700, 500);
        QTRY_COMPARE(window.mask->geometry(), window.panel->rect());
    }

    void aWidgetThatIsAddedLaterIsCoveredToo()
    {
        MaskWindow window;
        window.cover();
        auto* const late = new WQ::CSmallNormalButton(2, true, 1, window.panel);
        late->setGeometry(0, 0, 60, 24);
        late->show();
        QTRY_COMPARE(window.panel->childAt(10, 10), window.mask);
    }

    void mouseClicksDoNotReachTheCoveredWidget()
    {
        MaskWindow window;
        window.open();
        QSignalSpy clicked(window.button, &QPushButton::clicked);
        const QPoint inPanel = window.button->mapTo(window.panel, window.button->rect().center());
        const QPoint inWindow = window.button->mapTo(&window, window.button->rect().center());
        QCOMPARE(window.panel->childAt(inPanel), window.button);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, inWindow);
        QCOMPARE(clicked.count(), 1);

        window.mask->attach(window.panel);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, inWindow);
        QCOMPARE(clicked.count(), 1);

        window.mask->hide();
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, inWindow);
        QCOMPARE(clicked.count(), 2);
    }

    void keysDoNotReachTheCoveredWidget()
    {
        MaskWindow window;
        window.open();
        window.edit->setFocus();
        window.mask->attach(window.panel);
        typeInto(window, "ab");
        QTest::keyClicks(window.edit, QStringLiteral("cd"));
        QTest::keyClick(window.button, Qt::Key_Space);
        QCOMPARE(window.edit->text(), QString());
        window.edit->setFocus();
        QTRY_COMPARE(window.focusWidget(), window.mask);

        window.mask->hide();
        QTRY_COMPARE(window.focusWidget(), window.edit);
        typeInto(window, "ef");
        QCOMPARE(window.edit->text(), QStringLiteral("ef"));
    }

    void keysStillReachTheRestOfTheWindow()
    {
        MaskWindow window;
        window.open();
        window.freeEdit->setFocus();
        window.mask->attach(window.panel);
        QCOMPARE(window.focusWidget(), window.freeEdit);
        typeInto(window, "ab");
        QCOMPARE(window.freeEdit->text(), QStringLiteral("ab"));
    }

    void tabLeavesTheMaskForAFreeControl()
    {
        MaskWindow window;
        window.open();
        window.edit->setFocus();
        window.mask->attach(window.panel);
        QTRY_COMPARE(window.focusWidget(), window.mask);
        QTest::keyClick(window.windowHandle(), Qt::Key_Tab);
        QCOMPARE(window.focusWidget(), window.freeEdit);
    }

    void theWheelTurnsOnlyWhileItCanBeSeen()
    {
        MaskWindow window;
        window.cover();
        QVERIFY(window.mask->isAnimating());
        window.hide();
        QVERIFY(!window.mask->isAnimating());
        window.show();
        QTRY_VERIFY(window.mask->isAnimating());
        const QImage before = window.mask->grab().toImage();
        QTRY_VERIFY(window.mask->grab().toImage() != before);
        window.mask->hide();
        QVERIFY(!window.mask->isAnimating());
    }

    void theTextIsShownAndNamesTheMask()
    {
        MaskWindow window;
        window.cover();
        QCOMPARE(window.mask->text(), QStringLiteral("正在加载基础数据"));
        QCOMPARE(window.mask->accessibleName(), QStringLiteral("正在加载基础数据"));
        const QImage before = window.mask->grab().toImage();
        window.mask->setText(QStringLiteral("正在加载风控数据"));
        QCOMPARE(window.mask->text(), QStringLiteral("正在加载风控数据"));
        QVERIFY(window.mask->grab().toImage() != before);
    }

    void aMaskSurvivesItsTarget()
    {
        MaskWindow window;
        window.open();
        auto* const target = new QWidget(&window);
        target->setGeometry(0, 0, 100, 100);
        target->show();
        window.mask->attach(target);
        QVERIFY(window.mask->isVisible());
        delete target;
        QVERIFY(!window.mask->isVisible());
        QCOMPARE(window.mask->target(), nullptr);
        QCOMPARE(window.mask->parentWidget(), window.panel);
        window.mask->attach(window.panel);
        QVERIFY(window.mask->isVisible());
    }

    void aMaskOverAnotherWindowSurvivesIt()
    {
        MaskWindow window;
        window.open();
        auto* const other = new QWidget;
        other->show();
        window.mask->attach(other);
        delete other;
        QCOMPARE(window.mask->parentWidget(), window.panel);
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
        MaskWindow window;
        window.cover();
        QDialog dialog(window.panel);
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
