// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/endian/conversion.hpp>

namespace nvservice
{

/// Reads a little-endian number at any address.
template <typename Number>
Number readLittleEndian(const char* at)
{
    return boost::endian::endian_load<Number, sizeof(Number), boost::endian::order::little>(
        reinterpret_cast<const unsigned char*>(at));
}

/// Writes a little-endian number at any address.
template <typename Number>
void writeLittleEndian(char* at, Number value)
{
    boost::endian::endian_store<Number, sizeof(Number), boost::endian::order::little>(
        reinterpret_cast<unsigned char*>(at), value);
}

} // namespace nvservice
