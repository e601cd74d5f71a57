// SPDX-License-Identifier: Apache-2.0
#include "support/Paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace support
{

namespace
{

QString readSourceFolder()
{
    QFile cache(builtFile(QStringLiteral("CMakeCache.txt")));
    const QByteArray key("CMAKE_HOME_DIRECTORY:INTERNAL=");
    if (cache.open(QIODevice::ReadOnly)) {
        while (!cache.atEnd()) {
            const QByteArray line = cache.readLine().trimmed();
            if (line.startsWith(key)) {
                return QString::fromUtf8(line.mid(key.size()));
            }
        }
    }
    qFatal("%s does not say where the sources are", qPrintable(cache.fileName()));
}

} // namespace

QString builtFile(const QString& path)
{
    static const QString programs = QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).path();
    return QDir::cleanPath(programs + QStringLiteral("/../") + path);
}

QString sourceFile(const QString& path)
{
    static const QString folder = readSourceFolder();
    return QDir::cleanPath(folder + QLatin1Char('/') + path);
}

} // namespace support
