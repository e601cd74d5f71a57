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

/// What is wrong with a name or code of master data, which messages call `what`: empty, longer than 64 characters,
/// invisible characters. Empty: nothing.
std::string textProblem(const QString& text, const std::string& what, bool mayBeEmpty = false);

/// A number of an institution, product or category: above 0, and not the one that stands for no institution.
std::optional<std::int32_t> masterDataNumber(const QString& text);

/// The data type of audited changes of what no request addresses.
constexpr std::int32_t NoDataType = 0;

/// How the audit keeps institutions.
std::string institutionKey(const std::string& id);
bson::BSONObj institutionDocument(const SubSystem& server, std::int32_t id, const std::string& name);

} // namespace service
