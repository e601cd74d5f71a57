#pragma once

#include <mongo/bson/bson.h>

/// The document classes, under the name that records and requests use. `bson::BSONObj` shares its bytes with its
/// copies; the bytes never change, so an owned object (`isOwned()`) may be handed between threads by copy.
namespace bson = mongo;
