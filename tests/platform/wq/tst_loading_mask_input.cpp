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

/// No way of input leads through a mask, and every way is open again behind it.
class MaskInputTest : public support::FixtureTest<MaskWindow>
{
    Q_OBJECT

    static void doAction(QWidget* widget, const QString& action)
    {
        QAccessible::queryAccessibleInterface(widget)->actionInterface()->doAction(action);
        QCoreApplication::processEvents();
    }

    /// Drags onto the middle of `target` and drops, as the window system does.
    static void dropOn(QWidget* target)
    {
        QMimeData data;
        data.setText(QStringLiteral("600000"));
        const QPoint middle = target->rect().center();
        QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &enter);
        QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &drop);
    }

private Q_SLOTS:
    void initTestCase() { WQ::CUiResourceManager::instance()->applyTo(*qApp); }

    void assistiveTechnologyDoesNothingToTheCoveredWidget()
    {
        m_fixture->open();
        QSignalSpy clicked(m_fixture->button, &QPushButton::clicked);
        const auto useAll = [&] {
            doAction(m_fixture->button, QAccessibleActionInterface::pressAction());
            doAction(m_fixture->check, QAccessibleActionInterface::toggleAction());
            doAction(m_fixture->combo, QAccessibleActionInterface::showMenuAction());
            doAction(m_fixture->edit, QAccessibleActionInterface::setFocusAction());
        };
        m_fixture->freeEdit->setFocus();
        m_fixture->mask->attach(m_fixture->panel);
        useAll();
        QCOMPARE(clicked.count(), 0);
        QVERIFY(!m_fixture->check->isChecked());
        QVERIFY(!m_fixture->combo->view()->isVisible());
        QCOMPARE(m_fixture->focusWidget(), m_fixture->freeEdit);
        QVERIFY(QAccessible::queryAccessibleInterface(m_fixture->button)->state().disabled);

        m_fixture->mask->hide();
        useAll();
        QTRY_COMPARE(clicked.count(), 1);
        QVERIFY(m_fixture->check->isChecked());
        QVERIFY(m_fixture->combo->view()->isVisible());
        QVERIFY(!QAccessible::queryAccessibleInterface(m_fixture->button)->state().disabled);
    }

    void aClickThatIsStillUnderWayDoesNothing()
    {
        m_fixture->open();
        QSignalSpy clicked(m_fixture->button, &QPushButton::clicked);
        doAction(m_fixture->button, QAccessibleActionInterface::pressAction());
        m_fixture->check->animateClick(1);
        m_fixture->mask->attach(m_fixture->panel);
        QTest::qWait(200); // a click takes 100 ms
        QCOMPARE(clicked.count(), 0);
        QVERIFY(!m_fixture->check->isChecked());
        m_fixture->mask->hide();
        QTest::qWait(200);
        QCOMPARE(clicked.count(), 0);
        QVERIFY(!m_fixture->check->isChecked());
        doAction(m_fixture->button, QAccessibleActionInterface::pressAction());
        QTRY_COMPARE(clicked.count(), 1);
    }

    void itDoesNothingEitherWhileTheCoveredWidgetIsNotOnScreen()
    {
        m_fixture->mask->attach(m_fixture->panel);
        doAction(m_fixture->check, QAccessibleActionInterface::toggleAction());
        QVERIFY(!m_fixture->check->isChecked());
        m_fixture->open();
        m_fixture->hide();
        doAction(m_fixture->check, QAccessibleActionInterface::toggleAction());
        QVERIFY(!m_fixture->check->isChecked());
        m_fixture->mask->hide();
        doAction(m_fixture->check, QAccessibleActionInterface::toggleAction());
        QVERIFY(m_fixture->check->isChecked());
    }

    void shortcutsOfTheCoveredWidgetDoNothing()
    {
        QShortcut ofButton(QKeySequence(Qt::Key_F6), m_fixture->button, nullptr, nullptr, Qt::WindowShortcut);
        QShortcut ofPanel(QKeySequence(Qt::Key_F7), m_fixture->panel, nullptr, nullptr, Qt::WindowShortcut);
        QShortcut ofWindow(QKeySequence(Qt::Key_F8), m_fixture.get());
        auto* const action = new QAction(m_fixture->panel);
        action->setShortcut(QKeySequence(Qt::Key_F9));
        m_fixture->panel->addAction(action);
        m_fixture->button->setShortcut(QKeySequence(Qt::Key_F10));
        QSignalSpy button(&ofButton, &QShortcut::activated);
        QSignalSpy panel(&ofPanel, &QShortcut::activated);
        QSignalSpy free(&ofWindow, &QShortcut::activated);
        QSignalSpy triggered(action, &QAction::triggered);
        QSignalSpy clicked(m_fixture->button, &QPushButton::clicked);
        m_fixture->open();
        m_fixture->freeEdit->setFocus();
        const auto pressAll = [&] {
            for (const Qt::Key key : {Qt::Key_F6, Qt::Key_F7, Qt::Key_F8, Qt::Key_F9, Qt::Key_F10}) {
                QTest::keyClick(m_fixture->windowHandle(), key);
            }
        };
        m_fixture->mask->attach(m_fixture->panel);
        pressAll();
        QCOMPARE(button.count() + panel.count() + triggered.count() + clicked.count(), 0);
        QCOMPARE(free.count(), 1);
        m_fixture->mask->hide();
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
        m_fixture->open();
        const auto useBoth = [](Place* place) {
            dropOn(place);
            QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(5, 5));
            QCoreApplication::sendEvent(place, &menu);
        };
        m_fixture->mask->attach(m_fixture->panel);
        useBoth(m_fixture->place);
        useBoth(m_fixture->panel);
        QCOMPARE(m_fixture->place->drops + m_fixture->place->menus + m_fixture->panel->drops + m_fixture->panel->menus,
                 0);
        m_fixture->mask->hide();
        useBoth(m_fixture->place);
        useBoth(m_fixture->panel);
        QCOMPARE(m_fixture->place->drops, 1);
        QCOMPARE(m_fixture->place->menus, 1);
        QCOMPARE(m_fixture->panel->drops, 1);
        QCOMPARE(m_fixture->panel->menus, 1);
    }

    void whatTheCoveredWidgetHasPoppedUpIsClosed()
    {
        m_fixture->open();
        m_fixture->combo->showPopup();
        QTRY_VERIFY(m_fixture->combo->view()->isVisible());
        m_fixture->mask->attach(m_fixture->panel);
        QTRY_VERIFY(!m_fixture->combo->view()->isVisible());
        m_fixture->mask->hide();

        QMenu menu(m_fixture->button);
        QMenu* const more = menu.addMenu(QStringLiteral("改为"));
        more->addAction(QStringLiteral("白名单"));
        menu.popup(m_fixture->mapToGlobal(QPoint()));
        more->popup(m_fixture->mapToGlobal(QPoint()));
        m_fixture->mask->attach(m_fixture->panel);
        QVERIFY(!menu.isVisible());
        QVERIFY(!more->isVisible());
        m_fixture->mask->hide();

        QMenu freeMenu(m_fixture->freeEdit);
        freeMenu.addAction(QStringLiteral("粘贴"));
        freeMenu.popup(m_fixture->mapToGlobal(QPoint()));
        m_fixture->mask->attach(m_fixture->panel);
        QVERIFY(freeMenu.isVisible());
        freeMenu.close();
    }

    void whatWasDisabledBeforeStaysSo()
    {
        auto* const child = new QPushButton(m_fixture->panel);
        child->setEnabled(false);
        m_fixture->button->setEnabled(false);
        m_fixture->open();
        m_fixture->mask->attach(m_fixture->panel);
        m_fixture->mask->attach(m_fixture->panel);
        m_fixture->mask->hide();
        QVERIFY(!child->isEnabled());
        QVERIFY(!m_fixture->button->isEnabled());
        QVERIFY(m_fixture->edit->isEnabled());
    }

    void aWidgetThatIsAddedLaterIsDisabledToo()
    {
        m_fixture->cover();
        auto* const late = new QCheckBox(m_fixture->panel);
        late->show();
        QTRY_VERIFY(!late->isEnabled());
        m_fixture->mask->hide();
        QVERIFY(late->isEnabled());
    }

    void aWindowThatIsOpenAlreadyStaysFree()
    {
        QDialog dialog(m_fixture->button);
        auto* const inDialog = new QPushButton(&dialog);
        QDialog disabled(m_fixture->button);
        disabled.setEnabled(false);
        m_fixture->open();
        dialog.show();
        m_fixture->mask->attach(m_fixture->panel);
        QVERIFY(!m_fixture->button->isEnabled());
        QVERIFY(inDialog->isEnabled());
        QVERIFY(!disabled.isEnabled());
        m_fixture->mask->hide();
        QVERIFY(inDialog->isEnabled());
        QVERIFY(!disabled.isEnabled());
    }

    void aMaskThatMovesOrGoesLeavesNothingDisabled()
    {
        m_fixture->cover();
        m_fixture->mask->attach(m_fixture.get());
        QVERIFY(!m_fixture->freeEdit->isEnabled());
        m_fixture->mask->attach(m_fixture->panel);
        QVERIFY(m_fixture->freeEdit->isEnabled());
        QVERIFY(!m_fixture->edit->isEnabled());
        delete m_fixture->mask;
        QVERIFY(m_fixture->edit->isEnabled());
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
        m_fixture->check->setFocus();
        if (openBefore) {
            m_fixture->open();
        }
        m_fixture->mask->attach(m_fixture->panel);
        if (!openBefore) {
            m_fixture->open();
        }
        QTRY_COMPARE(m_fixture->focusWidget(), m_fixture->mask);
        m_fixture->check->setFocus();
        m_fixture->panel->setFocus();
        QCOMPARE(m_fixture->focusWidget(), m_fixture->mask);
        m_fixture->mask->hide();
        QCOMPARE(QApplication::focusWidget(), m_fixture->check);
        QTest::keyClick(m_fixture->windowHandle(), Qt::Key_Space);
        QVERIFY(m_fixture->check->isChecked());
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
