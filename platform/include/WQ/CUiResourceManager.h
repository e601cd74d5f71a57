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
///     { "title": "深色", "base": "dark",
///       "colours": { "clr_window": "#1b1f27", "clr_mask_background": "#c0101318" },
///       "images":  { "img_close": "close.svg", "img_search": "breeze:edit-find" },
///       "font":    { "families": ["Noto Sans CJK SC"], "pixelSize": 12 } }
/// A colour is #RRGGBB or #AARRGGBB or the key of another colour. An image is a file beside the theme, or "breeze:" and
/// an icon name of the installed Breeze theme; in an SVG file `@key@` stands for a colour of the theme. "base" names
/// the theme that answers for keys that are missing. "dark" and "light" are compiled in; a file of the same name in the
/// theme directory takes precedence.
///
/// A key that is missing gives magenta (an image: a magenta square) and is logged once, category "wq.resources".
class WQ_EXPORT CUiResourceManager : public QObject
{
    Q_OBJECT

public:
    static CUiResourceManager* instance() { return utils::CSingletonT<CUiResourceManager>::instance(); }

    QColor colour(const QString& key) const;
    bool hasColour(const QString& key) const;
    /// The image at `size` device-independent pixels (height for images that are not square), at the screen's pixel
    /// ratio.
    QPixmap image(const QString& key, int size = 16) const;
    QIcon icon(const QString& key) const;
    /// Keys of every colour of the current theme, those of its base included, sorted.
    QStringList colourKeys() const;
    QStringList imageKeys() const;

    /// Where theme files are looked for before the compiled-in ones; empty: nowhere. Takes effect with the next
    /// setTheme.
    void setThemeDirectory(const QString& directory);
    /// Names of the themes that can be set.
    QStringList themes() const;
    QString theme() const;
    /// What the theme calls itself, for menus.
    QString themeTitle(const QString& name) const;
    /// Switches the theme, live: palette, fonts and style of the application given to applyTo, then every
    /// CUiResourceChangeHandler, then sigThemeChanged. False, logged and without any effect when the theme is missing
    /// or its file is broken.
    bool setTheme(const QString& name);

    /// Gives `application` the style, palette and font of the theme, now and at every switch. Call it once, before the
    /// first window is made.
    void applyTo(QApplication& application);
    QPalette palette() const;
    /// The theme's font at its normal size.
    QFont font() const;

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
    std::unique_ptr<Private> m_private;
};

} // namespace WQ
