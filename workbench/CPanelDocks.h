// SPDX-License-Identifier: Apache-2.0
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

class CDockTitle;

/// The docks of the panels in the main window. Tracks which panels the user sees.
class CPanelDocks : public QObject
{
    Q_OBJECT

public:
    explicit CPanelDocks(QMainWindow& window);
    ~CPanelDocks() override;

    /// Docks a panel as a tab beside the others. The dock owns it. A closed dock is hidden; its panel still exists.
    void add(const QString& className, const QString& title, QAV::IkolmDockableWidget* panel);
    /// Shows the dock of a class in front of its neighbours. False if there is none.
    bool raise(const QString& className);

    /// Null if no panel of the class was created.
    QAV::IkolmDockableWidget* panel(const QString& className) const;
    /// All panels in the order of their creation.
    std::vector<QAV::IkolmDockableWidget*> panels() const;
    /// The classes of the panels whose docks are not closed, in the order of their creation.
    QStringList openClasses() const;
    /// The panel with the focus, or else the first one in front; null if there is none.
    QAV::IkolmDockableWidget* current() const;
    /// True if the user sees the panel.
    bool isInFront(const QAV::IkolmDockableWidget& panel) const;
    /// Says something in the title of the panel's dock, with an offer to refresh; an empty text removes it.
    void setNotice(const QAV::IkolmDockableWidget& panel, const QString& text);
    /// Opens all docks as tabs in one area.
    void arrange();

    /// Puts the cursor into the search of the current panel, which is its first edit.
    void search();
    /// Makes a window of the dock of the current panel, or docks it again.
    void floatOrDock();
    void closeCurrent();

signals:
    /// A panel has become visible: its dock was opened or its tab came to the front. Changes that are undone within one
    /// turn of the event loop, and minimising the window, do not count.
    void sigActivated(QAV::IkolmDockableWidget* panel);
    /// The user has pressed the notice in the title of the panel's dock.
    void sigRefresh(QAV::IkolmDockableWidget* panel);
    /// A dock was opened or closed.
    void sigDocksChanged();

private:
    struct Entry {
        QString className;
        QDockWidget* dock = nullptr;
        CDockTitle* title = nullptr;
        QAV::IkolmDockableWidget* panel = nullptr;
        bool inFront = false; ///< last reported by the dock
        bool active = false;  ///< last announced
    };

    const Entry* find(const QString& className) const;
    QDockWidget* currentDock() const;
    void onVisibility(QDockWidget* dock, bool inFront);
    void settle();

    QMainWindow& m_window;
    std::vector<Entry> m_entries;
    bool m_settling = false;
};

} // namespace workbench
