// SPDX-License-Identifier: Apache-2.0
#include "SwitchReader.h"

#include "LuaState.h"

#include <utils/Translation.h>

#include <lua.hpp>

#include <algorithm>
#include <fstream>

namespace luawrapper
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

constexpr int maxSwitchDepth = 16;
constexpr int maxSwitches = 100 * 1000;
constexpr std::size_t longestMessage = 300;
constexpr char ownSwitchKey[] = "on";
constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

/// Copies the table that a chunk returned. Uses only what neither allocates in Lua nor raises an error.
class SwitchCopier
{
public:
    explicit SwitchCopier(lua_State* state) : m_state(state) {}

    /// Reads the value on top of the stack. False with a reason when it is not a table of switches.
    bool copy(Switch& result)
    {
        return isTable() ? copyTable(result, std::string(), 1) : refuse(utils::text("luawrapper", "应返回一个表"));
    }

    const std::string& reason() const { return m_reason; }

private:
    bool isTable() const { return lua_type(m_state, -1) == LUA_TTABLE; }

    bool refuse(const std::string& reason)
    {
        m_reason = reason;
        return false;
    }

    bool copyTable(Switch& result, const std::string& path, int depth)
    {
        result.on = true;
        // A table that holds itself ends here, too.
        if (depth > maxSwitchDepth || !lua_checkstack(m_state, 3)) {
            return refuse(utils::filled(utils::text("luawrapper", "开关 %1 嵌套过深"), path));
        }
        lua_pushnil(m_state);
        while (lua_next(m_state, -2) != 0) {
            if (!copyEntry(result, path, depth)) {
                return false;
            }
            lua_pop(m_state, 1);
        }
        return true;
    }

    bool copyEntry(Switch& result, const std::string& path, int depth)
    {
        if (lua_type(m_state, -2) != LUA_TSTRING) {
            return refuse(path.empty() ? utils::text("luawrapper", "开关的键应为文本")
                                       : utils::filled(utils::text("luawrapper", "开关 %1 中的键应为文本"), path));
        }
        const std::string key = lua_tostring(m_state, -2);
        const std::string keyPath = path.empty() ? key : path + '.' + key;
        const bool isBoolean = lua_type(m_state, -1) == LUA_TBOOLEAN;
        if (key == ownSwitchKey) {
            if (!isBoolean) {
                return refuse(utils::filled(utils::text("luawrapper", "开关 %1 的值应为 true 或 false"), keyPath));
            }
            result.on = lua_toboolean(m_state, -1) != 0;
            return true;
        }
        if (++m_count > maxSwitches) {
            return refuse(utils::text("luawrapper", "开关过多"));
        }
        Switch& child = result.children[key];
        if (isTable()) {
            return copyTable(child, keyPath, depth + 1);
        }
        if (!isBoolean) {
            return refuse(utils::filled(utils::text("luawrapper", "开关 %1 的值应为 true、false 或表"), keyPath));
        }
        child.on = lua_toboolean(m_state, -1) != 0;
        return true;
    }

    lua_State* const m_state;
    std::string m_reason;
    int m_count = 0;
};

NVError readChunk(const std::string& file, std::string& chunk)
{
    std::ifstream stream(file, std::ios::binary);
    chunk.resize(maxChunkBytes + 1);
    stream.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    if (!stream.is_open() || stream.bad() || (stream.fail() && !stream.eof())) {
        return {EErrorCode::NotFound, utils::filled(utils::text("luawrapper", "无法读取模块配置文件 %1"), file)};
    }
    chunk.resize(static_cast<std::size_t>(stream.gcount()));
    if (chunk.size() > maxChunkBytes) {
        return {EErrorCode::ResourceExhausted, utils::filled(utils::text("luawrapper", "模块配置文件 %1 过大"), file)};
    }
    if (chunk.compare(0, sizeof(byteOrderMark) - 1, byteOrderMark) == 0) {
        chunk.erase(0, sizeof(byteOrderMark) - 1);
    }
    return {};
}

/// The first line of what Lua says, of bounded length; a script may raise errors of its own with any text.
std::string shortened(const std::string& message)
{
    std::size_t length = std::min({message.size(), message.find('\n'), longestMessage});
    while (length > 0 && length < message.size() && (static_cast<unsigned char>(message[length]) & 0xC0U) == 0x80U) {
        --length; // not in the middle of a character
    }
    return length == 0 ? utils::text("luawrapper", "未知错误") : message.substr(0, length);
}

NVError runError(LuaState::EResult result, const std::string& file, int line, const std::string& message)
{
    const std::string text = line > 0 ? utils::filled(utils::text("luawrapper", "模块配置文件 %1 第 %2 行"), file, line)
                                      : utils::filled(utils::text("luawrapper", "模块配置文件 %1"), file);
    switch (result) {
    case LuaState::EResult::MemoryExceeded:
        return {EErrorCode::ResourceExhausted, utils::filled(utils::text("luawrapper", "%1 占用内存过多"), text)};
    case LuaState::EResult::InstructionsExceeded:
        return {EErrorCode::ResourceExhausted, utils::filled(utils::text("luawrapper", "%1 执行时间过长"), text)};
    case LuaState::EResult::Done:
    case LuaState::EResult::BrokenChunk:
        break;
    }
    return {EErrorCode::Malformed, utils::filled(utils::text("luawrapper", "%1 有错误: %2"), text, shortened(message))};
}

} // namespace

NVError readSwitches(const std::string& file, Switch& root)
{
    std::string chunk;
    NVError readError = readChunk(file, chunk);
    if (!readError.isSuccess()) {
        return readError;
    }
    LuaState lua;
    int line = 0;
    std::string message;
    const LuaState::EResult result = lua.run(chunk, line, message);
    if (result != LuaState::EResult::Done) {
        return runError(result, file, line, message);
    }
    SwitchCopier copier(lua.get());
    if (!copier.copy(root)) {
        return {EErrorCode::Malformed,
                utils::filled(utils::text("luawrapper", "模块配置文件 %1 有错误: %2"), file, copier.reason())};
    }
    return {};
}

} // namespace luawrapper
