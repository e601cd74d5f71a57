// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"

#include <nvservice/Bson.h>

#include <QString>

#include <optional>
#include <string>

namespace service
{

constexpr int MaxMasterDataTextLength = 64; ///< characters

/// Why a text cannot be a name or code of master data (blank, longer than 64 characters, invisible characters); empty
/// if it can. `what` names the field.
std::string textProblem(const QString& text, const std::string& what, bool mayBeEmpty = false);

/// The number of an institution, product or category: above 0, and not the one that means no institution.
std::optional<std::int32_t> masterDataNumber(const QString& text);

/// The data type in audit rows about data that no request changes.
constexpr std::int32_t NoDataType = 0;

/// Key and document of an institution in the audit.
std::string institutionKey(const std::string& id);
bson::BSONObj institutionDocument(const SubSystem& server, std::int32_t id, const std::string& name);

} // namespace service
