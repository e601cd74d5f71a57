#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace workbench
{

class CMainWindow;
class CPluginCatalogue;

/// Plays flows without a user and keeps pictures and a log of them. Steps wait for conditions, never for time.
class CTour
{
public:
    /// Makes the folder.
    explicit CTour(const QString& folder);

    /// Runs the event loop until `condition` holds; false, and a failure, when it does not within a minute.
    bool waitFor(const QString& what, const std::function<bool()>& condition);
    /// The same, until no loading mask covers anything in `window` any more.
    bool waitForData(const QWidget& window);
    /// Notes a failure unless `good`.
    bool check(const QString& what, bool good);
    /// Saves a picture of the widget as `<number>-<name>.png`.
    bool picture(QWidget& widget, const QString& name);

    /// 0 when nothing failed, else 1.
    int exitCode() const { return m_failures == 0 ? 0 : 1; }

private:
    void note(const QString& line) const;

    QString m_folder;
    int m_pictures = 0;
    int m_failures = 0;
};

/// The tour of the client: panels, servers, themes, plug-ins. Returns the exit code.
int runTour(CMainWindow& window, const CPluginCatalogue& plugins, const QString& folder);

} // namespace workbench
