// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>
#include <nvservice/IData.h>

#include <string>

namespace service
{

/// The document of a record to store. Throws `Refusal` (`ResourceExhausted`) if it exceeds nvservice::MaxRecordBytes,
/// because no client could read it. `what` begins the text.
bson::BSONObj documentToStore(const nvservice::IData& record, const std::string& what);

/// The same. Also throws for names, texts and nested documents that nvservice::checkDocument refuses, so that the
/// result can be decoded.
bson::BSONObj readableDocument(const nvservice::IData& record, const std::string& what);

} // namespace service
