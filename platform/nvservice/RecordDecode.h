// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ElementPath.h"
#include "RecordEncode.h"

#include <QCoreApplication>

#include <array>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace nvservice
{

/// Decoding. The document has passed checkDocument, so its types, lengths, names and texts are valid, but its values
/// may not be.

/// Accounts by the bytes of their documents.
class DecodedAccounts
{
public:
    /// The place for the account of such a document; null in it if there is none yet.
    boost::shared_ptr<CAccountInfo>& placeOf(std::string_view document)
    {
        const auto known = m_accounts.find(document);
        return known != m_accounts.end() ? known->second : m_accounts[m_documents.emplace_back(document)];
    }

private:
    std::deque<std::string> m_documents; ///< what the keys refer to
    std::unordered_map<std::string_view, boost::shared_ptr<CAccountInfo>> m_accounts;
};

/// Why a document is refused, and the path of the element. The path is built from the inside as the calls return.
struct DecodeState {
    std::string path;
    const char* reason = nullptr;
    DecodedAccounts* accounts = nullptr; ///< null if each account is to be a record of its own

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

bool decodeAnyRecord(const bson::BSONObj& document, IDataPtr& record, DecodeState& state);

template <typename Record>
bool decodeFields(const bson::BSONObj& document, Record& record, DecodeState& state);

inline bool decodeValue(const bson::BSONElement& element, bool& value, DecodeState& state)
{
    if (element.type() != bson::Bool) {
        return state.because(wrongType);
    }
    value = element.boolean();
    return true;
}

inline bool decodeValue(const bson::BSONElement& element, std::int64_t& value, DecodeState& state)
{
    if (element.type() != bson::NumberInt && element.type() != bson::NumberLong) {
        return state.because(wrongType);
    }
    value = element.numberLong();
    return true;
}

inline bool decodeValue(const bson::BSONElement& element, std::int32_t& value, DecodeState& state)
{
    std::int64_t wide = 0;
    if (!decodeValue(element, wide, state)) {
        return false;
    }
    if (wide < std::numeric_limits<std::int32_t>::min() || wide > std::numeric_limits<std::int32_t>::max()) {
        return state.because(QT_TRANSLATE_NOOP("nvservice", "数值超出范围"));
    }
    value = static_cast<std::int32_t>(wide);
    return true;
}

inline bool decodeValue(const bson::BSONElement& element, double& value, DecodeState& state)
{
    if (!element.isNumber()) {
        return state.because(wrongType);
    }
    value = element.numberDouble();
    return std::isfinite(value) || state.because(QT_TRANSLATE_NOOP("nvservice", "数值无效"));
}

inline bool decodeValue(const bson::BSONElement& element, std::string& value, DecodeState& state)
{
    if (element.type() != bson::String) {
        return state.because(wrongType);
    }
    value = element.str();
    return true;
}

inline bool decodeValue(const bson::BSONElement& element, IDataPtr& value, DecodeState& state)
{
    if (element.type() != bson::Object) {
        return state.because(wrongType);
    }
    return decodeAnyRecord(element.embeddedObject(), value, state);
}

template <typename Record>
bool decodeValue(const bson::BSONElement& element, boost::shared_ptr<Record>& value, DecodeState& state)
{
    if (element.type() != bson::Object) {
        return state.because(wrongType);
    }
    const bson::BSONObj document = element.embeddedObject();
    boost::shared_ptr<Record>* shared = nullptr;
    if constexpr (std::is_same_v<Record, CAccountInfo>) {
        if (state.accounts) {
            shared = &state.accounts->placeOf({document.objdata(), static_cast<std::size_t>(document.objsize())});
            if (*shared) {
                value = *shared;
                return true;
            }
        }
    }
    value = boost::make_shared<Record>();
    if (!decodeFields(document, *value, state)) {
        return false;
    }
    if (shared) {
        *shared = value;
    }
    return true;
}

template <typename Value, std::enable_if_t<hasFields<Value> || std::is_enum_v<Value>, int> = 0>
bool decodeValue(const bson::BSONElement& element, Value& value, DecodeState& state)
{
    if constexpr (std::is_enum_v<Value>) {
        std::int32_t number = 0;
        if (!decodeValue(element, number, state)) {
            return false;
        }
        value = static_cast<Value>(number);
        return true;
    } else {
        if (element.type() != bson::Object) {
            return state.because(wrongType);
        }
        return decodeFields(element.embeddedObject(), value, state);
    }
}

/// Calls `decodeOne` for every element of an array.
template <typename DecodeOne>
bool decodeList(const bson::BSONElement& element, DecodeState& state, const DecodeOne& decodeOne)
{
    if (element.type() != bson::Array) {
        return state.because(wrongType);
    }
    for (bson::BSONObjIterator it(element.embeddedObject()); it.more();) {
        const bson::BSONElement item = it.next();
        if (!decodeOne(item)) {
            return state.at(item.fieldName());
        }
    }
    return true;
}

template <typename Value>
bool decodeValue(const bson::BSONElement& element, std::vector<Value>& values, DecodeState& state)
{
    values.clear();
    return decodeList(element, state, [&](const bson::BSONElement& item) {
        values.emplace_back();
        return decodeValue(item, values.back(), state);
    });
}

inline bool decodeValue(const bson::BSONElement& element, std::set<int>& values, DecodeState& state)
{
    values.clear();
    return decodeList(element, state, [&](const bson::BSONElement& item) {
        int value = 0;
        if (!decodeValue(item, value, state)) {
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
    bool (*decode)(const bson::BSONElement&, Record&, DecodeState&);
};

template <typename Record, std::size_t Index>
bool decodeMember(const bson::BSONElement& element, Record& record, DecodeState& state)
{
    return decodeValue(element, record.*(std::get<Index>(Fields<Record>::list).member), state);
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
                           IData& record, bool& handled, DecodeState& state)
{
    handled = true;
    if (name == typeField) {
        if (element.type() != bson::String) {
            return state.because(wrongType);
        }
        return element.str() == typeName || state.because(QT_TRANSLATE_NOOP("nvservice", "记录类型不符"));
    }
    if (name == tagField) {
        std::string tag;
        if (!decodeValue(element, tag, state)) {
            return false;
        }
        record.setSystemTag(tag);
        return true;
    }
    if (name == revisionField) {
        std::int64_t revision = 0;
        if (!decodeValue(element, revision, state)) {
            return false;
        }
        record.setRevision(revision);
        return true;
    }
    handled = false;
    return true;
}

template <typename Record>
bool decodeFields(const bson::BSONObj& document, Record& record, DecodeState& state)
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
                if (!decodeReserved(element, name, Fields<Record>::typeName, record, handled, state)) {
                    return state.at(name);
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
        if (!decoders[index].decode(element, record, state)) {
            return state.at(name);
        }
        expected = index + 1;
    }
    if (unknown) {
        record.unknownFields = unknown->obj();
    }
    return true;
}

} // namespace nvservice
