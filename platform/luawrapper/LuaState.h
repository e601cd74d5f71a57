// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>

struct lua_Debug;
struct lua_State;

namespace luawrapper
{

/// Limits of a Lua chunk.
constexpr std::size_t maxChunkBytes = std::size_t{1024} * 1024;
constexpr std::size_t maxStateBytes = std::size_t{16} * 1024 * 1024; ///< of everything that Lua allocates
constexpr int maxInstructions = 10 * 1000 * 1000;

/// A sandboxed Lua state with limits.
class LuaState
{
public:
    enum class EResult { Done, BrokenChunk, MemoryExceeded, InstructionsExceeded };

    LuaState();
    ~LuaState();
    LuaState(const LuaState&) = delete;
    LuaState& operator=(const LuaState&) = delete;

    /// Compiles and runs a text chunk and leaves its single result on top of the stack. Call it once. Unless it returns
    /// Done, `line` (0: none) and `message` describe Lua's error.
    EResult run(const std::string& chunk, int& line, std::string& message);

    /// For reading results. Outside of run(), only call functions that neither allocate nor raise errors.
    lua_State* get() const { return m_state; }

private:
    struct Budget;
    static void* allocate(void* budget, void* block, std::size_t oldSize, std::size_t newSize);
    static void countInstructions(lua_State* state, lua_Debug* position);

    const std::unique_ptr<Budget> m_budget;
    lua_State* const m_state;
};

} // namespace luawrapper
