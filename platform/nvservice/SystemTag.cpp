// SPDX-License-Identifier: Apache-2.0
#include "RecordFields.h"

#include <nvservice/SystemTag.h>

#include <type_traits>
#include <vector>

namespace nvservice
{

namespace
{

template <typename Value>
constexpr bool isPointer = false;
template <typename Record>
constexpr bool isPointer<boost::shared_ptr<Record>> = true;

template <typename Value>
constexpr bool isList = false;
template <typename Value>
constexpr bool isList<std::vector<Value>> = true;

/// Whether a value is a record or may hold one. What holds none, such as the entries of a trade limit list, need not be
/// looked through.
template <typename Value>
constexpr bool holdsRecords();

template <typename Record, typename... Values>
constexpr bool anyHoldsRecords(const std::tuple<Field<Record, Values>...>&)
{
    return (holdsRecords<Values>() || ...);
}

template <typename Value>
constexpr bool holdsRecords()
{
    if constexpr (std::is_base_of_v<IData, Value> || isPointer<Value>) {
        return true;
    } else if constexpr (isList<Value>) {
        return holdsRecords<typename Value::value_type>();
    } else if constexpr (hasFields<Value>) {
        return anyHoldsRecords(Fields<Value>::list);
    } else {
        return false;
    }
}

enum class ETagged { All, Untagged };

template <ETagged Which>
class Tagger
{
public:
    explicit Tagger(const std::string& tag) : m_tag(tag) {}

    void tagAny(IData& record) { tagAs(record, AllRecords()); }

private:
    void tagOwn(IData& record)
    {
        if (Which == ETagged::All || record.getSystemTag().empty()) {
            record.setSystemTag(m_tag);
        }
    }

    template <typename... Records>
    void tagAs(IData& record, const RecordList<Records...>&)
    {
        tagOwn(record);
        const char* const typeName = record.typeName();
        static_cast<void>(((typeName == Fields<Records>::typeName && tagInside(static_cast<Records&>(record))) || ...));
    }

    template <typename Record>
    bool tagInside(Record& record)
    {
        std::apply([&](const auto&... fields) { (tag(record.*(fields.member)), ...); }, Fields<Record>::list);
        return true;
    }

    template <typename Value>
    void tag(Value& value)
    {
        if constexpr (holdsRecords<Value>()) {
            if constexpr (std::is_base_of_v<IData, Value>) {
                tagOwn(value);
            }
            tagInside(value);
        }
    }
    void tag(IDataPtr& record)
    {
        if (record) {
            tagAny(*record);
        }
    }
    template <typename Record>
    void tag(boost::shared_ptr<Record>& record)
    {
        if (record) {
            tag(*record);
        }
    }
    template <typename Value>
    void tag(std::vector<Value>& values)
    {
        if constexpr (holdsRecords<Value>()) {
            for (Value& value : values) {
                tag(value);
            }
        }
    }

    const std::string& m_tag;
};

} // namespace

void setSystemTagOfAll(IData& record, const std::string& systemTag)
{
    Tagger<ETagged::All>(systemTag).tagAny(record);
}

void addMissingSystemTags(IData& record, const std::string& systemTag)
{
    Tagger<ETagged::Untagged>(systemTag).tagAny(record);
}

} // namespace nvservice
