#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>

#include <vector>

class QDockWidget;
class QMainWindow;

namespace QAV
{
class IkolmDockableWidget;
}

namespace workbench
{

/// The docks of the panels in the main window, and which of the panels the user sees.
class CPanelDocks : public QObject
{
    Q_OBJECT

public:
    explicit CPanelDocks(QMainWindow& window);
    ~CPanelDocks() override;

    /// Docks a panel beside, as a tab of, those that are there. The dock owns it. A dock that is closed is hidden; its
    /// panel lives on.
    void add(const QString& className, const QString& title, QAV::IkolmDockableWidget* panel);
    /// Shows the dock of a class, in front of its neighbours. False when there is none.
    bool raise(const QString& className);

    /// Null when no panel of the class was made.
    QAV::IkolmDockableWidget* panel(const QString& className) const;
    /// In the order of their making.
    std::vector<QAV::IkolmDockableWidget*> panels() const;
    /// Classes of the panels whose docks are not closed, in the order of their making.
    QStringList openClasses() const;
    /// The panel that has the focus, else the first that is in front; null when there is none.
    QAV::IkolmDockableWidget* current() const;
    /// All docks as tabs in one area, open.
    void arrange();

signals:
    /// A panel has come into view that was not in view before: its dock was opened or its tab came to the front.
    /// Whatever happens within one turn of the event loop, and a minimised window, count as no change.
    void sigActivated(QAV::IkolmDockableWidget* panel);
    /// A dock was opened or closed.
    void sigDocksChanged();

private:
    struct Entry {
        QString className;
        QDockWidget* dock = nullptr;
        QAV::IkolmDockableWidget* panel = nullptr;
        bool inFront = false; ///< as the dock last said
        bool active = false;  ///< as was last announced
    };

    const Entry* find(const QString& className) const;
    void onVisibility(QDockWidget* dock, bool inFront);
    void settle();

    QMainWindow& m_window;
    std::vector<Entry> m_entries;
    bool m_settling = false;
};

} // namespace workbench
