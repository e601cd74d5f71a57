// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/tls/TestCertificates.h"

#include <nvservice/Bson.h>

#include <vector>

namespace bench
{

/// Sends messages over a TLS connection on the loopback address, from one thread to another that throws them away.
/// Returns the seconds from the first byte written to the last byte read.
double sendOverTls(const std::vector<bson::BSONObj>& messages, support::TestCertificates& certificates);

} // namespace bench
