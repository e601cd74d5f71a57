#include "support/wq/ThemePicture.h"

#include <WQ/CUiResourceManager.h>

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QtTest>

namespace support
{

namespace
{

constexpr int FewColours = 20;

/// The window's picture, made larger where a list or menu reaches beyond it.
QImage paintedWithPopUps(QWidget& window)
{
    QPixmap picture = window.grab();
    for (QWidget* const popUp : QApplication::topLevelWidgets()) {
        if (popUp->windowType() != Qt::Popup || !popUp->isVisible())
            continue;
        const QPoint place = window.mapFromGlobal(popUp->pos());
        QPixmap both(picture.size().expandedTo(QSize(place.x() + popUp->width(), place.y() + popUp->height())));
        both.fill(Qt::black);
        QPainter painter(&both);
        painter.drawPixmap(0, 0, picture);
        painter.drawPixmap(place, popUp->grab());
        painter.end();
        picture = both;
    }
    return picture.toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace

void useTheme(const QString& theme)
{
    auto* const resources = WQ::CUiResourceManager::instance();
    static const bool applied = [resources] {
        resources->applyTo(*qApp);
        return true;
    }();
    QVERIFY(applied && resources->setTheme(theme));
}

void takePicture(QWidget& window, const QString& name)
{
    QApplication::processEvents();
    const QImage picture = paintedWithPopUps(window);
    const QString directory = qEnvironmentVariable("QAV_PICTURE_DIR");
    if (!directory.isEmpty()) {
        const QString theme = WQ::CUiResourceManager::instance()->theme();
        QVERIFY(picture.save(QDir(directory).filePath(theme + '-' + name + ".png")));
    }
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            colours.insert(picture.pixel(x, y));
    }
    QVERIFY2(colours.size() > FewColours, qPrintable(name + ": next to nothing is painted"));
    QVERIFY2(!colours.contains(qRgb(255, 0, 255)), qPrintable(name + ": a colour or image of the theme is missing"));
}

} // namespace support
