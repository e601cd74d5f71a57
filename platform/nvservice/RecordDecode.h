// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ElementPath.h"
#include "RecordEncode.h"

#include <QCoreApplication>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>

namespace nvservice
{

/// Decoding. The document has passed checkDocument, so its types, lengths, names and texts are valid, but its values
/// may not be.

/// Why a document is refused, and the path of the element. The path is built from the inside as the calls return.
struct DecodeFailure {
    std::string path;
    const char* reason = nullptr;

    bool because(const char* text)
    {
        reason = text;
        return false;
    }
    bool at(std::string_view name)
    {
        std::string outer = printableName(name);
        path = path.empty() ? std::move(outer) : outer + '.' + path;
        return false;
    }
};

constexpr char wrongType[] = QT_TRANSLATE_NOOP("nvservice", "类型不符");

bool decodeAnyRecord(const bson::BSONObj& document, IDataPtr& record, DecodeFailure& failure);

template <typename Record>
bool decodeFields(const bson::BSONObj& document, Record& record, DecodeFailure& failure);

inline bool decodeValue(const bson::BSONElement& element, bool& value, DecodeFailure& failure)
{
    if (element.type() != bson::Bool) {
        return failure.because(wrongType);
    }
    value = element.boolean();
    return true;
}

inline bool decodeValue(const bson::BSONElement& element, std::int64_t& value, DecodeFailure& failure)
{
    if (element.type() != bson::NumberInt && element.type() != bson::NumberLong) {
        return failure.because(wrongType);
    }
    value = element.numberLong();
    return true;
}

inline bool decodeValue(const bson::BSONElement& element, std::int32_t& value, DecodeFailure& failure)
{
    std::int64_t wide = 0;
    if (!decodeValue(element, wide, failure)) {
        return false;
    }
    if (wide < std::numeric_limits<std::int32_t>::min() || wide > std::numeric_limits<std::int32_t>::max()) {
        return failure.because(QT_TRANSLATE_NOOP("nvservice", "数值超出范围"));
    }
    value = static_cast<std::int32_t>(wide);
    return true;
}

inline bool decodeValue(const bson::BSONElement& element, double& value, DecodeFailure& failure)
{
    if (!element.isNumber()) {
        return failure.because(wrongType);
    }
    value = element.numberDouble();
    return std::isfinite(value) || failure.because(QT_TRANSLATE_NOOP("nvservice", "数值无效"));
}

inline bool decodeValue(const bson::BSONElement& element, std::string& value, DecodeFailure& failure)
{
    if (element.type() != bson::String) {
        return failure.because(wrongType);
    }
    value = element.str();
    return true;
}

inline bool decodeValue(const bson::BSONElement& element, IDataPtr& value, DecodeFailure& failure)
{
    if (element.type() != bson::Object) {
        return failure.because(wrongType);
    }
    return decodeAnyRecord(element.embeddedObject(), value, failure);
}

template <typename Record>
bool decodeValue(const bson::BSONElement& element, boost::shared_ptr<Record>& value, DecodeFailure& failure)
{
    if (element.type() != bson::Object) {
        return failure.because(wrongType);
    }
    value = boost::make_shared<Record>();
    return decodeFields(element.embeddedObject(), *value, failure);
}

template <typename Value, std::enable_if_t<hasFields<Value> || std::is_enum_v<Value>, int> = 0>
bool decodeValue(const bson::BSONElement& element, Value& value, DecodeFailure& failure)
{
    if constexpr (std::is_enum_v<Value>) {
        std::int32_t number = 0;
        if (!decodeValue(element, number, failure)) {
            return false;
        }
        value = static_cast<Value>(number);
        return true;
    } else {
        if (element.type() != bson::Object) {
            return failure.because(wrongType);
        }
        return decodeFields(element.embeddedObject(), value, failure);
    }
}

/// Calls `decodeOne` for every element of an array.
template <typename DecodeOne>
bool decodeList(const bson::BSONElement& element, DecodeFailure& failure, const DecodeOne& decodeOne)
{
    if (element.type() != bson::Array) {
        return failure.because(wrongType);
    }
    for (bson::BSONObjIterator it(element.embeddedObject()); it.more();) {
        const bson::BSONElement item = it.next();
        if (!decodeOne(item)) {
            return failure.at(item.fieldName());
        }
    }
    return true;
}

template <typename Value>
bool decodeValue(const bson::BSONElement& element, std::vector<Value>& values, DecodeFailure& failure)
{
    values.clear();
    return decodeList(element, failure, [&](const bson::BSONElement& item) {
        values.emplace_back();
        return decodeValue(item, values.back(), failure);
    });
}

inline bool decodeValue(const bson::BSONElement& element, std::set<int>& values, DecodeFailure& failure)
{
    values.clear();
    return decodeList(element, failure, [&](const bson::BSONElement& item) {
        int value = 0;
        if (!decodeValue(item, value, failure)) {
            return false;
        }
        values.insert(value);
        return true;
    });
}

/// The decoders of a record's fields, for a loop that does not know their types.
template <typename Record>
struct FieldDecoder {
    std::string_view name;
    bool (*decode)(const bson::BSONElement&, Record&, DecodeFailure&);
};

template <typename Record, std::size_t Index>
bool decodeMember(const bson::BSONElement& element, Record& record, DecodeFailure& failure)
{
    return decodeValue(element, record.*(std::get<Index>(Fields<Record>::list).member), failure);
}

template <typename Record, std::size_t... Index>
constexpr auto makeDecoders(std::index_sequence<Index...>)
{
    return std::array<FieldDecoder<Record>, sizeof...(Index)>{
        {{std::get<Index>(Fields<Record>::list).name, &decodeMember<Record, Index>}...}};
}

template <typename Record>
constexpr std::size_t fieldCount = std::tuple_size_v<std::decay_t<decltype(Fields<Record>::list)>>;

/// Decodes the reserved elements of a record. `handled` receives whether this was one.
inline bool decodeReserved(const bson::BSONElement& element, std::string_view name, std::string_view typeName,
                           IData& record, bool& handled, DecodeFailure& failure)
{
    handled = true;
    if (name == typeField) {
        if (element.type() != bson::String) {
            return failure.because(wrongType);
        }
        return element.str() == typeName || failure.because(QT_TRANSLATE_NOOP("nvservice", "记录类型不符"));
    }
    if (name == tagField) {
        std::string tag;
        if (!decodeValue(element, tag, failure)) {
            return false;
        }
        record.setSystemTag(tag);
        return true;
    }
    if (name == revisionField) {
        std::int64_t revision = 0;
        if (!decodeValue(element, revision, failure)) {
            return false;
        }
        record.setRevision(revision);
        return true;
    }
    handled = false;
    return true;
}

template <typename Record>
bool decodeFields(const bson::BSONObj& document, Record& record, DecodeFailure& failure)
{
    static constexpr auto decoders = makeDecoders<Record>(std::make_index_sequence<fieldCount<Record>>());
    std::unique_ptr<bson::BSONObjBuilder> unknown;
    std::size_t expected = 0; // elements usually come in the order of the fields
    for (bson::BSONObjIterator it(document); it.more();) {
        const bson::BSONElement element = it.next();
        const std::string_view name = element.fieldName();
        const auto isField = [name](const FieldDecoder<Record>& candidate) { return candidate.name == name; };
        std::size_t index = expected;
        if (index >= decoders.size() || !isField(decoders[index])) {
            if constexpr (std::is_base_of_v<IData, Record>) {
                bool handled = false;
                if (!decodeReserved(element, name, Fields<Record>::typeName, record, handled, failure)) {
                    return failure.at(name);
                }
                if (handled) {
                    continue;
                }
            }
            for (index = 0; index < decoders.size() && !isField(decoders[index]);) {
                ++index;
            }
        }
        if (index == decoders.size()) {
            if (!unknown) {
                unknown = std::make_unique<bson::BSONObjBuilder>();
            }
            unknown->append(element);
            continue;
        }
        if (!decoders[index].decode(element, record, failure)) {
            return failure.at(name);
        }
        expected = index + 1;
    }
    if (unknown) {
        record.unknownFields = unknown->obj();
    }
    return true;
}

} // namespace nvservice
