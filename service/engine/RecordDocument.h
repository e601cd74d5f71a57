// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>
#include <nvservice/IData.h>

#include <string>

namespace service
{

/// The document of a record that is to be stored. Throws `Refusal` (`ResourceExhausted`) for one beyond
/// nvservice::MaxRecordBytes, which no client could read again. `what` begins the text.
bson::BSONObj documentToStore(const nvservice::IData& record, const std::string& what);

/// The same. Throws also for names, texts and nested documents that nvservice::checkDocument refuses, so that what it
/// gives can be decoded again.
bson::BSONObj readableDocument(const nvservice::IData& record, const std::string& what);

} // namespace service
