// SPDX-License-Identifier: Apache-2.0
#include "Hands.h"

#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace tour
{

namespace
{

/// A user acts when the client has come to rest. The window that he looks at is the active one by then, which the
/// offscreen platform forgets when a window comes back.
void comeToRest(const QWidget& widget)
{
    QCoreApplication::processEvents();
    QWidget* const window = widget.window();
    if (!QApplication::activeWindow() && !QApplication::activePopupWidget()) {
        QApplication::setActiveWindow(window);
    }
}

/// Neither disabled nor behind a mask, a dialog or the edge of the window.
bool canBeHit(const QWidget& widget, const QPoint& place)
{
    if (!widget.isVisible() || !widget.isEnabled()) {
        return false;
    }
    const QWidget* const window = widget.window();
    const QWidget* const modal = QApplication::activeModalWidget();
    if (modal && window != modal && QApplication::activePopupWidget() != window) {
        return false;
    }
    const QWidget* const hit = window->childAt(widget.mapTo(window, place));
    return hit && (hit == &widget || widget.isAncestorOf(hit));
}

int rowWith(const QAbstractItemModel& model, int column, const QString& text)
{
    for (int row = 0; row < model.rowCount(); ++row) {
        if (model.index(row, column).data().toString() == text) {
            return row;
        }
    }
    return -1;
}

} // namespace

QPushButton* findButton(const QWidget& window, const QString& text)
{
    for (QPushButton* const button : window.findChildren<QPushButton*>()) {
        if (button->text() == text && button->isVisible()) {
            return button;
        }
    }
    return nullptr;
}

void click(QWidget& widget)
{
    click(widget, widget.rect().center());
}

void click(QWidget& widget, const QPoint& place)
{
    comeToRest(widget);
    QVERIFY2(
        QTest::qWaitFor([&] { return canBeHit(widget, place); }, Patience),
        qPrintable(QString("nobody can click %1 %2").arg(widget.metaObject()->className(), widget.accessibleName())));
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, place);
}

void clickButton(const QWidget& window, const QString& text)
{
    QPushButton* const button = findButton(window, text);
    QVERIFY2(button, qPrintable(QString("there is no button “%1”").arg(text)));
    click(*button);
}

void type(QWidget& widget, const QString& text)
{
    comeToRest(widget);
    if (!widget.hasFocus()) {
        click(widget);
    }
    QString composed;
    const auto commit = [&] {
        if (composed.isEmpty()) {
            return;
        }
        QInputMethodEvent event;
        event.setCommitString(composed);
        QCoreApplication::sendEvent(&widget, &event);
        composed.clear();
    };
    for (const QChar character : text) {
        if (character.unicode() >= 0x80) {
            composed += character;
            continue;
        }
        commit();
        QTest::keyClick(&widget, character.toLatin1());
    }
    commit();
}

void retype(QWidget& widget, const QString& text)
{
    if (!widget.hasFocus()) {
        click(widget);
    }
    QTest::keyClick(&widget, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&widget, Qt::Key_Delete);
    type(widget, text);
}

void choose(QComboBox& box, const QString& text)
{
    comeToRest(box);
    QVERIFY2(QTest::qWaitFor([&] { return canBeHit(box, box.rect().center()); }, Patience), qPrintable(text));
    const int wanted = box.findText(text);
    QVERIFY2(wanted >= 0, qPrintable(QString("“%1” is not offered").arg(text)));
    box.setFocus();
    for (int i = 0; i < box.count() && box.currentIndex() != wanted; ++i) {
        QTest::keyClick(&box, box.currentIndex() < wanted ? Qt::Key_Down : Qt::Key_Up);
    }
    QCOMPARE(box.currentText(), text);
}

void clickRowButton(WQ::CStandardHpfTable& table, int column, const QString& cellText, const QString& button)
{
    QAbstractItemView& view = *table.view();
    const QAbstractItemModel& model = *view.model();
    const int row = rowWith(model, column, cellText);
    QVERIFY2(row >= 0, qPrintable(QString("there is no row “%1”").arg(cellText)));
    for (int buttons = 0; buttons < model.columnCount(); ++buttons) {
        const auto* const delegate =
            dynamic_cast<WQ::CBaseTableColumnMultiButtonsDelegate*>(table.columnDelegate(buttons));
        if (!delegate) {
            continue;
        }
        const QModelIndex index = model.index(row, buttons);
        view.scrollTo(index);
        const auto offered = delegate->itemButtons(table.dataModel()->getDataByRow(row)->getKey());
        for (int i = 0; i < offered.size(); ++i) {
            if (offered[i].text == button) {
                click(*view.viewport(), delegate->buttonRect(index, view.visualRect(index), i).center());
                return;
            }
        }
    }
    QFAIL(qPrintable(QString("the row “%1” has no button “%2”").arg(cellText, button)));
}

void clickRowButton(WQ::CStandardSimpleTable& table, int column, const QString& cellText)
{
    for (int row = 0; row < table.rowCount(); ++row) {
        const int id = table.rowID(row);
        if (table.itemText(id, column) != cellText) {
            continue;
        }
        QAbstractItemView& view = *table.view();
        view.scrollTo(view.model()->index(row, table.columnCount() - 1));
        QWidget* const button = table.itemWidget(id, table.columnCount() - 1);
        QVERIFY(button);
        click(*button);
        return;
    }
    QFAIL(qPrintable(QString("there is no row “%1”").arg(cellText)));
}

} // namespace tour
