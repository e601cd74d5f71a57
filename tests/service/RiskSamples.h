// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/ServiceFixture.h"

#include <random>

namespace testservice
{

constexpr int ConfigType = nvservice::DataType::GroupRiskConfig;
constexpr int EmailType = nvservice::DataType::EmailRule;

nvservice::CTradeLimitEntry entry(const std::string& code, nvservice::EZVRCListKind kind = {});
/// A limit that the service accepts: shares at most 30 % of the net assets.
nvservice::CAssetsRC stockLimit(double threshold = 30);

/// The configuration of a group as a query of the user gives it; null if there is none.
RiskConfigPtr loaded(service::DataEngine& engine, const service::SessionPtr& session, int groupId);
service::Reply save(service::DataEngine& engine, const service::SessionPtr& session, const RiskConfigPtr& config,
                    const std::string& operationId = {});

/// A valid configuration with something in every field, unknown fields in each of its records included.
RiskConfigPtr richConfig(std::mt19937& random, int groupId);

/// The document of a configuration without what the service gives: revision, tag, ids of the limits.
std::string contentOf(const nvservice::CAccountGroupRCConfig& config);

} // namespace testservice
