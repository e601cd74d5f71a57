// SPDX-License-Identifier: Apache-2.0
// Draws the client's icon in the sizes that desktops use. Usage: qav-icons <SVG file> <folder>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

int main(int argc, char* argv[])
{
    if (argc != 3) {
        return 2;
    }
    QSvgRenderer picture(QString::fromLocal8Bit(argv[1]));
    const QFileInfo file(QString::fromLocal8Bit(argv[1]));
    const QDir folder(QString::fromLocal8Bit(argv[2]));
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        picture.render(&painter);
        painter.end();
        const QString apps = QStringLiteral("%1x%1/apps").arg(size);
        if (!picture.isValid() || !folder.mkpath(apps) ||
            !image.save(folder.filePath(apps + '/' + file.completeBaseName() + ".png"))) {
            qCritical("cannot draw %s in %d pixels", argv[1], size);
            return 1;
        }
    }
    return 0;
}
