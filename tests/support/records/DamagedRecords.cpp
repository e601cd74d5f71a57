// SPDX-License-Identifier: Apache-2.0
#include "DamagedRecords.h"

#include "platform/nvservice/RecordFields.h"

#include <boost/make_shared.hpp>

#include <string_view>
#include <type_traits>

namespace support
{

using namespace nvservice;

namespace
{

template <typename... Records, typename Visit>
void forEachClass(const RecordList<Records...>&, const Visit& visit)
{
    (visit(static_cast<Records*>(nullptr)), ...);
}

/// Calls `visit` with the record as the class that it is of.
template <typename Visit>
void asItsClass(IData& record, const Visit& visit)
{
    forEachClass(AllRecords(), [&](auto* tag) {
        using Record = std::remove_pointer_t<decltype(tag)>;
        if (std::string_view(record.typeName()) == Fields<Record>::typeName) {
            visit(static_cast<Record&>(record));
        }
    });
}

/// Gives every field a value; lists get two elements.
class Filler
{
public:
    template <typename Value>
    void fill(Value& value)
    {
        if constexpr (std::is_enum_v<Value>) {
            value = static_cast<Value>(2);
        } else if constexpr (std::is_same_v<Value, std::int32_t> || std::is_same_v<Value, std::int64_t>) {
            value = 1;
        } else if constexpr (hasFields<Value>) {
            std::apply([&](const auto&... fields) { (fill(value.*(fields.member)), ...); }, Fields<Value>::list);
        }
        // Flags and fractions keep the defaults of their class.
    }
    void fill(std::string& value) { value = std::to_string(++m_texts); }
    void fill(std::set<int>& values) { values = {1, 2}; }
    void fill(IDataPtr& value) { value = filled<CProductInfo>(); }
    template <typename Record>
    void fill(boost::shared_ptr<Record>& value)
    {
        value = filled<Record>();
    }
    template <typename Value>
    void fill(std::vector<Value>& values)
    {
        values.resize(2);
        for (Value& value : values) {
            fill(value);
        }
    }

    template <typename Record>
    boost::shared_ptr<Record> filled()
    {
        const auto record = boost::make_shared<Record>();
        fill(*record);
        return record;
    }

private:
    int m_texts = 100;
};

/// Makes the pointer of a number null, counted in the order of the fields.
class Damage
{
public:
    explicit Damage(int number) : m_left(number) {}

    /// Of the pointer; empty when the record has fewer.
    QString path() const { return m_path; }

    template <typename Value>
    void look(Value& value, const QString& path)
    {
        if constexpr (hasFields<Value>) {
            std::apply(
                [&](const auto&... fields) {
                    (look(value.*(fields.member), path + QLatin1Char('.') + QLatin1String(fields.name.data())), ...);
                },
                Fields<Value>::list);
        }
    }
    template <typename Record>
    void look(boost::shared_ptr<Record>& value, const QString& path)
    {
        if (!value) {
            return;
        }
        if (m_left-- == 0) {
            value.reset();
            m_path = path;
        } else if constexpr (std::is_same_v<Record, IData>) {
            asItsClass(*value, [&](auto& record) { look(record, path); });
        } else {
            look(*value, path);
        }
    }
    template <typename Value>
    void look(std::vector<Value>& values, const QString& path)
    {
        int index = 0;
        for (Value& value : values) {
            look(value, path + QLatin1Char('.') + QString::number(index++));
        }
    }

private:
    int m_left;
    QString m_path;
};

} // namespace

std::vector<SampleRecord> wholeRecords()
{
    std::vector<SampleRecord> records;
    forEachClass(AllRecords(), [&](auto* tag) {
        using Record = std::remove_pointer_t<decltype(tag)>;
        records.push_back({QLatin1String(Fields<Record>::typeName), Filler().filled<Record>()});
    });
    return records;
}

std::vector<SampleRecord> damagedRecords()
{
    std::vector<SampleRecord> records;
    forEachClass(AllRecords(), [&](auto* tag) {
        using Record = std::remove_pointer_t<decltype(tag)>;
        for (int number = 0;; ++number) {
            const auto record = Filler().filled<Record>();
            Damage damage(number);
            damage.look(*record, QLatin1String(Fields<Record>::typeName));
            if (damage.path().isEmpty()) {
                break;
            }
            records.push_back({damage.path(), record});
        }
    });
    return records;
}

} // namespace support
