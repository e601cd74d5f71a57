// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "RecordFields.h"

#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace nvservice
{

constexpr std::string_view typeField = "_type";
constexpr std::string_view tagField = "_tag";
constexpr std::string_view revisionField = "_rev";

/// Encoding. All functions return false if the class of the record or of a nested one is unknown.
bool appendAnyRecord(bson::BSONObjBuilder& builder, const IData& record);

template <typename Record>
bool appendRecord(bson::BSONObjBuilder& builder, const Record& record, bool withType);

inline bool appendValue(bson::BSONObjBuilder& builder, std::string_view name, const std::string& value)
{
    builder.append(name, value);
    return true;
}

inline bool appendValue(bson::BSONObjBuilder& builder, std::string_view name, const IDataPtr& value)
{
    if (!value) {
        return true;
    }
    bson::BSONObjBuilder nested(builder.subobjStart(name));
    return appendAnyRecord(nested, *value);
}

template <typename Record>
bool appendValue(bson::BSONObjBuilder& builder, std::string_view name, const boost::shared_ptr<Record>& value);
template <typename Value>
bool appendValue(bson::BSONObjBuilder& builder, std::string_view name, const std::vector<Value>& values);
inline bool appendValue(bson::BSONObjBuilder& builder, std::string_view name, const std::set<int>& values);

template <typename Value>
bool appendValue(bson::BSONObjBuilder& builder, std::string_view name, const Value& value)
{
    if constexpr (hasFields<Value>) {
        bson::BSONObjBuilder nested(builder.subobjStart(name));
        return appendRecord(nested, value, false);
    } else if constexpr (std::is_enum_v<Value>) {
        builder.append(name, static_cast<int>(value));
    } else {
        static_assert(std::is_same_v<Value, bool> || std::is_same_v<Value, std::int32_t> ||
                      std::is_same_v<Value, std::int64_t> || std::is_same_v<Value, double>);
        builder.append(name, value);
    }
    return true;
}

template <typename Record>
bool appendValue(bson::BSONObjBuilder& builder, std::string_view name, const boost::shared_ptr<Record>& value)
{
    return !value || appendValue(builder, name, *value);
}

template <typename Value>
constexpr bool isNull(const Value&)
{
    return false;
}

template <typename Record>
bool isNull(const boost::shared_ptr<Record>& record)
{
    return !record;
}

template <typename List>
bool appendList(bson::BSONObjBuilder& builder, std::string_view name, const List& values)
{
    bson::BSONObjBuilder array(builder.subarrayStart(name));
    int index = 0;
    for (const auto& value : values) {
        if (!isNull(value) && !appendValue(array, std::to_string(index++), value)) {
            return false;
        }
    }
    return true;
}

template <typename Value>
bool appendValue(bson::BSONObjBuilder& builder, std::string_view name, const std::vector<Value>& values)
{
    return appendList(builder, name, values);
}

inline bool appendValue(bson::BSONObjBuilder& builder, std::string_view name, const std::set<int>& values)
{
    return appendList(builder, name, values);
}

template <typename Record>
bool isOwnName(std::string_view name)
{
    if (std::is_base_of_v<IData, Record> && (name == typeField || name == tagField || name == revisionField)) {
        return true;
    }
    return std::apply([&name](const auto&... fields) { return ((name == fields.name) || ...); }, Fields<Record>::list);
}

template <typename Record>
bool appendRecord(bson::BSONObjBuilder& builder, const Record& record, bool withType)
{
    if constexpr (std::is_base_of_v<IData, Record>) {
        if (withType) {
            builder.append(typeField, Fields<Record>::typeName);
        }
        if (!record.getSystemTag().empty()) {
            builder.append(tagField, record.getSystemTag());
        }
        if (record.revision() != 0) {
            builder.append(revisionField, record.revision());
        }
    }
    const bool known = std::apply(
        [&](const auto&... fields) { return (appendValue(builder, fields.name, record.*(fields.member)) && ...); },
        Fields<Record>::list);
    if (!record.unknownFields.isEmpty()) {
        for (bson::BSONObjIterator it(record.unknownFields); it.more();) {
            const bson::BSONElement element = it.next();
            if (!isOwnName<Record>(element.fieldName())) {
                builder.append(element);
            }
        }
    }
    return known;
}

} // namespace nvservice
