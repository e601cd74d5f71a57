// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QTabWidget>

#include <memory>

namespace WQ
{

/// Pages with a tab bar at the top. Ctrl+Tab and Ctrl+Shift+Tab cycle through the pages from anywhere inside; Left,
/// Right, Home and End work in the tab bar. Use QTabWidget's functions for the current page. The events of the controls
/// inside reach the deliverer above. UI thread only.
class WQ_EXPORT CStandardTabControl : public QTabWidget, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CStandardTabControl(QWidget* parent);
    ~CStandardTabControl() override;

    /// Sets image keys of the theme for the tabs. The images are stretched to the tab; their corners keep their size.
    /// Without images the tabs have the plain style of the theme.
    /// @param current, other                for the current tab and for the others
    /// @param currentHovered, otherHovered  the same for a tab under the mouse
    void setTabHeaderImage(const QString& current, const QString& other, const QString& currentHovered,
                           const QString& otherHovered);

    /// Appends a page, which becomes a child, and returns its index. `text` is the text of the tab, and also the
    /// accessible name of the page unless it has one.
    int addTabWidget(const QString& text, QWidget* page);
    /// The page at `index`; null if there is none.
    QWidget* tabWidget(int index) const;

    void onUiResourceChanged() override;

private:
    class CTabBar;

    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
