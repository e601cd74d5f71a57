// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDir>
#include <QStringList>

/// The tree whose sources and documents are tested. Files are named relative to its root.
namespace sourcetree
{

const QDir& root();
/// The files below a folder.
QStringList filesIn(const QString& folder, const QStringList& patterns);
/// Empty if the file cannot be read.
QString textOf(const QString& file);

} // namespace sourcetree
