// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CStandardSimpleTable.h>

#include <QAbstractButton>
#include <QStringList>

namespace support
{

/// The button or check box with this text; null without one.
QAbstractButton* buttonOf(const QWidget& root, const QString& text);
/// Clicks it with the left mouse button. Fails the test when a user could not.
void clickButton(const QWidget& root, const QString& text);
/// Types a text as a user does: ASCII by keys, anything else through the input method.
void typeText(QWidget& edit, const QString& text);
/// What a table shows in a column, from top to bottom.
QStringList shown(const WQ::CStandardSimpleTable& table, int column = 0);

} // namespace support
