#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QTabWidget>

namespace WQ
{

/// Pages of which one is shown, chosen by a bar of tabs at the top. Ctrl+Tab and Ctrl+Shift+Tab go round the pages from
/// anywhere inside; Left, Right, Home and End work in the bar. Current page and pages are QTabWidget's. The events of
/// the controls inside go through to the deliverer above. UI thread only.
class WQ_EXPORT CStandardTabControl : public QTabWidget, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CStandardTabControl(QWidget* parent);
    ~CStandardTabControl() override;

    /// Paints the tabs with images of the theme, stretched to the tab with their corners kept. Without images the tabs
    /// have the plain look of the theme.
    /// @param current, other                the current tab and the others
    /// @param currentHovered, otherHovered  the same under the mouse
    void setTabHeaderImage(const QString& current, const QString& other, const QString& currentHovered,
                           const QString& otherHovered);

    /// Appends a page, which becomes a child, and returns its index. The text is the tab's, and the page's accessible
    /// name unless it has one.
    int addTabWidget(const QString& text, QWidget* page);
    /// The page, null if there is none at `index`.
    QWidget* tabWidget(int index) const;

    void onUiResourceChanged() override;

private:
    class CTabBar;
    CTabBar* m_bar;
};

} // namespace WQ
