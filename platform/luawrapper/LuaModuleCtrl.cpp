// SPDX-License-Identifier: Apache-2.0
#include <luawrapper/LuaModuleCtrl.h>

#include "SwitchReader.h"
#include "Switches.h"

#include <utils/CSingletonTImpl.h>

#include <mutex>
#include <utility>

namespace luawrapper
{

struct LuaModuleCtrl::Private {
    /// The switches never change once they are here, so a reader holds its own reference and needs no lock after that.
    std::shared_ptr<const Switch> snapshot() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return switches;
    }
    void replace(std::shared_ptr<const Switch> next)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        switches = std::move(next);
    }

    mutable std::mutex mutex;
    std::shared_ptr<const Switch> switches = std::make_shared<const Switch>();
};

LuaModuleCtrl::LuaModuleCtrl() : m_d(std::make_unique<Private>()) {}

LuaModuleCtrl::~LuaModuleCtrl() = default;

bool LuaModuleCtrl::checkModule(const std::list<std::string>& path) const
{
    return isPathOn(*m_d->snapshot(), path);
}

utils::NVError LuaModuleCtrl::load(const std::string& file)
{
    Switch root;
    utils::NVError error = readSwitches(file, root);
    if (!error.isSuccess()) {
        root = Switch();
    }
    m_d->replace(std::make_shared<const Switch>(std::move(root)));
    return error;
}

bool isPathOn(const Switch& root, const std::list<std::string>& path)
{
    if (path.empty() || !root.on) {
        return false;
    }
    const Switch* current = &root;
    for (const std::string& key : path) {
        const auto child = current->children.find(key);
        if (child == current->children.end() || !child->second.on) {
            return false;
        }
        current = &child->second;
    }
    return true;
}

} // namespace luawrapper

template class LUAWRAPPER_EXPORT utils::CSingletonT<luawrapper::LuaModuleCtrl>;
