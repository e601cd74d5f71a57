// SPDX-License-Identifier: Apache-2.0
#include "MaskWindow.h"
#include "support/TestProgram.h"

#include <WQ/CUiResourceManager.h>

#include <QAccessible>
#include <QAction>
#include <QMenu>
#include <QMimeData>
#include <QShortcut>
#include <QToolButton>

using namespace mask_test;

namespace
{

void doAction(QWidget* widget, const QString& action)
{
    QAccessible::queryAccessibleInterface(widget)->actionInterface()->doAction(action);
    QCoreApplication::processEvents();
}

/// Drags onto the middle of `target` and drops, as the window system does.
void dropOn(QWidget* target)
{
    QMimeData data;
    data.setText(QStringLiteral("600000"));
    const QPoint middle = target->rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &enter);
    QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &drop);
}

} // namespace

/// No way of input leads through a mask, and every way is open again behind it.
class MaskInputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { WQ::CUiResourceManager::instance()->applyTo(*qApp); }

    void assistiveTechnologyDoesNothingToTheCoveredWidget()
    {
        MaskWindow window;
        window.open();
        QSignalSpy clicked(window.button, &QPushButton::clicked);
        const auto useAll = [&] {
            doAction(window.button, QAccessibleActionInterface::pressAction());
            doAction(window.check, QAccessibleActionInterface::toggleAction());
            doAction(window.combo, QAccessibleActionInterface::showMenuAction());
            doAction(window.edit, QAccessibleActionInterface::setFocusAction());
        };
        window.freeEdit->setFocus();
        window.mask->attach(window.panel);
        useAll();
        QCOMPARE(clicked.count(), 0);
        QVERIFY(!window.check->isChecked());
        QVERIFY(!window.combo->view()->isVisible());
        QCOMPARE(window.focusWidget(), window.freeEdit);
        QVERIFY(QAccessible::queryAccessibleInterface(window.button)->state().disabled);

        window.mask->hide();
        useAll();
        QTRY_COMPARE(clicked.count(), 1);
        QVERIFY(window.check->isChecked());
        QVERIFY(window.combo->view()->isVisible());
        QVERIFY(!QAccessible::queryAccessibleInterface(window.button)->state().disabled);
    }

    void aClickThatIsStillUnderWayDoesNothing()
    {
        MaskWindow window;
        window.open();
        QSignalSpy clicked(window.button, &QPushButton::clicked);
        doAction(window.button, QAccessibleActionInterface::pressAction());
        window.check->animateClick(1);
        window.mask->attach(window.panel);
        QTest::qWait(200); // a click takes 100 ms
        QCOMPARE(clicked.count(), 0);
        QVERIFY(!window.check->isChecked());
        window.mask->hide();
        QTest::qWait(200);
        QCOMPARE(clicked.count(), 0);
        QVERIFY(!window.check->isChecked());
        doAction(window.button, QAccessibleActionInterface::pressAction());
        QTRY_COMPARE(clicked.count(), 1);
    }

    void itDoesNothingEitherWhileTheCoveredWidgetIsNotOnScreen()
    {
        MaskWindow window;
        window.mask->attach(window.panel);
        doAction(window.check, QAccessibleActionInterface::toggleAction());
        QVERIFY(!window.check->isChecked());
        window.open();
        window.hide();
        doAction(window.check, QAccessibleActionInterface::toggleAction());
        QVERIFY(!window.check->isChecked());
        window.mask->hide();
        doAction(window.check, QAccessibleActionInterface::toggleAction());
        QVERIFY(window.check->isChecked());
    }

    void shortcutsOfTheCoveredWidgetDoNothing()
    {
        MaskWindow window;
        QShortcut ofButton(QKeySequence(Qt::Key_F6), window.button, nullptr, nullptr, Qt::WindowShortcut);
        QShortcut ofPanel(QKeySequence(Qt::Key_F7), window.panel, nullptr, nullptr, Qt::WindowShortcut);
        QShortcut ofWindow(QKeySequence(Qt::Key_F8), &window);
        auto* const action = new QAction(window.panel);
        action->setShortcut(QKeySequence(Qt::Key_F9));
        window.panel->addAction(action);
        window.button->setShortcut(QKeySequence(Qt::Key_F10));
        QSignalSpy button(&ofButton, &QShortcut::activated);
        QSignalSpy panel(&ofPanel, &QShortcut::activated);
        QSignalSpy free(&ofWindow, &QShortcut::activated);
        QSignalSpy triggered(action, &QAction::triggered);
        QSignalSpy clicked(window.button, &QPushButton::clicked);
        window.open();
        window.freeEdit->setFocus();
        const auto pressAll = [&] {
            for (const Qt::Key key : {Qt::Key_F6, Qt::Key_F7, Qt::Key_F8, Qt::Key_F9, Qt::Key_F10}) {
                QTest::keyClick(window.windowHandle(), key);
            }
        };
        window.mask->attach(window.panel);
        pressAll();
        QCOMPARE(button.count() + panel.count() + triggered.count() + clicked.count(), 0);
        QCOMPARE(free.count(), 1);
        window.mask->hide();
        pressAll();
        QCOMPARE(button.count(), 1);
        QCOMPARE(panel.count(), 1);
        QCOMPARE(triggered.count(), 1);
        QTRY_COMPARE(clicked.count(), 1);
    }

    void theDefaultButtonOfADialogIsNotPressed()
    {
        QDialog dialog;
        auto* const panel = new QWidget(&dialog);
        auto* const save = new QPushButton(panel);
        auto* const freeEdit = new QLineEdit(&dialog);
        save->setDefault(true);
        WQ::CLoadingMaskWidget mask(QStringLiteral("…"), panel);
        QSignalSpy clicked(save, &QPushButton::clicked);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        freeEdit->setFocus();
        mask.attach(panel);
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Return);
        QCOMPARE(clicked.count(), 0);
        mask.hide();
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Return);
        QTRY_COMPARE(clicked.count(), 1);
    }

    void nothingIsDroppedOnTheCoveredWidgetAndItOpensNoMenu()
    {
        MaskWindow window;
        window.open();
        const auto useBoth = [](Place* place) {
            dropOn(place);
            QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(5, 5));
            QCoreApplication::sendEvent(place, &menu);
        };
        window.mask->attach(window.panel);
        useBoth(window.place);
        useBoth(window.panel);
        QCOMPARE(window.place->drops + window.place->menus + window.panel->drops + window.panel->menus, 0);
        window.mask->hide();
        useBoth(window.place);
        useBoth(window.panel);
        QCOMPARE(window.place->drops, 1);
        QCOMPARE(window.place->menus, 1);
        QCOMPARE(window.panel->drops, 1);
        QCOMPARE(window.panel->menus, 1);
    }

    void whatTheCoveredWidgetHasPoppedUpIsClosed()
    {
        MaskWindow window;
        window.open();
        window.combo->showPopup();
        QTRY_VERIFY(window.combo->view()->isVisible());
        window.mask->attach(window.panel);
        QTRY_VERIFY(!window.combo->view()->isVisible());
        window.mask->hide();

        QMenu menu(window.button);
        QMenu* const more = menu.addMenu(QStringLiteral("改为"));
        more->addAction(QStringLiteral("白名单"));
        menu.popup(window.mapToGlobal(QPoint()));
        more->popup(window.mapToGlobal(QPoint()));
        window.mask->attach(window.panel);
        QVERIFY(!menu.isVisible());
        QVERIFY(!more->isVisible());
        window.mask->hide();

        QMenu freeMenu(window.freeEdit);
        freeMenu.addAction(QStringLiteral("粘贴"));
        freeMenu.popup(window.mapToGlobal(QPoint()));
        window.mask->attach(window.panel);
        QVERIFY(freeMenu.isVisible());
        freeMenu.close();
    }

    void whatWasDisabledBeforeStaysSo()
    {
        MaskWindow window;
        auto* const child = new QPushButton(window.panel);
        child->setEnabled(false);
        window.button->setEnabled(false);
        window.open();
        window.mask->attach(window.panel);
        window.mask->attach(window.panel);
        window.mask->hide();
        QVERIFY(!child->isEnabled());
        QVERIFY(!window.button->isEnabled());
        QVERIFY(window.edit->isEnabled());
    }

    void aWidgetThatIsAddedLaterIsDisabledToo()
    {
        MaskWindow window;
        window.cover();
        auto* const late = new QCheckBox(window.panel);
        late->show();
        QTRY_VERIFY(!late->isEnabled());
        window.mask->hide();
        QVERIFY(late->isEnabled());
    }

    void aWindowThatIsOpenAlreadyStaysFree()
    {
        MaskWindow window;
        QDialog dialog(window.button);
        auto* const inDialog = new QPushButton(&dialog);
        QDialog disabled(window.button);
        disabled.setEnabled(false);
        window.open();
        dialog.show();
        window.mask->attach(window.panel);
        QVERIFY(!window.button->isEnabled());
        QVERIFY(inDialog->isEnabled());
        QVERIFY(!disabled.isEnabled());
        window.mask->hide();
        QVERIFY(inDialog->isEnabled());
        QVERIFY(!disabled.isEnabled());
    }

    void aMaskThatMovesOrGoesLeavesNothingDisabled()
    {
        MaskWindow window;
        window.cover();
        window.mask->attach(&window);
        QVERIFY(!window.freeEdit->isEnabled());
        window.mask->attach(window.panel);
        QVERIFY(window.freeEdit->isEnabled());
        QVERIFY(!window.edit->isEnabled());
        delete window.mask;
        QVERIFY(window.edit->isEnabled());
    }

    void theTitleBarOfADialogStaysFree()
    {
        MaskedDialog dialog;
        dialog.show();
        QVERIFY(!dialog.edit->isEnabled());
        doAction(dialog.findChild<QToolButton*>(QStringLiteral("title_close")),
                 QAccessibleActionInterface::pressAction());
        QTRY_VERIFY(!dialog.isVisible());
    }

    void theFocusComesBackToWhereItWas_data()
    {
        const support::DataRows<bool> row("openBefore");
        row("covered while it is open", true);
        row("covered before it opens", false);
    }

    void theFocusComesBackToWhereItWas()
    {
        QFETCH(bool, openBefore);
        MaskWindow window;
        window.check->setFocus();
        if (openBefore) {
            window.open();
        }
        window.mask->attach(window.panel);
        if (!openBefore) {
            window.open();
        }
        QTRY_COMPARE(window.focusWidget(), window.mask);
        window.check->setFocus();
        window.panel->setFocus();
        QCOMPARE(window.focusWidget(), window.mask);
        window.mask->hide();
        QCOMPARE(QApplication::focusWidget(), window.check);
        QTest::keyClick(window.windowHandle(), Qt::Key_Space);
        QVERIFY(window.check->isChecked());
    }

    void aDialogThatOpensUnderItsMaskGivesTheFocusToItsFirstControl()
    {
        MaskedDialog dialog;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        dialog.mask->hide();
        QCOMPARE(QApplication::focusWidget(), dialog.edit);
    }
};

TEST_WITH_WIDGETS(MaskInputTest)
#include "tst_loading_mask_input.moc"
