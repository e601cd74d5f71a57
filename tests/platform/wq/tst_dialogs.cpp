// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <WQ/CCommonDialog.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/CWidgetList.h>

#include <QPushButton>
#include <QTimer>
#include <QToolButton>

namespace
{

class Dialog : public WQ::CCommonDialog
{
public:
    Dialog()
    {
        setTitle(QStringLiteral("添加账号组"));
        auto* const list = new WQ::CWidgetList(2, this);
        list->setMargin(15, 15, 15, 15);
        auto* const row = new WQ::CWidgetList(1, list);
        row->addFixedWidget(new WQ::CSimpleTextWidget(false, 0, QStringLiteral("账号组名:"), row), 3, true);
        edit = new WQ::CLineEdit(0, row);
        row->addFixedWidget(edit, 3, true);
        save = new WQ::CMediumNormalButton(2, 1, list);
        save->setText(QStringLiteral("保存"));
        list->addFixedWidget(row, 3, true);
        list->addFixedWidget(save, 1, false);
        list->updateWidgetLength();
        setInnerWidget(list);
    }

    bool handleEvent(int type, int id, int param, QString text, void* data) override
    {
        if (type == WQ::ButtonClicked && id == 2) {
            done(1);
            return true;
        }
        return WQ::CCommonDialog::handleEvent(type, id, param, text, data);
    }

    bool hasUnsavedEdits() const override { return !edit->text().isEmpty(); }

    WQ::CLineEdit* edit;
    WQ::CMediumNormalButton* save;
};

template <typename Act>
void whenOpen(QDialog& dialog, Act act)
{
    auto* const timer = new QTimer(&dialog);
    QObject::connect(timer, &QTimer::timeout, &dialog, [timer, &dialog, act] {
        if (!dialog.isVisible()) {
            return;
        }
        timer->stop();
        timer->deleteLater();
        act();
    });
    timer->start(1);
}

/// Types as the keyboard does: into the window, which hands the keys to the widget that has the focus.
void typeInto(QWidget& window, const char* keys)
{
    QVERIFY(QTest::qWaitForWindowActive(&window));
    for (; *keys != '\0'; ++keys) {
        QTest::keyClick(window.windowHandle(), *keys);
    }
}

} // namespace

class DialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { WQ::CUiResourceManager::instance()->applyTo(*qApp); }

    void execReturnsWhatDoneWasGiven()
    {
        Dialog dialog;
        whenOpen(dialog, [&] { QTest::mouseClick(dialog.save, Qt::LeftButton); });
        QCOMPARE(dialog.exec(), 1);
        QVERIFY(!dialog.isVisible());
    }

    void aDialogIsModalWhileItRuns()
    {
        Dialog dialog;
        bool modal = false;
        whenOpen(dialog, [&] {
            modal = dialog.isModal() && QApplication::activeModalWidget() == &dialog;
            dialog.done(0);
        });
        dialog.exec();
        QVERIFY(modal);
    }

    void withUnsavedEditsTheFirstEscSaysSoAndTheSecondCloses()
    {
        Dialog dialog;
        whenOpen(dialog, [&] {
            typeInto(dialog, "x");
            QTest::keyClick(dialog.edit, Qt::Key_Escape);
            QVERIFY(dialog.isVisible());
            const WQ::CMessageTip* tip = WQ::CMessageTip::tipOf(&dialog);
            QVERIFY(tip);
            QCOMPARE(tip->text(), QStringLiteral("有未保存的修改, 再按一次Esc放弃"));
            // Who has not read it in time is told again.
            WQ::CMessageTip::hideTip(&dialog);
            QTest::keyClick(dialog.edit, Qt::Key_Escape);
            QVERIFY(dialog.isVisible());
            QVERIFY(WQ::CMessageTip::tipOf(&dialog));
            QTest::keyClick(dialog.edit, Qt::Key_Escape);
            QVERIFY(!dialog.isVisible());
        });
        QCOMPARE(dialog.exec(), 0);
        whenOpen(dialog, [&] {
            QVERIFY(dialog.hasUnsavedEdits());
            QTest::mouseClick(dialog.findChild<QToolButton*>(QStringLiteral("title_close")), Qt::LeftButton);
            QVERIFY(!dialog.isVisible());
        });
        QCOMPARE(dialog.exec(), 0);
    }

    void aPlaceThatTheWindowManagerToldWronglyIsAskedForAgain()
    {
        QWidget window;
        window.setGeometry(300, 200, 600, 400);
        window.show();
        Dialog dialog;
        dialog.setParent(&window, dialog.windowFlags());
        dialog.setAttribute(Qt::WA_ShowWithoutActivating);
        dialog.show();
        const QPoint asked = dialog.pos();
        QVERIFY(!asked.isNull());
        QApplication::setActiveWindow(&window);
        dialog.move(0, 0);
        QApplication::setActiveWindow(&dialog);
        QCOMPARE(dialog.pos(), asked);
        // Later it is the user who has moved it there.
        QApplication::setActiveWindow(&window);
        dialog.move(0, 0);
        QApplication::setActiveWindow(&dialog);
        QCOMPARE(dialog.pos(), QPoint(0, 0));
        // The dialog goes to its other place when it was put there.
        dialog.hide();
        dialog.show();
        QApplication::setActiveWindow(&window);
        dialog.move(40, 50);
        QApplication::setActiveWindow(&dialog);
        QCOMPARE(dialog.pos(), QPoint(40, 50));
    }

    void theTitleIsMarkedWhileThereAreUnsavedEdits()
    {
        Dialog dialog;
        dialog.resize(400, 300);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        dialog.edit->setFocus();
        QVERIFY(!dialog.isTitleMarked());
        const auto title = [&] { return dialog.grab(QRect(0, 0, 300, WQ::CCustomDialog::TitleHeight)).toImage(); };
        const QImage unmarked = title();
        typeInto(dialog, "x");
        QTRY_VERIFY(dialog.isTitleMarked());
        QVERIFY(title() != unmarked);
        QCOMPARE(dialog.accessibleDescription(), QStringLiteral("有未保存的修改"));
        QCOMPARE(dialog.title(), QStringLiteral("添加账号组"));
        QTest::keyClick(dialog.edit, Qt::Key_Backspace);
        QTRY_VERIFY(!dialog.isTitleMarked());
        QCOMPARE(title(), unmarked);
        dialog.edit->setText(QStringLiteral("x"));
        dialog.hide();
        dialog.show();
        QVERIFY(dialog.isTitleMarked());
    }

    void escAndTheCloseButtonEndItWithZero()
    {
        Dialog dialog;
        whenOpen(dialog, [&] { QTest::keyClick(dialog.edit, Qt::Key_Escape); });
        QCOMPARE(dialog.exec(), 0);
        auto* const close = dialog.findChild<QToolButton*>(QStringLiteral("title_close"));
        QVERIFY(close);
        QCOMPARE(close->accessibleName(), QStringLiteral("关闭"));
        whenOpen(dialog, [&] { QTest::mouseClick(close, Qt::LeftButton); });
        QCOMPARE(dialog.exec(), 0);
        whenOpen(dialog, [&] { dialog.close(); });
        QCOMPARE(dialog.exec(), 0);
    }

    void theContentsStayFromOneRunToTheNext()
    {
        Dialog dialog;
        whenOpen(dialog, [&] {
            QTest::keyClicks(dialog.edit, QStringLiteral("abc"));
            QTest::mouseClick(dialog.save, Qt::LeftButton);
        });
        QCOMPARE(dialog.exec(), 1);
        whenOpen(dialog, [&] { dialog.done(0); });
        QCOMPARE(dialog.exec(), 0);
        QCOMPARE(dialog.edit->text(), QStringLiteral("abc"));
    }

    void enterEndsNothing()
    {
        Dialog dialog;
        auto* const foreign = new QPushButton(QStringLiteral("默认"), dialog.innerWidget());
        foreign->setDefault(true);
        QSignalSpy pressed(foreign, &QPushButton::clicked);
        dialog.show();
        dialog.edit->setFocus();
        QTest::keyClick(dialog.edit, Qt::Key_Return);
        QTest::keyClick(&dialog, Qt::Key_Enter);
        QVERIFY(dialog.isVisible());
        QCOMPARE(pressed.count(), 0);
    }

    void closeAfterDoneKeepsTheResult()
    {
        Dialog dialog;
        whenOpen(dialog, [&] {
            dialog.done(1);
            dialog.close();
        });
        QCOMPARE(dialog.exec(), 1);
    }

    void theKeyboardAloneSaves()
    {
        Dialog dialog;
        whenOpen(dialog, [&] {
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            QCOMPARE(dialog.focusWidget(), dialog.edit);
            typeInto(dialog, "x1");
            QTest::keyClick(dialog.windowHandle(), Qt::Key_Tab);
            QCOMPARE(dialog.focusWidget(), dialog.save);
            QTest::keyClick(dialog.windowHandle(), Qt::Key_Space);
        });
        QCOMPARE(dialog.exec(), 1);
        QCOMPARE(dialog.edit->text(), QStringLiteral("x1"));
    }

    void theInnerWidgetFillsWhatIsBelowTheTitleBar()
    {
        Dialog dialog;
        dialog.resize(450, 240);
        dialog.show();
        QCOMPARE(dialog.size(), QSize(450, 240));
        QTRY_COMPARE(dialog.innerWidget()->geometry(), dialog.contentArea());
        QCOMPARE(dialog.contentArea().top(), WQ::CCommonDialog::TitleHeight);
        QCOMPARE(dialog.title(), QStringLiteral("添加账号组"));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("添加账号组"));
    }

    void aDialogIsNeverSmallerThanItsContents()
    {
        Dialog dialog;
        dialog.show();
        dialog.resize(10, 10);
        QVERIFY(dialog.contentArea().width() >= dialog.innerWidget()->minimumSizeHint().width());
        QVERIFY(dialog.contentArea().height() >= dialog.innerWidget()->minimumSizeHint().height());
    }

    void everyControlHasAnAccessibleName()
    {
        Dialog dialog;
        for (auto* const widget : dialog.findChildren<QWidget*>()) {
            if (widget->focusPolicy() != Qt::NoFocus || qobject_cast<QAbstractButton*>(widget)) {
                QVERIFY2(!widget->accessibleName().isEmpty(), widget->metaObject()->className());
            }
        }
    }

    void aThemeSwitchRepaintsAnOpenDialog()
    {
        Dialog dialog;
        dialog.show();
        const QImage dark = dialog.grab().toImage();
        QVERIFY(WQ::CUiResourceManager::instance()->setTheme(QStringLiteral("light")));
        const QImage light = dialog.grab().toImage();
        QVERIFY(dark.pixelColor(60, 4) != light.pixelColor(60, 4));
        QVERIFY(WQ::CUiResourceManager::instance()->setTheme(QStringLiteral("dark")));
        QCOMPARE(dialog.grab().toImage(), dark);
    }
};

TEST_WITH_WIDGETS(DialogTest)
#include "tst_dialogs.moc"
