// SPDX-License-Identifier: Apache-2.0
#include "CPanelDocks.h"

#include "CDockTitle.h"

#include <QAV/IkolmDockableWidget.h>

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QLineEdit>
#include <QMainWindow>
#include <QPointer>

#include <algorithm>

namespace workbench
{

namespace
{

/// The first edit of a panel, which usually is its search; null if there is none.
QLineEdit* searchOf(const QWidget& panel)
{
    const QList<QLineEdit*> edits = panel.findChildren<QLineEdit*>();
    const auto first = std::find_if(edits.begin(), edits.end(), [&panel](const QLineEdit* edit) {
        return (edit->focusPolicy() & Qt::TabFocus) && edit->isVisibleTo(&panel);
    });
    return first == edits.end() ? nullptr : *first;
}

/// Puts the keyboard into the panel.
void focus(QWidget& panel)
{
    if (panel.isAncestorOf(panel.window()->focusWidget())) {
        return;
    }
    QLineEdit* const search = searchOf(panel);
    (search ? search : &panel)->setFocus();
}

} // namespace

CPanelDocks::CPanelDocks(QMainWindow& window) : QObject(&window), m_window(window)
{
    m_window.setDockNestingEnabled(true);
    m_window.setTabPosition(Qt::AllDockWidgetAreas, QTabWidget::North);
}

CPanelDocks::~CPanelDocks() = default;

void CPanelDocks::add(const QString& className, const QString& text, QAV::IkolmDockableWidget* panel)
{
    auto* dock = new QDockWidget(text, &m_window);
    dock->setObjectName("dock." + className);
    dock->setAllowedAreas(Qt::AllDockWidgetAreas);
    auto* title = new CDockTitle(*dock);
    connect(title, &CDockTitle::sigRefresh, this, [this, panel] { emit sigRefresh(panel); });
    dock->setTitleBarWidget(title);
    dock->setWidget(panel);
    QDockWidget* neighbour = m_entries.empty() ? nullptr : m_entries.back().dock;
    m_entries.push_back({className, dock, title, panel, false, false});
    connect(dock, &QDockWidget::visibilityChanged, this, [this, dock](bool inFront) { onVisibility(dock, inFront); });
    connect(dock->toggleViewAction(), &QAction::toggled, this, &CPanelDocks::sigDocksChanged);
    m_window.addDockWidget(Qt::LeftDockWidgetArea, dock);
    if (neighbour) {
        m_window.tabifyDockWidget(neighbour, dock);
    }
    emit sigDocksChanged();
}

bool CPanelDocks::raise(const QString& className)
{
    const Entry* entry = find(className);
    if (!entry) {
        return false;
    }
    entry->dock->show();
    entry->dock->raise();
    entry->dock->window()->activateWindow(); // a floating one has a window of its own
    focus(*entry->panel);
    return true;
}

QAV::IkolmDockableWidget* CPanelDocks::panel(const QString& className) const
{
    const Entry* entry = find(className);
    return entry ? entry->panel : nullptr;
}

std::vector<QAV::IkolmDockableWidget*> CPanelDocks::panels() const
{
    std::vector<QAV::IkolmDockableWidget*> all;
    all.reserve(m_entries.size());
    for (const Entry& entry : m_entries) {
        all.push_back(entry.panel);
    }
    return all;
}

QStringList CPanelDocks::openClasses() const
{
    QStringList open;
    for (const Entry& entry : m_entries) {
        if (!entry.dock->isHidden()) {
            open << entry.className;
        }
    }
    return open;
}

QAV::IkolmDockableWidget* CPanelDocks::current() const
{
    QAV::IkolmDockableWidget* inFront = nullptr;
    for (const Entry& entry : m_entries) {
        if (entry.panel->isAncestorOf(QApplication::focusWidget()) || entry.panel->hasFocus()) {
            return entry.panel;
        }
        if (entry.inFront && !inFront) {
            inFront = entry.panel;
        }
    }
    return inFront;
}

bool CPanelDocks::isInFront(const QAV::IkolmDockableWidget& panel) const
{
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [&panel](const Entry& entry) { return entry.panel == &panel && entry.inFront; });
}

void CPanelDocks::setNotice(const QAV::IkolmDockableWidget& panel, const QString& text)
{
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&panel](const Entry& candidate) { return candidate.panel == &panel; });
    if (entry != m_entries.end()) {
        entry->title->setNotice(text);
    }
}

void CPanelDocks::arrange()
{
    QDockWidget* first = nullptr;
    for (const Entry& entry : m_entries) {
        entry.dock->setFloating(false);
        m_window.addDockWidget(Qt::LeftDockWidgetArea, entry.dock);
        if (first) {
            m_window.tabifyDockWidget(first, entry.dock);
        } else {
            first = entry.dock;
        }
        entry.dock->show();
    }
    if (first) {
        first->raise();
    }
}

void CPanelDocks::search()
{
    const QAV::IkolmDockableWidget* const panel = current();
    if (QLineEdit* const edit = panel ? searchOf(*panel) : nullptr) {
        edit->window()->activateWindow();
        edit->setFocus(Qt::ShortcutFocusReason);
        edit->selectAll();
    }
}

QDockWidget* CPanelDocks::currentDock() const
{
    const QAV::IkolmDockableWidget* const panel = current();
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [panel](const Entry& candidate) { return candidate.panel == panel; });
    return entry == m_entries.end() ? nullptr : entry->dock;
}

void CPanelDocks::floatOrDock()
{
    if (QDockWidget* const dock = currentDock()) {
        const QPointer<QWidget> focused(dock->window()->focusWidget());
        dock->setFloating(!dock->isFloating());
        dock->activateWindow();
        if (focused) {
            focused->setFocus(Qt::OtherFocusReason);
        }
    }
}

void CPanelDocks::closeCurrent()
{
    if (QDockWidget* const dock = currentDock()) {
        dock->close();
    }
}

const CPanelDocks::Entry* CPanelDocks::find(const QString& className) const
{
    const auto it = std::find_if(m_entries.begin(), m_entries.end(),
                                 [&](const Entry& entry) { return entry.className == className; });
    return it == m_entries.end() ? nullptr : &*it;
}

void CPanelDocks::onVisibility(QDockWidget* dock, bool inFront)
{
    if (!inFront && m_window.isMinimized()) {
        return;
    }
    for (Entry& entry : m_entries) {
        if (entry.dock == dock) {
            entry.inFront = inFront;
        }
    }
    if (!m_settling) {
        m_settling = true;
        QMetaObject::invokeMethod(this, &CPanelDocks::settle, Qt::QueuedConnection);
    }
}

void CPanelDocks::settle()
{
    m_settling = false;
    std::vector<QAV::IkolmDockableWidget*> activated;
    for (Entry& entry : m_entries) {
        if (entry.inFront && !entry.active) {
            activated.push_back(entry.panel);
        }
        entry.active = entry.inFront;
    }
    for (QAV::IkolmDockableWidget* panel : activated) {
        focus(*panel);
        emit sigActivated(panel);
    }
}

} // namespace workbench
