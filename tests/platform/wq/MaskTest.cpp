#include <WQ/CCommonDialog.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CUiResourceManager.h>

#include <QVBoxLayout>
#include <QtTest>

namespace
{

/// A panel with an edit and a button, beside a free edit in the same window.
struct Window : QWidget {
    Window()
    {
        auto* const outer = new QVBoxLayout(this);
        outer->addWidget(panel = new WQ::CBaseWidget(nullptr));
        outer->addWidget(freeEdit = new WQ::CLineEdit(9, nullptr));
        auto* const inner = new QVBoxLayout(panel);
        inner->addWidget(edit = new WQ::CLineEdit(0, nullptr));
        inner->addWidget(button = new WQ::CSmallNormalButton(1, true, 1, nullptr));
        mask = new WQ::CLoadingMaskWidget(QStringLiteral("正在加载基础数据"), panel);
        resize(400, 300);
    }

    void open()
    {
        show();
        activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(this));
    }

    WQ::CBaseWidget* panel;
    WQ::CLineEdit* edit;
    WQ::CLineEdit* freeEdit;
    WQ::CSmallNormalButton* button;
    WQ::CLoadingMaskWidget* mask;
};

/// Types as the keyboard does: into the window, which hands the keys to the widget that has the focus.
void typeInto(QWidget& window, const char* keys)
{
    for (; *keys != '\0'; ++keys)
        QTest::keyClick(window.windowHandle(), *keys);
}

} // namespace

class MaskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { WQ::CUiResourceManager::instance()->applyTo(*qApp); }

    void aMaskIsHiddenUntilItIsAttached()
    {
        Window window;
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
        Window window;
        window.open();
        window.mask->attach(window.panel);
        QCOMPARE(window.mask->geometry(), window.panel->rect());
        window.resize(700, 500);
        QTRY_COMPARE(window.mask->geometry(), window.panel->rect());
    }

    void aWidgetThatIsAddedLaterIsCoveredToo()
    {
        Window window;
        window.open();
        window.mask->attach(window.panel);
        auto* const late = new WQ::CSmallNormalButton(2, true, 1, window.panel);
        late->setGeometry(0, 0, 60, 24);
        late->show();
        QTRY_COMPARE(window.panel->childAt(10, 10), window.mask);
    }

    void mouseClicksDoNotReachTheCoveredWidget()
    {
        Window window;
        window.open();
        QSignalSpy clicked(window.button, &QPushButton::clicked);
        const QPoint inPanel = window.button->geometry().center();
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
        Window window;
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
        Window window;
        window.open();
        window.freeEdit->setFocus();
        window.mask->attach(window.panel);
        QCOMPARE(window.focusWidget(), window.freeEdit);
        typeInto(window, "ab");
        QCOMPARE(window.freeEdit->text(), QStringLiteral("ab"));
    }

    void tabLeavesTheMaskForAFreeControl()
    {
        Window window;
        window.open();
        window.edit->setFocus();
        window.mask->attach(window.panel);
        QTRY_COMPARE(window.focusWidget(), window.mask);
        QTest::keyClick(window.windowHandle(), Qt::Key_Tab);
        QCOMPARE(window.focusWidget(), window.freeEdit);
    }

    void theWheelTurnsOnlyWhileItCanBeSeen()
    {
        Window window;
        window.open();
        window.mask->attach(window.panel);
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
        Window window;
        window.open();
        window.mask->attach(window.panel);
        QCOMPARE(window.mask->text(), QStringLiteral("正在加载基础数据"));
        QCOMPARE(window.mask->accessibleName(), QStringLiteral("正在加载基础数据"));
        const QImage before = window.mask->grab().toImage();
        window.mask->setText(QStringLiteral("正在加载风控数据"));
        QCOMPARE(window.mask->text(), QStringLiteral("正在加载风控数据"));
        QVERIFY(window.mask->grab().toImage() != before);
    }

    void aMaskSurvivesItsTarget()
    {
        Window window;
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
        Window window;
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
        WQ::CCommonDialog dialog;
        auto* const edit = new WQ::CLineEdit(0, nullptr);
        dialog.setInnerWidget(edit);
        WQ::CLoadingMaskWidget mask(QStringLiteral("正在加载风控数据"), &dialog);
        mask.attach(&dialog);
        QVERIFY(!mask.isVisible());
        dialog.show();
        QVERIFY(mask.isVisible());
        QTRY_COMPARE(mask.geometry(), dialog.contentArea());
    }

    void escLeavesADialogUnderItsMask()
    {
        WQ::CCommonDialog dialog;
        auto* const edit = new WQ::CLineEdit(0, nullptr);
        dialog.setInnerWidget(edit);
        WQ::CLoadingMaskWidget mask(QStringLiteral("正在加载风控数据"), &dialog);
        mask.attach(&dialog);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        typeInto(dialog, "a");
        QCOMPARE(edit->text(), QString());
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
    }

    void aDialogOpenedFromTheCoveredWidgetIsFree()
    {
        Window window;
        window.open();
        window.mask->attach(window.panel);
        QDialog dialog(window.panel);
        auto* const edit = new QLineEdit(&dialog);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        edit->setFocus();
        typeInto(dialog, "ab");
        QCOMPARE(edit->text(), QStringLiteral("ab"));
    }
};

QTEST_MAIN(MaskTest)
#include "MaskTest.moc"
