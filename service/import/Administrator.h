#pragma once

#include "service/store/Store.h"

#include <utils/NVError.h>

#include <string>

namespace service
{

/// Creates a user with every right, bound to no institution, so that somebody can log in to a server that was imported.
/// Errors: `InvalidValue` (blank log-in, password shorter than 8 characters), `NotFound` (server), `Duplicate`
/// (log-in), `StorageFailure`.
utils::NVError createAdministrator(Store& store, const std::string& serverName, const std::string& logIn,
                                   const std::string& password);

} // namespace service
