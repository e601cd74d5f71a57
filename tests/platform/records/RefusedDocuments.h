// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>

/// For test functions that run once per document which has to be refused, with the field that is named as the reason.
namespace refusals
{

void addColumns();
void row(const char* name, const bson::BSONObj& document, const char* field);
/// Fails the test unless the document of the present row is refused as malformed, with the name of its field.
void verifyRow();

/// An account group with these fields.
bson::BSONObj group(const bson::BSONObj& fields);

} // namespace refusals
