// SPDX-License-Identifier: Apache-2.0
#include "SwitchReader.h"

#include "LuaState.h"

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
    bool copy(Switch& result) { return isTable() ? copyTable(result, std::string(), 1) : refuse("应返回一个表"); }

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
            return refuse("开关 " + path + " 嵌套过深");
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
            return refuse(path.empty() ? "开关的键应为文本" : "开关 " + path + " 中的键应为文本");
        }
        const std::string key = lua_tostring(m_state, -2);
        const std::string keyPath = path.empty() ? key : path + '.' + key;
        const bool isBoolean = lua_type(m_state, -1) == LUA_TBOOLEAN;
        if (key == ownSwitchKey) {
            if (!isBoolean) {
                return refuse("开关 " + keyPath + " 的值应为 true 或 false");
            }
            result.on = lua_toboolean(m_state, -1) != 0;
            return true;
        }
        if (++m_count > maxSwitches) {
            return refuse("开关过多");
        }
        Switch& child = result.children[key];
        if (isTable()) {
            return copyTable(child, keyPath, depth + 1);
        }
        if (!isBoolean) {
            return refuse("开关 " + keyPath + " 的值应为 true、false 或表");
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
        return {EErrorCode::NotFound, "无法读取模块配置文件 " + file};
    }
    chunk.resize(static_cast<std::size_t>(stream.gcount()));
    if (chunk.size() > maxChunkBytes) {
        return {EErrorCode::ResourceExhausted, "模块配置文件 " + file + " 过大"};
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
    return length == 0 ? std::string("未知错误") : message.substr(0, length);
}

NVError runError(LuaState::EResult result, const std::string& file, int line, const std::string& message)
{
    std::string text = "模块配置文件 " + file;
    if (line > 0) {
        text += " 第 " + std::to_string(line) + " 行";
    }
    switch (result) {
    case LuaState::EResult::MemoryExceeded:
        return {EErrorCode::ResourceExhausted, text + " 占用内存过多"};
    case LuaState::EResult::InstructionsExceeded:
        return {EErrorCode::ResourceExhausted, text + " 执行时间过长"};
    case LuaState::EResult::Done:
    case LuaState::EResult::BrokenChunk:
        break;
    }
    return {EErrorCode::Malformed, text + " 有错误: " + shortened(message)};
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
        return {EErrorCode::Malformed, "模块配置文件 " + file + " 有错误: " + copier.reason()};
    }
    return {};
}

} // namespace luawrapper
