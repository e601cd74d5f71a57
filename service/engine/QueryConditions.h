// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CQueryKey.h>
#include <nvservice/QueryCondition.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace service
{

/// The conditions of a query, as they came from a client. All functions throw `Refusal` (InvalidValue).
class QueryConditions
{
public:
    /// Refuses conditions that are not among the known ones.
    QueryConditions(const std::string& key, std::initializer_list<const char*> known);

    std::optional<std::string> text(const char* name) const;
    std::optional<std::int64_t> number(const char* name) const;
    /// The same within limits, inclusive.
    std::optional<std::int64_t> number(const char* name, std::int64_t least, std::int64_t most) const;
    std::optional<std::int32_t> group() const;
    std::int32_t requiredGroup() const;
    std::optional<std::int64_t> revision(const char* name) const;
    int pageSize() const;
    /// The two numbers of a cursor, as `cursorOf` has written them.
    std::optional<std::pair<std::int64_t, std::int64_t>> cursor() const;

    [[noreturn]] static void refuse();

private:
    nvservice::CQueryKey m_key;
};

std::string cursorOf(std::int64_t first, std::int64_t second);

} // namespace service
