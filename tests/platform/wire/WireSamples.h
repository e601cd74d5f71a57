// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/make_shared.hpp>
#include <nvservice/CAccountGroup.h>

#include "platform/wire/MessageCodec.h"
#include "platform/wire/Messages.h"

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace nvservice
{
class CAccountGroup;
}

namespace samples
{

/// One message of every kind, with every field set to something of its own.
struct WireSample {
    const char* name;
    wire::Frame frame;
};
std::vector<WireSample> wireSamples();

/// Messages that only the client sends.
std::vector<WireSample> clientSamples();
/// Messages that only the server sends.
std::vector<WireSample> serverSamples();

/// The bytes of an encoded message.
wire::Frame frameOf(const bson::BSONObj& message);

/// A group with so many accounts; what it holds follows from the number.
boost::shared_ptr<nvservice::CAccountGroup> groupOf(int number, int accounts);

} // namespace samples
