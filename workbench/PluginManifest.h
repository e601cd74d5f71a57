#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace workbench
{

/// What a plug-in says about itself in `<library>.plugin.json` beside its library.
struct PluginManifest {
    QString file;        ///< path of the manifest
    QString className;   ///< with namespaces, for example "QAV::CAccountGroupRiskManagePanel"
    QString title;       ///< shown in menus and on the dock's tab
    QString icon;        ///< image key of the theme; may be empty
    QString library;     ///< file name of the library, in the manifest's folder
    QString sdkVersion;  ///< "major.minor"
    QVector<int> rights; ///< the user needs one of them; empty: everybody may open the plug-in
};

/// Reads a manifest. Returns false and says in `problem` what is wrong, in words for the user. `manifest.file` is set
/// in any case, and whatever was readable.
bool readManifest(const QString& file, PluginManifest& manifest, QString& problem);

/// True when a plug-in built with `version` works in this client: same major version, minor version not newer.
bool acceptsSdkVersion(const QString& version);

/// The linker's name of the meta-object of a class, as the Itanium C++ ABI makes it: `ns::Class` becomes
/// `_ZN2ns5Class16staticMetaObjectE`. By it the client finds a plug-in's one exported class without any factory
/// function.
QByteArray metaObjectSymbol(const QString& className);

} // namespace workbench
