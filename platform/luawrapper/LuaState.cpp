// SPDX-License-Identifier: Apache-2.0
#include "LuaState.h"

#include <lua.hpp>

#include <cstdlib>
#include <cstring>

namespace luawrapper
{

namespace
{

constexpr char chunkName[] = "=modules";
constexpr int instructionsPerCount = 1000;

/// What a chunk may call. Left out are files, modules, the system, other chunks, coroutines (they would run without the
/// instruction count), metatables and pcall (they would outlive an error), and the functions that can work for ever in
/// one instruction: patterns and string.rep.
constexpr const char* basicFunctions[] = {"assert", "error", "ipairs",   "next",     "pairs",
                                          "select", "type",  "tonumber", "tostring", nullptr};
constexpr const char* stringFunctions[] = {"byte",    "char", "format", "len",  "lower",
                                           "reverse", "sub",  "upper",  nullptr};
constexpr const char* tableFunctions[] = {"concat", "insert", "remove", nullptr};
constexpr const char* mathFunctions[] = {"abs", "ceil", "floor", "max", "min", "tointeger", "type", nullptr};

struct Library {
    const char* name; ///< null: its functions stand in the environment itself
    lua_CFunction open;
    const char* const* functions;
};

constexpr Library libraries[] = {{nullptr, luaopen_base, basicFunctions},
                                 {LUA_STRLIBNAME, luaopen_string, stringFunctions},
                                 {LUA_TABLIBNAME, luaopen_table, tableFunctions},
                                 {LUA_MATHLIBNAME, luaopen_math, mathFunctions}};

/// Copies functions from the table on top of the stack into the table below it, and removes the former.
void takeFunctions(lua_State* state, const char* const* names)
{
    for (; *names; ++names) {
        lua_getfield(state, -1, *names);
        lua_setfield(state, -3, *names);
    }
    lua_pop(state, 1);
}

/// Pushes the environment of the chunk.
void pushEnvironment(lua_State* state)
{
    lua_newtable(state);
    for (const Library& library : libraries) {
        if (!library.name) {
            lua_pushcfunction(state, library.open);
            lua_call(state, 0, 1);
            takeFunctions(state, library.functions);
            continue;
        }
        lua_newtable(state);
        lua_pushcfunction(state, library.open);
        lua_call(state, 0, 1);
        takeFunctions(state, library.functions);
        lua_setfield(state, -2, library.name);
    }
    // Methods of texts come from their metatable, which has all functions until now.
    lua_pushliteral(state, "");
    lua_newtable(state);
    lua_getfield(state, -3, LUA_STRLIBNAME);
    lua_setfield(state, -2, "__index");
    lua_setmetatable(state, -2);
    lua_pop(state, 1);
}

/// Runs inside a protected call; Lua's errors jump, so nothing here may need a destructor.
int compileAndRun(lua_State* state)
{
    const auto* data = static_cast<const char*>(lua_touserdata(state, 1));
    const auto size = static_cast<std::size_t>(lua_tointeger(state, 2));
    lua_settop(state, 0);
    pushEnvironment(state);
    if (luaL_loadbufferx(state, data, size, chunkName, "t") != LUA_OK) {
        return lua_error(state);
    }
    lua_insert(state, 1);
    if (!lua_setupvalue(state, 1, 1)) {
        lua_pop(state, 1);
    }
    lua_call(state, 0, 1);
    return 1;
}

/// Splits "modules:12: text" into line and text.
int takeLine(std::string& message)
{
    const std::string prefix = std::string(chunkName + 1) + ':';
    if (message.compare(0, prefix.size(), prefix) != 0) {
        return 0;
    }
    char* end = nullptr;
    const long line = std::strtol(message.c_str() + prefix.size(), &end, 10);
    if (std::strncmp(end, ": ", 2) != 0) {
        return 0;
    }
    message.erase(0, static_cast<std::size_t>(end + 2 - message.c_str()));
    return static_cast<int>(line);
}

} // namespace

struct LuaState::Budget {
    std::size_t used = 0;
    int countsLeft = maxInstructions / instructionsPerCount;
    bool instructionsExceeded = false;
};

LuaState::LuaState() : m_budget(std::make_unique<Budget>()), m_state(lua_newstate(&LuaState::allocate, m_budget.get()))
{
}

LuaState::~LuaState()
{
    if (m_state) {
        lua_close(m_state);
    }
}

LuaState::EResult LuaState::run(const std::string& chunk, int& line, std::string& message)
{
    line = 0;
    if (!m_state) {
        return EResult::MemoryExceeded;
    }
    lua_sethook(m_state, &LuaState::countInstructions, LUA_MASKCOUNT, instructionsPerCount);
    lua_pushcfunction(m_state, compileAndRun);
    lua_pushlightuserdata(m_state, const_cast<char*>(chunk.data()));
    lua_pushinteger(m_state, static_cast<lua_Integer>(chunk.size()));
    const int status = lua_pcall(m_state, 2, 1, 0);
    lua_sethook(m_state, nullptr, 0, 0);
    if (status == LUA_OK) {
        return EResult::Done;
    }
    if (lua_type(m_state, -1) == LUA_TSTRING) {
        message = lua_tostring(m_state, -1);
    }
    line = takeLine(message);
    if (m_budget->instructionsExceeded) {
        return EResult::InstructionsExceeded;
    }
    return status == LUA_ERRMEM ? EResult::MemoryExceeded : EResult::BrokenChunk;
}

void* LuaState::allocate(void* budget, void* block, std::size_t oldSize, std::size_t newSize)
{
    auto& limits = *static_cast<Budget*>(budget);
    if (!block) {
        oldSize = 0; // Lua then passes the kind of the object instead of a size
    }
    if (newSize == 0) {
        std::free(block);
        limits.used -= oldSize;
        return nullptr;
    }
    if (newSize > oldSize && limits.used - oldSize + newSize > maxStateBytes) {
        return nullptr;
    }
    void* result = std::realloc(block, newSize);
    if (result) {
        limits.used += newSize - oldSize;
    }
    return result;
}

void LuaState::countInstructions(lua_State* state, lua_Debug* position)
{
    void* budget = nullptr;
    lua_getallocf(state, &budget);
    auto& limits = *static_cast<Budget*>(budget);
    if (--limits.countsLeft > 0) {
        return;
    }
    limits.instructionsExceeded = true;
    lua_getinfo(state, "l", position);
    lua_pushfstring(state, "%s:%d: ", chunkName + 1, position->currentline);
    lua_error(state);
}

} // namespace luawrapper
