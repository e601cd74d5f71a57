// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace workbench
{

/// The manifest of a plug-in: `<library>.plugin.json` beside its library.
struct PluginManifest {
    QString file;        ///< path of the manifest
    QString className;   ///< with namespaces, for example "QAV::CAccountGroupRiskManagePanel"
    QString title;       ///< for menus and the dock's tab
    QString icon;        ///< image key of the theme, or a file in the manifest's folder; may be empty
    QString library;     ///< file name of the library, in the manifest's folder
    QString sdkVersion;  ///< "major.minor"
    QVector<int> rights; ///< the user needs one of them; empty: everyone may open the plug-in
};

/// Reads a manifest. On error returns false and sets `problem`, a text for the user. `manifest.file` and all readable
/// values are set in any case.
bool readManifest(const QString& file, PluginManifest& manifest, QString& problem);

/// True if a plug-in built with `version` works in this client: same major version, minor version not newer.
bool acceptsSdkVersion(const QString& version);

/// The mangled name (Itanium C++ ABI) of the meta-object of a class: `ns::Class` becomes
/// `_ZN2ns5Class16staticMetaObjectE`. With it the client finds the exported class of a plug-in without a factory
/// function.
QByteArray metaObjectSymbol(const QString& className);

} // namespace workbench
