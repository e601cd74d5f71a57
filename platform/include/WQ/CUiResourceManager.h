// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

#include <utils/CSingletonT.h>

#include <QColor>
#include <QIcon>
#include <QObject>
#include <QPixmap>
#include <QString>
#include <QStringList>

#include <memory>

class QApplication;
class QPalette;

namespace WQ
{

class CUiResourceChangeHandler;

/// Colours and images by key, from the current theme. UI thread only.
///
/// A theme is one UTF-8 JSON file, `<name>.json`:
///     { "title": "深色", "title.en": "Dark", "base": "dark",
///       "colours": { "clr_window": "#1b1f27", "clr_mask_background": "#c0101318" },
///       "images":  { "img_close": "close.svg", "img_search": "breeze:edit-find" },
///       "font":    { "families": ["Noto Sans CJK SC"], "pixelSize": 12 } }
/// A colour is `#RRGGBB`, `#AARRGGBB` or the key of another colour. An image is a file beside the theme, or "breeze:"
/// and an icon name of the installed Breeze theme. In an SVG file `@key@` stands for a colour of the theme. "base"
/// names the theme that is used for missing keys. "dark" and "light" are compiled in; a file of the same name in the
/// theme directory takes precedence.
///
/// A missing key gives magenta (for an image, a magenta square) and is logged once in the category "wq.resources".
class WQ_EXPORT CUiResourceManager : public QObject
{
    Q_OBJECT

public:
    static CUiResourceManager* instance() { return utils::CSingletonT<CUiResourceManager>::instance(); }

    QColor colour(const QString& key) const;
    bool hasColour(const QString& key) const;
    /// The image with `size` device-independent pixels (the height, if it is not square), at the screen's pixel ratio.
    QPixmap image(const QString& key, int size = 16) const;
    QIcon icon(const QString& key) const;
    /// The keys of all colours or images of the current theme, including those of its base, and of the images that were
    /// added; sorted.
    QStringList colourKeys() const;
    QStringList imageKeys() const;
    /// Adds an image of a plug-in's own: `image(key)` and `icon(key)` show `file`, a path or a resource of Qt, unless
    /// the theme has a value for the key. In an SVG file `@key@` stands for a colour of the theme. Stays until the
    /// process ends; a second file for the same key replaces the first. Begin the key with the name of the plug-in.
    void addImage(const QString& key, const QString& file);

    /// Sets the directory that is searched for theme files before the compiled-in ones; empty: none. Takes effect with
    /// the next setTheme.
    void setThemeDirectory(const QString& directory);
    /// The names of the available themes.
    QStringList themes() const;
    QString theme() const;
    /// The title of the theme, for menus.
    QString themeTitle(const QString& name) const;
    /// Switches the theme at run time: first palette, fonts and style of the application given to applyTo, then every
    /// CUiResourceChangeHandler, then sigThemeChanged. If the theme is missing or its file is broken, logs that,
    /// returns false and changes nothing.
    bool setTheme(const QString& name);

    /// Applies the style, palette and font of the theme to `application`, now and at every change. Call it once, before
    /// the first window is created.
    void applyTo(QApplication& application);
    QPalette palette() const;
    /// The theme's font in the size that the scale gives it.
    QFont font() const;
    /// Scales the font of every theme, by 0.5 to 3; 1 is the size that the theme names. Announced as a change of the
    /// theme is.
    void setFontScale(qreal scale);
    qreal fontScale() const;

Q_SIGNALS:
    void sigThemeChanged(const QString& name);

private:
    friend class utils::CSingletonT<CUiResourceManager>;
    friend class CUiResourceChangeHandler;
    CUiResourceManager();
    ~CUiResourceManager() override;
    void enrol(CUiResourceChangeHandler* handler);
    void resign(CUiResourceChangeHandler* handler);
    void announce();

    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
