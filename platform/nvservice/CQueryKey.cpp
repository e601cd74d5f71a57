// SPDX-License-Identifier: Apache-2.0
#include <nvservice/CQueryKey.h>
#include <nvservice/Utf8.h>

#include <utils/Translation.h>

#include <algorithm>
#include <charconv>
#include <string_view>

namespace nvservice
{

namespace
{

constexpr std::string_view Digits = "0123456789ABCDEF";

bool isPlain(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           byte == '-' || byte == '.' || byte == '_' || byte == '~';
}

void appendEncoded(std::string& text, const std::string& value)
{
    for (const char byte : value) {
        if (isPlain(byte)) {
            text += byte;
        } else {
            const auto bits = static_cast<unsigned char>(byte);
            text += {'%', Digits[bits >> 4], Digits[bits & 15]};
        }
    }
}

std::optional<std::string> decoded(std::string_view text)
{
    std::string value;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            value += text[i];
            continue;
        }
        const std::string_view digits = text.substr(i + 1, 2);
        unsigned char byte = 0;
        const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16).ptr;
        if (digits.size() != 2 || end != digits.data() + 2) {
            return std::nullopt;
        }
        value += static_cast<char>(byte);
        i += 2;
    }
    const bool isText = isUtf8(value) && value.find('\0') == std::string::npos;
    return isText ? std::make_optional(std::move(value)) : std::nullopt;
}

} // namespace

CQueryKey::CQueryKey() = default;
CQueryKey::CQueryKey(const CQueryKey&) = default;
CQueryKey::CQueryKey(CQueryKey&&) noexcept = default;
CQueryKey& CQueryKey::operator=(const CQueryKey&) = default;
CQueryKey& CQueryKey::operator=(CQueryKey&&) noexcept = default;
CQueryKey::~CQueryKey() = default;

CQueryKey& CQueryKey::set(const std::string& name, const std::string& value)
{
    m_conditions[name] = value;
    return *this;
}

CQueryKey& CQueryKey::set(const std::string& name, std::int64_t value)
{
    return set(name, std::to_string(value));
}

CQueryKey& CQueryKey::remove(const std::string& name)
{
    m_conditions.erase(name);
    return *this;
}

std::string CQueryKey::text() const
{
    std::string text;
    for (const auto& [name, value] : m_conditions) {
        text += text.empty() ? "" : "&";
        appendEncoded(text, name);
        text += '=';
        appendEncoded(text, value);
    }
    return text;
}

utils::NVError CQueryKey::read(const std::string& text, CQueryKey& out)
{
    out = CQueryKey();
    const utils::NVError invalid(utils::EErrorCode::InvalidValue, utils::text("nvservice", "查询条件的格式无效"));
    if (text.empty()) {
        return {};
    }
    if (text.size() > MaxTextBytes) {
        return invalid;
    }
    CQueryKey key;
    for (std::string_view rest = text;;) {
        const std::string_view condition = rest.substr(0, rest.find('&'));
        const std::size_t equals = condition.find('=');
        if (equals == 0 || equals == std::string_view::npos) {
            return invalid;
        }
        const std::optional<std::string> name = decoded(condition.substr(0, equals));
        const std::optional<std::string> value = decoded(condition.substr(equals + 1));
        if (!name || !value || !key.m_conditions.emplace(*name, *value).second) {
            return invalid;
        }
        if (condition.size() == rest.size()) {
            break;
        }
        rest.remove_prefix(condition.size() + 1);
    }
    out = std::move(key);
    return {};
}

bool CQueryKey::has(const std::string& name) const
{
    return m_conditions.count(name) != 0;
}

std::string CQueryKey::value(const std::string& name) const
{
    const auto found = m_conditions.find(name);
    return found == m_conditions.end() ? std::string() : found->second;
}

std::optional<std::int64_t> CQueryKey::number(const std::string& name) const
{
    const std::string text = value(name);
    std::int64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return std::to_string(number) == text ? std::make_optional(number) : std::nullopt;
}

const std::map<std::string, std::string>& CQueryKey::conditions() const
{
    return m_conditions;
}

} // namespace nvservice
