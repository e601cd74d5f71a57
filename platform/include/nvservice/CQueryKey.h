// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Export.h>

#include <utils/NVError.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace nvservice
{

/// The conditions of a query, to be written into CKolmQueryDataReq::queryKey and read from it. Names are those of
/// <nvservice/QueryCondition.h>.
///
///     nvservice::CKolmQueryDataReq request;
///     request.dataType = nvservice::DataType::Audit;
///     request.queryKey = nvservice::CQueryKey()
///                            .set(nvservice::QueryCondition::User, "li")
///                            .set(nvservice::QueryCondition::Outcome, "refused")
///                            .text();                                         // "outcome=refused&user=li"
///
/// The text is a list of "name=value", joined with '&'. Bytes other than letters, digits and "-._~" are written as '%'
/// and two hexadecimal digits. A plain value; copies are independent.
class NVSERVICE_EXPORT CQueryKey
{
public:
    static constexpr std::size_t MaxTextBytes = 4096;

    CQueryKey();
    CQueryKey(const CQueryKey&);
    CQueryKey(CQueryKey&&) noexcept;
    CQueryKey& operator=(const CQueryKey&);
    CQueryKey& operator=(CQueryKey&&) noexcept;
    ~CQueryKey();

    /// Adds a condition, or replaces the one of this name. `value` is UTF-8.
    CQueryKey& set(const std::string& name, const std::string& value);
    CQueryKey& set(const std::string& name, std::int64_t value);
    CQueryKey& remove(const std::string& name);

    /// In the order of the names. Empty without conditions.
    std::string text() const;

    /// Reads a text from anywhere. On an error (InvalidValue) `out` has no conditions. Refused are texts beyond
    /// `MaxTextBytes`, conditions without a name or without '=', names that occur twice, '%' without two hexadecimal
    /// digits, and names and values that are not UTF-8 or have NUL characters.
    static utils::NVError read(const std::string& text, CQueryKey& out);

    bool has(const std::string& name) const;
    /// Empty if there is no such condition.
    std::string value(const std::string& name) const;
    /// Empty if there is no such condition, or if its value is not a decimal number without leading zeros.
    std::optional<std::int64_t> number(const std::string& name) const;
    /// By name.
    const std::map<std::string, std::string>& conditions() const;

private:
    std::map<std::string, std::string> m_conditions;
};

} // namespace nvservice
