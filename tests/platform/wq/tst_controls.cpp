// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <WQ/CBaseWidget.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/IDockableWidget.h>
#include <WQ/StringConversion.h>

#include <QAccessible>

class ControlTest : public QObject
{
    Q_OBJECT

    static WQ::CUiResourceManager& theme() { return *WQ::CUiResourceManager::instance(); }

    static bool shows(QWidget& widget, const QColor& colour)
    {
        const QImage image = widget.grab().toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y).rgb() == colour.rgb()) {
                    return true;
                }
            }
        }
        return false;
    }

private Q_SLOTS:
    void initTestCase() { theme().applyTo(*qApp); }
    void init() { QVERIFY(theme().setTheme(QStringLiteral("dark"))); }

    void theHintIsShownInItsColourWhileTheEditIsEmpty()
    {
        WQ::CLineEdit edit(0, nullptr);
        edit.resize(260, 26);
        const QColor colour(12, 200, 90);
        edit.setEmptyHintText(QStringLiteral("请输入账号组名, 按Enter键查询"));
        edit.setEmptyHintColor(colour);
        QCOMPARE(edit.emptyHintText(), QStringLiteral("请输入账号组名, 按Enter键查询"));
        QCOMPARE(edit.emptyHintColor(), colour);
        QVERIFY(shows(edit, colour));
        edit.setText(QStringLiteral("稳健"));
        QVERIFY(!shows(edit, colour));
    }

    void aHintInTheThemesColourFollowsTheTheme()
    {
        const QString hint = QStringLiteral("clr_lineedit_empty_hint");
        WQ::CLineEdit themed(0, nullptr);
        WQ::CLineEdit own(1, nullptr);
        themed.setEmptyHintColor(theme().colour(hint));
        own.setEmptyHintColor(Qt::red);
        QVERIFY(theme().setTheme(QStringLiteral("light")));
        QCOMPARE(themed.emptyHintColor(), theme().colour(hint));
        QCOMPARE(own.emptyHintColor(), QColor(Qt::red));
    }

    void theTextIsReadAsItStands()
    {
        WQ::CLineEdit edit(0, nullptr);
        edit.setText(QStringLiteral("  招商 "));
        QCOMPARE(edit.getText(), QStringLiteral("  招商 "));
        QCOMPARE(edit.toString(), QStringLiteral("  招商 "));
    }

    void aButtonsTextIsItsAccessibleName()
    {
        WQ::CSmallNormalButton small(1, true, 1, nullptr);
        WQ::CMediumNormalButton medium(2, 1, nullptr);
        small.setText(QStringLiteral("添加账号组"));
        medium.setText(QStringLiteral("保存"));
        QCOMPARE(small.accessibleName(), QStringLiteral("添加账号组"));
        QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(&medium);
        QVERIFY(seen);
        QCOMPARE(seen->text(QAccessible::Name), QStringLiteral("保存"));
        QCOMPARE(seen->role(), QAccessible::PushButton);
    }

    void aButtonOutsideTheTabOrderIsSkippedByTab()
    {
        WQ::CSmallNormalButton stop(1, true, 1, nullptr);
        WQ::CSmallNormalButton skip(1, false, 1, nullptr);
        QVERIFY(stop.focusPolicy() & Qt::TabFocus);
        QVERIFY(!(skip.focusPolicy() & Qt::TabFocus));
    }

    void aNarrowButtonShowsItsWholeText()
    {
        WQ::CSmallNormalButton button(1, true, 1, nullptr);
        button.setText(QStringLiteral("添加账号组"));
        button.setFixedSize(70, 26);
        QVERIFY(button.fontMetrics().horizontalAdvance(button.text()) <= 64);
    }

    void aFixedWidthGrowsWithItsTextAlone()
    {
        auto* const resources = WQ::CUiResourceManager::instance();
        const QString text = QStringLiteral("添加账号组");
        QWidget window;
        WQ::CSmallNormalButton before(1, true, 1, &window);
        before.setText(text);
        before.setFixedWidth(70);
        window.show();
        QCOMPARE(before.width(), 70);
        resources->setFontScale(1.5);
        WQ::CSmallNormalButton after(1, true, 1, &window);
        after.setFixedWidth(70);
        after.setText(text);
        for (const QWidget* const button : {&before, &after}) {
            QVERIFY(button->minimumWidth() >= button->fontMetrics().horizontalAdvance(text) + 6); // as it is drawn
        }
        WQ::CSmallNormalButton free(1, true, 1, &window);
        free.setText(text);
        QVERIFY(free.maximumWidth() > 1000);
        before.setFixedWidth(400);
        resources->setFontScale(1.4);
        QCOMPARE(before.minimumWidth(), 400);
        resources->setFontScale(1);
        QCOMPARE(before.minimumWidth(), 400);
        QCOMPARE(after.minimumWidth(), 70);
    }

    void buttonsLookDifferentByTypeAndState()
    {
        QSet<QByteArray> faces;
        for (const int type : {0, 1, 2, 3}) {
            for (const bool enabled : {true, false}) {
                WQ::CMediumNormalButton button(1, type, nullptr);
                button.setText(QStringLiteral("保存"));
                button.setEnabled(enabled);
                button.resize(80, 30);
                QImage image = button.grab().toImage();
                faces << QByteArray(reinterpret_cast<const char*>(image.constBits()), int(image.sizeInBytes()));
            }
        }
        // The disabled ones share one face.
        QCOMPARE(faces.size(), 5);
    }

    void aTextKeepsItsBlanksAndAsksForItsWholeWidth()
    {
        WQ::CSimpleTextWidget label(false, 0, QStringLiteral("查询组名: "), nullptr);
        WQ::CSimpleTextWidget shorter(false, 0, QStringLiteral("查询组名:"), nullptr);
        QCOMPARE(label.text(), QStringLiteral("查询组名: "));
        QVERIFY(label.sizeHint().width() > shorter.sizeHint().width());
        label.setText(QStringLiteral("账号组名称,不能为空"), 100000);
        QVERIFY(label.sizeHint().width() >= label.fontMetrics().horizontalAdvance(label.text()));
        label.setText(label.text(), 40);
        QCOMPARE(label.sizeHint().width(), 40);
    }

    void twoLeadingBlanksAreAsWideAsOneCharacter()
    {
        WQ::CSimpleTextWidget three(false, 0, QStringLiteral("  分系统:"), nullptr);
        WQ::CSimpleTextWidget four(false, 0, QStringLiteral("所属机构:"), nullptr);
        QVERIFY(qAbs(three.sizeHint().width() - four.sizeHint().width()) <= 1);
    }

    void aTextTakesTheColourOfItsKeyInEveryTheme()
    {
        WQ::CSimpleTextWidget label(false, 0, QStringLiteral("账号组名称,不能为空"), nullptr);
        label.setColorKey(QStringLiteral("clr_global_rise"));
        label.resize(label.sizeHint());
        QVERIFY(shows(label, theme().colour(QStringLiteral("clr_global_rise"))));
        QVERIFY(theme().setTheme(QStringLiteral("light")));
        QVERIFY(shows(label, theme().colour(QStringLiteral("clr_global_rise"))));
    }

    void anInnerStretchWidgetFillsItsParentWithinTheMargins()
    {
        WQ::CBaseWidget panel(QStringLiteral("agr"), false, nullptr);
        auto* const first = new QWidget;
        auto* const second = new QWidget;
        panel.setInnerStretchWidget(first, 0, 0, 0, 0);
        panel.setInnerStretchWidget(second, 1, 2, 3, 4);
        panel.resize(100, 100);
        panel.show();
        QCOMPARE(panel.objectName(), QStringLiteral("agr"));
        QCOMPARE(panel.innerStretchWidget(), second);
        QTRY_COMPARE(second->geometry(), QRect(1, 2, 96, 94));
        QVERIFY(first->isHidden());
        delete second;
        QCOMPARE(panel.innerStretchWidget(), nullptr);
    }

    void aWidgetFillsItsBackgroundOnlyWhenItOwnsOne()
    {
        WQ::CBaseWidget owns(QStringLiteral("a"), true, nullptr);
        WQ::CBaseWidget leaves(QStringLiteral("b"), false, nullptr);
        owns.resize(4, 4);
        leaves.resize(4, 4);
        const QColor panel = theme().colour(QStringLiteral("clr_panel_background"));
        QVERIFY(shows(owns, panel));
        QVERIFY(!shows(leaves, panel));
    }

    void aDockableWidgetKeepsNothingByItself()
    {
        WQ::IDockableWidget widget(false, QStringLiteral("agr"), nullptr);
        widget.setTitle(QStringLiteral("账号组"));
        widget.setParam(QStringLiteral("whatever;comes"));
        QCOMPARE(widget.title(), QStringLiteral("账号组"));
        QCOMPARE(widget.param(), QString());
    }

    void stringsOfRecordsAreUtf8()
    {
        QCOMPARE(WQ::sToQs("招商\xF0\x9F\x98\x80"), QStringLiteral("招商\U0001F600"));
        QCOMPARE(WQ::sToQs(std::string("a\0b", 3)).size(), 3);
        QCOMPARE(WQ::sToQs("\xFF"), QString(QChar(0xFFFD)));
        QCOMPARE(WQ::qsToS(WQ::sToQs("上海主用")), std::string("上海主用"));
    }
};

TEST_WITH_WIDGETS(ControlTest)
#include "tst_controls.moc"
