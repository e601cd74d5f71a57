// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QRegularExpression>
#include <QString>
#include <QTimer>

#include <functional>
#include <vector>

class QWidget;

namespace tour
{

/// What the user does at one thing that stops him: a dialog or a message box. It has to be closed when `act` returns.
struct Stage {
    QString title;
    std::function<void(QWidget&)> act;
    /// What comes before it and waits for it; see `over`.
    QString below;
};

/// A dialog in which `act` is played; it has to close it.
Stage dialog(const QString& title, std::function<void(QWidget&)> act);
/// A message box with exactly this text, answered by a click on the button with this text. `look` may look at the box
/// before.
Stage box(const QString& title, const QString& text, const QString& answer, std::function<void(QWidget&)> look = {});
/// The same for a text that holds a time.
Stage boxLike(const QString& title, const QRegularExpression& text, const QString& answer,
              std::function<void(QWidget&)> look = {});

/// A stage that comes by itself on top of a dialog, whose own stage follows.
Stage over(const QString& dialogTitle, Stage stage);

/// Runs `trigger`, plays the stages on the dialogs and boxes that come, one after the other, and waits until all have
/// been played. A dialog or box that is not the next stage fails the test and is closed. May be called within a stage.
void play(const std::function<void()>& trigger, const std::vector<Stage>& stages);

/// While it lives, a dialog or box that comes outside any stage fails the test and is closed.
class Watch
{
public:
    Watch();

private:
    QTimer m_timer;
};

} // namespace tour
