#pragma once

#include "PluginManifest.h"

#include <QStringList>

#include <vector>

class QWidget;

namespace QAV
{
class IkolmDockableWidget;
}

namespace workbench
{

/// A plug-in that was found, and what became of it.
struct PluginEntry {
    enum class EState {
        Available,    ///< can be opened; no code of it has run yet
        Loaded,       ///< a panel of it was made
        NotPermitted, ///< the user holds none of the rights that it asks for
        Broken,       ///< cannot be used; `problem` says why
    };

    PluginManifest manifest;
    EState state = EState::Available;
    QString problem; ///< for the user, empty unless NotPermitted or Broken

    /// The title, or the file's name when the manifest has none.
    QString displayName() const;
    QString stateText() const;
};

/// The plug-ins in some folders, found by their manifests. A plug-in that cannot be used is kept as an entry that says
/// why; nothing of it stops the client. UI thread only.
class CPluginCatalogue
{
public:
    /// Reads every `*.plugin.json` in `folders` and judges it: form, SDK version, library, the present user's rights.
    /// Runs no code of any plug-in. A class that is found twice counts once, in the earlier folder.
    void scan(const QStringList& folders);

    const std::vector<PluginEntry>& entries() const { return m_entries; }
    /// Null when no manifest names the class.
    const PluginEntry* find(const QString& className) const;

    /// Makes a panel of the class, child of `parent`. Null when that fails; the entry then says why. Libraries stay in
    /// memory until the process ends.
    QAV::IkolmDockableWidget* create(const QString& className, QWidget* parent);

private:
    QAV::IkolmDockableWidget* make(PluginEntry& entry, QWidget* parent);

    std::vector<PluginEntry> m_entries;
};

} // namespace workbench
