// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <luawrapper/Export.h>

#include <utils/CSingletonT.h>
#include <utils/NVError.h>

#include <list>
#include <memory>
#include <string>

namespace luawrapper
{

/// The module switches of the installation: which parts of the client are available.
///
/// The configuration is a Lua 5.4 text chunk that returns a table of switches. The key of a switch is any string except
/// "on". Its value is true, false, or a table of more switches. Such a table is itself switched on, unless it contains
/// `on = false`:
///
///     return {
///         mdl_portal = { mdl_portal_pb = true },
///         mdl_tradetype = { on = true, mdl_tradetype_future = true, mdl_tradetype_gold = false },
///     }
///
/// The chunk runs once, in load(). It can use string, table, math and a few basic functions, but no files, modules or
/// system functions. Its memory and its number of instructions are limited.
class LUAWRAPPER_EXPORT LuaModuleCtrl
{
public:
    LuaModuleCtrl(const LuaModuleCtrl&) = delete;
    LuaModuleCtrl& operator=(const LuaModuleCtrl&) = delete;
    ~LuaModuleCtrl();

    /// True if every key along the path is switched on. False for an empty path, for a key that is not in the
    /// configuration, and until load() has succeeded. Never runs Lua. May be called from any thread.
    bool checkModule(const std::list<std::string>& path) const;

    /// For the client at start: reads the file (UTF-8 path) and replaces the switches. After an error all modules are
    /// off. The error names the file and, if there is one, the line: NotFound if the file cannot be read,
    /// ResourceExhausted if it exceeds a limit, otherwise Malformed. May be called from any thread.
    utils::NVError load(const std::string& file);

private:
    friend class utils::CSingletonT<LuaModuleCtrl>;
    LuaModuleCtrl();

    struct Private;
    const std::unique_ptr<Private> m_d;
};

} // namespace luawrapper
