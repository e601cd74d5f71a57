// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "RecordFields.h"

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>

#include <type_traits>
#include <vector>

namespace nvservice
{

template <typename Value>
void detach(Value& value);

template <typename Record>
void detach(boost::shared_ptr<Record>& record)
{
    if (record) {
        record = boost::static_pointer_cast<Record>(record->copy());
    }
}

template <typename Value>
void detach(std::vector<Value>& values)
{
    if constexpr (!std::is_arithmetic_v<Value>) {
        for (Value& value : values) {
            detach(value);
        }
    }
}

/// Turns a value that was just copied by its copy constructor into a deep copy.
template <typename Value>
void detach(Value& value)
{
    if constexpr (hasFields<Value>) {
        value.unknownFields = value.unknownFields.getOwned();
        std::apply([&value](const auto&... fields) { (detach(value.*(fields.member)), ...); }, Fields<Value>::list);
    }
}

template <typename Record>
IDataPtr deepCopy(const Record& record)
{
    const boost::shared_ptr<Record> result = boost::make_shared<Record>(record);
    detach(*result);
    return result;
}

} // namespace nvservice
