#pragma once

#include <nvservice/Bson.h>
#include <nvservice/IData.h>

namespace service
{

/// The document of a record that is to be stored. Throws `Refusal` (`ResourceExhausted`) for one beyond
/// nvservice::MaxRecordBytes, which no client could read again. `what` begins the text.
bson::BSONObj documentToStore(const nvservice::IData& record, const char* what);

} // namespace service
