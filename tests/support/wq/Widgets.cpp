// SPDX-License-Identifier: Apache-2.0
#include "support/wq/Widgets.h"

#include <QInputMethodEvent>
#include <QtTest>

namespace support
{

QAbstractButton* buttonOf(const QWidget& root, const QString& text)
{
    const auto buttons = root.findChildren<QAbstractButton*>();
    const auto found =
        std::find_if(buttons.begin(), buttons.end(), [&](const auto* button) { return button->text() == text; });
    return found == buttons.end() ? nullptr : *found;
}

void clickButton(const QWidget& root, const QString& text)
{
    QAbstractButton* const button = buttonOf(root, text);
    QVERIFY2(button && button->isVisible() && button->isEnabled(), qPrintable("no button to click: " + text));
    QTest::mouseClick(button, Qt::LeftButton);
}

void typeText(QWidget& edit, const QString& text)
{
    for (const QChar character : text) {
        if (character.unicode() < 0x80) {
            QTest::keyClick(&edit, character.toLatin1());
            continue;
        }
        QInputMethodEvent event;
        event.setCommitString(character);
        QCoreApplication::sendEvent(&edit, &event);
    }
}

QStringList shown(const WQ::CStandardSimpleTable& table, int column)
{
    QStringList texts;
    for (int row = 0; row < table.rowCount(); ++row) {
        texts << table.itemText(table.rowID(row), column);
    }
    return texts;
}

} // namespace support
