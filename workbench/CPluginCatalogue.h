// SPDX-License-Identifier: Apache-2.0
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

/// A plug-in that was found, and its state.
struct PluginEntry {
    enum class EState {
        Available,    ///< can be opened; none of its code has run yet
        Loaded,       ///< its panel was created
        NotPermitted, ///< the user has none of the required rights
        Broken,       ///< cannot be used; `problem` says why
    };

    PluginManifest manifest;
    EState state = EState::Available;
    QString problem; ///< for the user, empty unless NotPermitted or Broken

    /// The title, or the name of the file if the manifest has none.
    QString displayName() const;
    QString stateText() const;
};

/// Finds the plug-ins in some folders by their manifests. A broken plug-in has an entry with the reason and never stops
/// the client. UI thread only.
class CPluginCatalogue
{
public:
    /// Reads and checks all `*.plugin.json` in `folders`: format, SDK version, library, the current user's rights. Runs
    /// no code of any plug-in. If a class is found twice, the earlier folder wins. A
    /// folder that is given twice counts once.
    void scan(const QStringList& folders);

    const QStringList& folders() const { return m_folders; }
    const std::vector<PluginEntry>& entries() const { return m_entries; }
    /// Null if no manifest names the class.
    const PluginEntry* find(const QString& className) const;

    /// Creates a panel of the class as a child of `parent`. Returns null if that fails; the entry then has the reason.
    /// Libraries stay in memory until the process ends.
    QAV::IkolmDockableWidget* create(const QString& className, QWidget* parent);

private:
    QAV::IkolmDockableWidget* make(PluginEntry& entry, QWidget* parent);

    QStringList m_folders;
    std::vector<PluginEntry> m_entries;
};

} // namespace workbench
