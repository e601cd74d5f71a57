// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "RecordFields.h"

#include <set>
#include <type_traits>
#include <vector>

namespace nvservice
{

constexpr char typeField[] = "_type";
constexpr char tagField[] = "_tag";
constexpr char revisionField[] = "_rev";

/// Encoding. All functions return false if the class of the record or of a nested one is unknown.
using bson::StringData;

bool appendAnyRecord(bson::BSONObjBuilder& builder, const IData& record);

template <typename Record>
bool appendRecord(bson::BSONObjBuilder& builder, const Record& record, bool withType);

template <std::size_t N>
StringData literal(const char (&name)[N])
{
    return StringData(name, N - 1);
}

inline bool appendValue(bson::BSONObjBuilder& builder, const StringData& name, const std::string& value)
{
    builder.append(name, value);
    return true;
}

inline bool appendValue(bson::BSONObjBuilder& builder, const StringData& name, const IDataPtr& value)
{
    if (!value) {
        return true;
    }
    bson::BSONObjBuilder nested(builder.subobjStart(name));
    return appendAnyRecord(nested, *value);
}

template <typename Record>
bool appendValue(bson::BSONObjBuilder& builder, const StringData& name, const boost::shared_ptr<Record>& value);
template <typename Value>
bool appendValue(bson::BSONObjBuilder& builder, const StringData& name, const std::vector<Value>& values);
inline bool appendValue(bson::BSONObjBuilder& builder, const StringData& name, const std::set<int>& values);

template <typename Value>
bool appendValue(bson::BSONObjBuilder& builder, const StringData& name, const Value& value)
{
    if constexpr (hasFields<Value>) {
        bson::BSONObjBuilder nested(builder.subobjStart(name));
        return appendRecord(nested, value, false);
    } else if constexpr (std::is_enum_v<Value>) {
        builder.append(name, static_cast<int>(value));
    } else if constexpr (std::is_same_v<Value, std::int64_t>) {
        builder.append(name, static_cast<long long>(value));
    } else {
        static_assert(std::is_same_v<Value, bool> || std::is_same_v<Value, std::int32_t> ||
                      std::is_same_v<Value, double>);
        builder.append(name, value);
    }
    return true;
}

template <typename Record>
bool appendValue(bson::BSONObjBuilder& builder, const StringData& name, const boost::shared_ptr<Record>& value)
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
bool appendList(bson::BSONObjBuilder& builder, const StringData& name, const List& values)
{
    bson::BSONObjBuilder array(builder.subarrayStart(name));
    int index = 0;
    for (const auto& value : values) {
        if (!isNull(value) && !appendValue(array, bson::BSONObjBuilder::numStr(index++), value)) {
            return false;
        }
    }
    return true;
}

template <typename Value>
bool appendValue(bson::BSONObjBuilder& builder, const StringData& name, const std::vector<Value>& values)
{
    return appendList(builder, name, values);
}

inline bool appendValue(bson::BSONObjBuilder& builder, const StringData& name, const std::set<int>& values)
{
    return appendList(builder, name, values);
}

template <typename Record>
bool isOwnName(const StringData& name)
{
    if (std::is_base_of_v<IData, Record> &&
        (name == literal(typeField) || name == literal(tagField) || name == literal(revisionField))) {
        return true;
    }
    return std::apply(
        [&name](const auto&... fields) { return ((name == StringData(fields.name, fields.nameLength)) || ...); },
        Fields<Record>::list);
}

template <typename Record>
bool appendRecord(bson::BSONObjBuilder& builder, const Record& record, bool withType)
{
    if constexpr (std::is_base_of_v<IData, Record>) {
        if (withType) {
            builder.append(literal(typeField), literal(Fields<Record>::typeName));
        }
        if (!record.getSystemTag().empty()) {
            builder.append(literal(tagField), record.getSystemTag());
        }
        if (record.revision() != 0) {
            builder.append(literal(revisionField), static_cast<long long>(record.revision()));
        }
    }
    const bool known = std::apply(
        [&](const auto&... fields) {
            return (appendValue(builder, StringData(fields.name, fields.nameLength), record.*(fields.member)) && ...);
        },
        Fields<Record>::list);
    if (!record.unknownFields.isEmpty()) {
        for (bson::BSONObjIterator it(record.unknownFields); it.more();) {
            const bson::BSONElement element = it.next();
            if (!isOwnName<Record>(element.fieldNameStringData())) {
                builder.append(element);
            }
        }
    }
    return known;
}

} // namespace nvservice
