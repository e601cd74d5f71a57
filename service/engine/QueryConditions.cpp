// SPDX-License-Identifier: Apache-2.0
#include "service/engine/QueryConditions.h"
#include "service/engine/Refusal.h"

#include <utils/Translation.h>

#include <algorithm>
#include <limits>

namespace service
{

namespace
{

namespace QueryCondition = nvservice::QueryCondition;

constexpr int PageSizeUnlessAsked = 100;
constexpr int MaxPageSize = 1000;
constexpr char CursorMark = '.';

std::optional<std::int64_t> numberIn(const std::string& text)
{
    return nvservice::CQueryKey().set("number", text).number("number");
}

} // namespace

QueryConditions::QueryConditions(const std::string& key, std::initializer_list<const char*> known)
{
    const utils::NVError error = nvservice::CQueryKey::read(key, m_key);
    if (!error.isSuccess()) {
        throw Refusal(error.code(), error.errorMsg());
    }
    for (const auto& [name, value] : m_key.conditions()) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            refuse();
        }
    }
}

void QueryConditions::refuse()
{
    throw Refusal(utils::EErrorCode::InvalidValue, utils::text("service", "查询条件无效"));
}

std::optional<std::string> QueryConditions::text(const char* name) const
{
    return m_key.has(name) ? std::make_optional(m_key.value(name)) : std::nullopt;
}

std::optional<std::int64_t> QueryConditions::number(const char* name) const
{
    const std::optional<std::int64_t> number = m_key.number(name);
    if (m_key.has(name) && !number) {
        refuse();
    }
    return number;
}

std::optional<std::int64_t> QueryConditions::number(const char* name, std::int64_t least, std::int64_t most) const
{
    const std::optional<std::int64_t> found = number(name);
    if (found && (*found < least || *found > most)) {
        refuse();
    }
    return found;
}

std::optional<std::int32_t> QueryConditions::group() const
{
    const auto id = number(QueryCondition::Group, 0, std::numeric_limits<std::int32_t>::max());
    return id ? std::make_optional(static_cast<std::int32_t>(*id)) : std::nullopt;
}

std::int32_t QueryConditions::requiredGroup() const
{
    const std::optional<std::int32_t> id = group();
    if (!id) {
        refuse();
    }
    return *id;
}

std::optional<std::int64_t> QueryConditions::revision(const char* name) const
{
    return number(name, 1, std::numeric_limits<std::int64_t>::max());
}

int QueryConditions::pageSize() const
{
    return static_cast<int>(number(QueryCondition::PageSize, 1, MaxPageSize).value_or(PageSizeUnlessAsked));
}

std::optional<std::pair<std::int64_t, std::int64_t>> QueryConditions::cursor() const
{
    const std::optional<std::string> cursor = text(QueryCondition::Cursor);
    if (!cursor) {
        return std::nullopt;
    }
    const std::size_t mark = std::min(cursor->find(CursorMark), cursor->size());
    const auto first = numberIn(cursor->substr(0, mark));
    const auto second = numberIn(cursor->substr(std::min(mark + 1, cursor->size())));
    if (!first || !second) {
        refuse();
    }
    return std::make_pair(*first, *second);
}

std::string cursorOf(std::int64_t first, std::int64_t second)
{
    return std::to_string(first) + CursorMark + std::to_string(second);
}

} // namespace service
