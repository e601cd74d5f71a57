// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CBaseWidget.h>

#include <QVector>
#include <functional>

namespace test
{

/// A deliverer that keeps every event it gets.
class RecordingPanel : public WQ::CBaseWidget
{
public:
    struct Event {
        int type, id, param;
        bool operator==(const Event& other) const
        {
            return type == other.type && id == other.id && param == other.param;
        }
    };

    RecordingPanel();
    bool handleEvent(int type, int id, int param, QString text, void* data) override;

    QVector<Event> events;
    /// Called with each event, after it was kept.
    std::function<void(const Event&)> react;
};

/// Shows the widget as a window of the size and gives it the keyboard.
void showActive(QWidget& widget, const QSize& size);

/// Applies the theme to the application.
void setTheme(const QString& name);

} // namespace test
