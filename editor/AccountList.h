// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountInfo.h>
#include <nvservice/CKolmAccountInfo.h>

#include <boost/shared_ptr.hpp>

#include <QMap>

#include <string>
#include <vector>

namespace QAV
{

/// Accounts in the order in which the user sees them.
using AccountList = std::vector<boost::shared_ptr<nvservice::CAccountInfo>>;
/// Accounts as returned by the service, with their state.
using CandidateList = std::vector<boost::shared_ptr<nvservice::CKolmAccountInfo>>;
/// The products, nvservice::CProductInfo, by the keys of their accounts. Copies share their content: panel, dialog and
/// picker hold that of all accounts.
using ProductMap = QMap<std::string, nvservice::IDataPtr>;

} // namespace QAV
