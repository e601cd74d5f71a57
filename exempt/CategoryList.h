// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CCategoryInfo.h>

#include <boost/shared_ptr.hpp>

#include <vector>

namespace QAV
{

using CategoryPtr = boost::shared_ptr<nvservice::CCategoryInfo>;
/// Categories in the order in which the user sees them. Their identity is the record, not the id or the name.
using CategoryList = std::vector<CategoryPtr>;

} // namespace QAV
