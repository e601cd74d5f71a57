// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPoint>
#include <QString>

class QComboBox;
class QPushButton;
class QWidget;

namespace WQ
{
class CStandardHpfTable;
class CStandardSimpleTable;
} // namespace WQ

/// The user's hands: everything is done with mouse and keys, and only where the user could do it.
namespace tour
{

/// Milliseconds until something counts as not coming, on a machine that is busy with other things.
constexpr int Patience = 60000;

/// The button with this text that can be seen; null if there is none.
QPushButton* findButton(const QWidget& window, const QString& text);

/// Clicks a place of a widget, its middle by default, as soon as nothing is in the way.
void click(QWidget& widget);
void click(QWidget& widget, const QPoint& place);
void clickButton(const QWidget& window, const QString& text);

/// Types into a widget that has or gets the keyboard: ASCII by keys, anything else through the input method.
void type(QWidget& widget, const QString& text);
/// The same in place of what is there.
void retype(QWidget& widget, const QString& text);

/// Goes through a box with the arrow keys until it shows the text.
void choose(QComboBox& box, const QString& text);

/// Clicks a painted button of the row whose cell in `column` shows `cellText`.
void clickRowButton(WQ::CStandardHpfTable& table, int column, const QString& cellText, const QString& button);
/// Clicks the button in the last column of the row whose cell in `column` shows `cellText`.
void clickRowButton(WQ::CStandardSimpleTable& table, int column, const QString& cellText);

} // namespace tour
