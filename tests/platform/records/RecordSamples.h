// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>
#include <nvservice/IData.h>

#include <functional>
#include <string>
#include <vector>

namespace samples
{

/// A record class as the tests see it. Which members a class has is written down a second time here, on purpose: a
/// member that the library forgets to code, copy or compare is found by it.
struct RecordKind {
    const char* typeName;
    std::function<nvservice::IDataPtr()> makeDefault;
    /// Random values in every member, nested records, revision, tag and unknown fields included. Inside a property
    /// only.
    std::function<nvservice::IDataPtr()> makeRandom;
    /// Null when both are records of this kind with equal values; otherwise what differs.
    std::function<const char*(const nvservice::IData&, const nvservice::IData&)> difference;
};

const std::vector<RecordKind>& recordKinds();

/// For a test function that runs once per kind: its rows, and the kind of the present one.
void addKinds();
const RecordKind& kindOfRow();

/// Any text, zero bytes and characters beyond the first plane included. Inside a property only.
std::string randomText();
/// Elements of many types, none of whose names a record uses. Inside a property only.
bson::BSONObj randomUnknownFields();

} // namespace samples
