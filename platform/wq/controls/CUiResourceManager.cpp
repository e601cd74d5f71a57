// SPDX-License-Identifier: Apache-2.0
#include "CTheme.h"
#include "CThemeStyle.h"

#include <WQ/CUiResourceChangeHandler.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <utils/CSingletonTImpl.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QPainter>
#include <QPixmapCache>
#include <QPointer>
#include <QSet>
#include <QStandardPaths>
#include <QSvgRenderer>
#include <QToolTip>

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <vector>

template class utils::CSingletonT<WQ::CUiResourceManager>;

namespace WQ
{

namespace
{

Q_LOGGING_CATEGORY(lcResources, "wq.resources")

const QColor MissingColour(255, 0, 255);

constexpr int BreezeSizes[] = {16, 22, 32, 64};

/// The file of a Breeze icon that is drawn for `size`, or else for the nearest greater or smaller one. An icon drawn
/// for another size may be another picture. That is why a higher pixel ratio doesn't choose a greater one.
QString breezeFile(const QString& icon, const QString& iconTheme, int size)
{
    std::vector<int> sizes(std::begin(BreezeSizes), std::end(BreezeSizes));
    std::stable_sort(sizes.begin(), sizes.end(), [size](int a, int b) { return qAbs(a - size) < qAbs(b - size); });
    for (const QString& place : QIcon::themeSearchPaths()) {
        const QDir theme(place + QLatin1Char('/') + iconTheme);
        for (const int drawnFor : sizes) {
            for (const QString& context : theme.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
                const QString file =
                    theme.filePath(QStringLiteral("%1/%2/%3.svg").arg(context, QString::number(drawnFor), icon));
                if (QFile::exists(file)) {
                    return file;
                }
            }
        }
    }
    return {};
}

/// The file with `@key@` replaced by the theme's colours.
QByteArray colouredSvg(const QString& file, const QHash<QString, QColor>& colours)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) {
        return QByteArray();
    }
    QString text = QString::fromUtf8(source.readAll());
    int from = 0;
    while ((from = text.indexOf(QLatin1Char('@'), from)) >= 0) {
        const int to = text.indexOf(QLatin1Char('@'), from + 1);
        if (to < 0) {
            break;
        }
        const QString name = text.mid(from + 1, to - from - 1);
        const QString value = colours.value(name, MissingColour).name();
        text.replace(from, to - from + 1, value);
        from += value.size();
    }
    return text.toUtf8();
}

} // namespace

struct CUiResourceManager::Private {
    CTheme theme;
    QString name;
    QString directory;
    qreal fontScale = 1;
    QPointer<QApplication> application;
    std::unordered_set<CUiResourceChangeHandler*> handlers;
    QHash<QPair<QString, int>, QPixmap> images;
    QHash<QString, QString> addedImages;
    QSet<QString> missing;

    void miss(const QString& kind, const QString& key)
    {
        if (missing.contains(kind + key)) {
            return;
        }
        missing.insert(kind + key);
        qCWarning(lcResources).noquote() << kind << "has no value in theme" << name + QLatin1Char(':') << key;
    }

    QPixmap render(const QString& key, int size) const
    {
        const QString source = theme.images().value(key, addedImages.value(key));
        const qreal ratio = qApp->devicePixelRatio();
        QPixmap pixmap;
        const bool isBreeze = source.startsWith(QLatin1String("breeze:"));
        if (isBreeze || source.endsWith(QLatin1String(".svg"))) {
            QSvgRenderer renderer;
            if (isBreeze) {
                renderer.load(breezeFile(source.mid(7), theme.iconTheme(), size));
            } else {
                renderer.load(colouredSvg(source, theme.colours()));
            }
            if (!renderer.isValid()) {
                return QPixmap();
            }
            QSize shape = renderer.defaultSize();
            if (size > 0) {
                shape = QSize(qMax(1, qRound(qreal(shape.width()) * size / qMax(1, shape.height()))), size);
            }
            pixmap = QPixmap(shape * ratio);
            pixmap.fill(Qt::transparent);
            QPainter painter(&pixmap);
            renderer.render(&painter);
        } else {
            pixmap.load(source);
            if (!pixmap.isNull() && size > 0) {
                pixmap = pixmap.scaledToHeight(qRound(size * ratio), Qt::SmoothTransformation);
            }
        }
        pixmap.setDevicePixelRatio(ratio);
        return pixmap;
    }
};

CUiResourceManager::CUiResourceManager() : m_d(std::make_unique<Private>())
{
    setTheme(QStringLiteral("dark"));
}

CUiResourceManager::~CUiResourceManager() = default;

QColor CUiResourceManager::colour(const QString& key) const
{
    const auto found = m_d->theme.colours().constFind(key);
    if (found != m_d->theme.colours().constEnd()) {
        return *found;
    }
    m_d->miss(QStringLiteral("colour"), key);
    return MissingColour;
}

bool CUiResourceManager::hasColour(const QString& key) const
{
    return m_d->theme.colours().contains(key);
}

QPixmap CUiResourceManager::image(const QString& key, int size) const
{
    const QPair<QString, int> slot(key, size);
    const auto found = m_d->images.constFind(slot);
    if (found != m_d->images.constEnd()) {
        return *found;
    }
    QPixmap pixmap = m_d->render(key, size);
    if (pixmap.isNull()) {
        m_d->miss(QStringLiteral("image"), key);
        const int side = size > 0 ? size : 16;
        pixmap = QPixmap(side, side);
        pixmap.fill(MissingColour);
    }
    m_d->images.insert(slot, pixmap);
    return pixmap;
}

QIcon CUiResourceManager::icon(const QString& key) const
{
    QIcon icon;
    for (const int size : {16, 22, 32}) {
        icon.addPixmap(image(key, size));
    }
    return icon;
}

QStringList CUiResourceManager::colourKeys() const
{
    QStringList keys = m_d->theme.colours().keys();
    keys.sort();
    return keys;
}

QStringList CUiResourceManager::imageKeys() const
{
    QStringList keys = m_d->theme.images().keys() + m_d->addedImages.keys();
    keys.removeDuplicates();
    keys.sort();
    return keys;
}

void CUiResourceManager::addImage(const QString& key, const QString& file)
{
    m_d->addedImages.insert(key, file);
    m_d->images.clear();
}

void CUiResourceManager::setThemeDirectory(const QString& directory)
{
    m_d->directory = directory;
}

QStringList CUiResourceManager::themes() const
{
    return CTheme::names(m_d->directory);
}

QString CUiResourceManager::theme() const
{
    return m_d->name;
}

QString CUiResourceManager::themeTitle(const QString& name) const
{
    CTheme theme;
    return theme.load(name, m_d->directory).isEmpty() ? theme.title() : name;
}

bool CUiResourceManager::setTheme(const QString& name)
{
    const QString problem = m_d->theme.load(name, m_d->directory);
    if (!problem.isEmpty()) {
        qCWarning(lcResources).noquote() << problem;
        return false;
    }
    m_d->name = name;
    m_d->images.clear();
    m_d->missing.clear();
    announce();
    return true;
}

void CUiResourceManager::applyTo(QApplication& application)
{
    m_d->application = &application;
    application.setStyle(new CThemeStyle);
    announce();
}

void CUiResourceManager::announce()
{
    if (QCoreApplication::instance()) {
        QStringList places = QIcon::themeSearchPaths();
        for (const QString& data : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
            if (!places.contains(data + QStringLiteral("/icons"))) {
                places << data + QStringLiteral("/icons");
            }
        }
        QIcon::setThemeSearchPaths(places);
        QIcon::setThemeName(m_d->theme.iconTheme());
    }
    clearButtonFaces();
    if (m_d->application) {
        if (auto* const style = qobject_cast<CThemeStyle*>(m_d->application->style())) {
            style->reload();
        }
        QApplication::setFont(font());
        QApplication::setPalette(palette());
        QToolTip::setPalette(palette());
    }
    // A handler may create and destroy others.
    const auto told = m_d->handlers;
    for (CUiResourceChangeHandler* const handler : told) {
        if (m_d->handlers.count(handler) != 0) {
            handler->onUiResourceChanged();
        }
    }
    Q_EMIT sigThemeChanged(m_d->name);
}

QPalette CUiResourceManager::palette() const
{
    QPalette palette;
    const auto set = [this, &palette](QPalette::ColorRole role, const QString& name) {
        palette.setColor(role, colour(name));
    };
    set(QPalette::Window, key::Window);
    set(QPalette::WindowText, key::Text);
    set(QPalette::Base, key::TableBackground);
    set(QPalette::AlternateBase, key::TableBackground2);
    set(QPalette::Text, key::Text);
    set(QPalette::Button, key::PanelBackground);
    set(QPalette::ButtonText, key::Text);
    set(QPalette::BrightText, key::GlobalRise);
    set(QPalette::Highlight, key::SelectionBackground);
    set(QPalette::HighlightedText, key::SelectionText);
    set(QPalette::Link, key::Link);
    set(QPalette::LinkVisited, key::Link);
    set(QPalette::ToolTipBase, key::TipBackground);
    set(QPalette::ToolTipText, key::TipText);
    set(QPalette::PlaceholderText, key::EditHint);
    set(QPalette::Mid, key::Border);
    set(QPalette::Midlight, key::BorderStrong);
    set(QPalette::Light, key::BorderStrong);
    set(QPalette::Dark, key::Border);
    set(QPalette::Shadow, key::Border);
    const QColor disabled = colour(key::TextDisabled);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, disabled);
    }
    return palette;
}

QFont CUiResourceManager::font() const
{
    QFont font = m_d->theme.font();
    font.setPixelSize(qRound(font.pixelSize() * m_d->fontScale));
    return font;
}

void CUiResourceManager::setFontScale(qreal scale)
{
    scale = qBound(0.5, scale, 3.0);
    if (!qFuzzyCompare(scale, m_d->fontScale)) {
        m_d->fontScale = scale;
        announce();
    }
}

qreal CUiResourceManager::fontScale() const
{
    return m_d->fontScale;
}

void CUiResourceManager::enrol(CUiResourceChangeHandler* handler)
{
    m_d->handlers.insert(handler);
}

void CUiResourceManager::resign(CUiResourceChangeHandler* handler)
{
    m_d->handlers.erase(handler);
}

CUiResourceChangeHandler::CUiResourceChangeHandler()
{
    CUiResourceManager::instance()->enrol(this);
}

CUiResourceChangeHandler::~CUiResourceChangeHandler()
{
    CUiResourceManager::instance()->resign(this);
}

void CUiResourceChangeHandler::onUiResourceChanged() {}

} // namespace WQ
