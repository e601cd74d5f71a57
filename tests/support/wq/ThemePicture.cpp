// SPDX-License-Identifier: Apache-2.0
#include "support/wq/ThemePicture.h"

#include "support/DataRows.h"

#include <WQ/CUiResourceManager.h>

#include <QApplication>
#include <QDir>
#include <QPainter>

namespace support
{

namespace
{

constexpr int FewColours = 20;

/// The window's picture, made larger where something above it reaches beyond it.
QImage paintedTogether(QWidget& window, QWidget* above)
{
    QWidgetList shown{&window};
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (widget == above || (widget->windowType() == Qt::Popup && widget->isVisible())) {
            shown << widget;
        }
    }
    const auto placeOf = [&](const QWidget* widget) {
        return QRect(window.mapFromGlobal(widget->mapToGlobal(QPoint(0, 0))), widget->size());
    };
    QRect all;
    for (const QWidget* const widget : shown) {
        all |= placeOf(widget);
    }
    QPixmap picture(all.size());
    picture.fill(Qt::black);
    QPainter painter(&picture);
    for (QWidget* const widget : shown) {
        painter.drawPixmap(placeOf(widget).topLeft() - all.topLeft(), widget->grab());
    }
    painter.end();
    return picture.toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace

void addThemes()
{
    const support::DataRows<QString> row("theme");
    for (const QString& theme : WQ::CUiResourceManager::instance()->themes()) {
        row(theme, theme);
    }
}

void useTheme(const QString& theme)
{
    auto* const resources = WQ::CUiResourceManager::instance();
    static const bool applied = [resources] {
        resources->applyTo(*qApp);
        return true;
    }();
    QVERIFY(applied && resources->setTheme(theme));
}

void takePicture(QWidget& window, const QString& name, QWidget* above)
{
    QApplication::processEvents();
    const QImage picture = paintedTogether(window, above);
    const QString directory = qEnvironmentVariable("QAV_PICTURE_DIR");
    if (!directory.isEmpty()) {
        const QString theme = WQ::CUiResourceManager::instance()->theme();
        QVERIFY(picture.save(QDir(directory).filePath(theme + '-' + name + ".png")));
    }
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            colours.insert(picture.pixel(x, y));
        }
    }
    QVERIFY2(colours.size() > FewColours, qPrintable(name + ": next to nothing is painted"));
    QVERIFY2(!colours.contains(qRgb(255, 0, 255)), qPrintable(name + ": a colour or image of the theme is missing"));
}

} // namespace support
