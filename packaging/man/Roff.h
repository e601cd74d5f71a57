// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCommandLineOption>
#include <QString>
#include <QStringList>

namespace packaging
{

struct ManPage {
    QString name; ///< "qav-admin-user"
    int section;
    QString text; ///< in the language of man(7), UTF-8

    QString fileName() const { return QStringLiteral("man%1/%2.%1").arg(QString::number(section), name); }
};

/// A text as man(7) takes it.
QString escaped(QString text);
QString quoted(const QString& text);
/// How a page begins.
QString heading(const QString& page, int section, const QString& summary);
/// The option's names and value, its description below.
QString paragraphOf(const QCommandLineOption& option);
QString paragraphWithDefault(const QCommandLineOption& option);
/// Pages as "qav-admin(1)".
QString seeAlso(const QStringList& pages);

} // namespace packaging
