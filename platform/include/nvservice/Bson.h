// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mongo/bson/bson.h>

/// The BSON classes, under the namespace that records and requests use. Copies of a `bson::BSONObj` share its bytes.
/// The bytes never change, so an owned object (`isOwned()`) can be passed between threads by copy.
namespace bson = mongo;
