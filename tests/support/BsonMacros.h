// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>

#include <stdexcept>

/// Documents and arrays of tests in one expression:
///
///     BSON("name" << "value" << "list" << BSON_ARRAY(1 << 2))
// NOLINTBEGIN(bugprone-macro-parentheses): the elements are a chain of shifts.
#define BSON(elements) ((support::DocumentStream() << elements).document())
#define BSON_ARRAY(elements) ((support::ArrayStream() << elements).array())
// NOLINTEND(bugprone-macro-parentheses)

namespace support
{

/// Takes names and values in turn.
class DocumentStream
{
public:
    template <typename NameOrValue>
    DocumentStream& operator<<(const NameOrValue& nameOrValue)
    {
        if (m_hasName) {
            m_builder.append(m_name, nameOrValue);
        } else if constexpr (std::is_convertible_v<NameOrValue, std::string_view>) {
            m_name = std::string_view(nameOrValue);
        } else {
            throw std::logic_error("a value without a name");
        }
        m_hasName = !m_hasName;
        return *this;
    }
    bson::BSONObj document() { return m_builder.obj(); }

private:
    bson::BSONObjBuilder m_builder;
    std::string m_name;
    bool m_hasName = false;
};

class ArrayStream
{
public:
    template <typename Value>
    ArrayStream& operator<<(const Value& value)
    {
        m_builder.append(value);
        return *this;
    }
    bson::BSONArray array() { return m_builder.arr(); }

private:
    bson::BSONArrayBuilder m_builder;
};

} // namespace support
