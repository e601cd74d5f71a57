#pragma once

#include <luawrapper/Export.h>

#include <utils/CSingletonT.h>
#include <utils/NVError.h>

#include <list>
#include <memory>
#include <string>

namespace luawrapper
{

/// The module switches of the installation: which parts of the client are there at all.
///
/// The configuration is a Lua 5.4 text chunk that returns a table of switches. The key of a switch is a text that is
/// not "on". Its value is true or false, or a table of further switches. Such a table is itself switched on, unless it
/// says `on = false`:
///
///     return {
///         mdl_portal = { mdl_portal_pb = true },
///         mdl_tradetype = { on = true, mdl_tradetype_future = true, mdl_tradetype_gold = false },
///     }
///
/// The chunk runs once, inside load(), with string, table, math and a few basic functions only: no files, no modules,
/// no system, limited in memory and in the number of instructions.
class LUAWRAPPER_EXPORT LuaModuleCtrl
{
public:
    LuaModuleCtrl(const LuaModuleCtrl&) = delete;
    LuaModuleCtrl& operator=(const LuaModuleCtrl&) = delete;
    ~LuaModuleCtrl();

    /// True when every key along the path is switched on. False for an empty path, a key that the configuration does
    /// not name, and everything before load() succeeded. Never runs Lua; may be called from any thread.
    bool checkModule(const std::list<std::string>& path) const;

    /// For the client, at start: reads the file (UTF-8 path) and replaces the switches. On failure every module is off,
    /// and the error names the file and, where there is one, the line: NotFound for a file that cannot be read,
    /// ResourceExhausted for one that exceeds a limit, Malformed for anything else. May be called from any thread.
    utils::NVError load(const std::string& file);

private:
    friend class utils::CSingletonT<LuaModuleCtrl>;
    LuaModuleCtrl();

    struct Impl;
    const std::unique_ptr<Impl> m_impl;
};

} // namespace luawrapper
