// SPDX-License-Identifier: Apache-2.0
#include "SourceTree.h"

#include "support/Paths.h"

#include <QDirIterator>
#include <QFile>

namespace sourcetree
{

const QDir& root()
{
    static const QDir folder(support::sourceFile(QString()));
    return folder;
}

QStringList filesIn(const QString& folder, const QStringList& patterns)
{
    QStringList files;
    for (QDirIterator found(root().filePath(folder), patterns, QDir::Files, QDirIterator::Subdirectories);
         found.hasNext();) {
        files << root().relativeFilePath(found.next());
    }
    return files;
}

QString textOf(const QString& file)
{
    QFile opened(root().filePath(file));
    return opened.open(QIODevice::ReadOnly) ? QString::fromUtf8(opened.readAll()) : QString();
}

} // namespace sourcetree
