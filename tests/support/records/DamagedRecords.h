// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>

#include <QString>

#include <vector>

namespace support
{

/// A record with one null pointer in it, or with none.
struct SampleRecord {
    QString name; ///< the class and the path of the pointer: "nvservice::CAccountGroup.accounts.0"
    nvservice::IDataPtr record;
};

/// One record of every class of the record library, filled in all its fields; each call makes new ones.
std::vector<SampleRecord> wholeRecords();
/// For every class and every pointer that its record holds, also inside other records: the record with this pointer
/// null. Made from the library's own descriptions of its records, so that a new class or field is among them.
std::vector<SampleRecord> damagedRecords();

} // namespace support
