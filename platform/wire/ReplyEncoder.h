// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Protocol.h"

#include <nvservice/Bson.h>
#include <nvservice/IData.h>
#include <utils/NVError.h>

#include <cstdint>
#include <memory>

namespace wire
{

/// Encodes the records of one reply as chunks, each in one buffer:
///
///     for (const auto& record : records) {
///         error = encoder.add(*record);
///         if (!error.isSuccess())
///             break;                                   // the reply ends with this error
///         if (encoder.isFull())
///             send(encoder.take());
///     }
///     if (!encoder.isEmpty())
///         send(encoder.take());
///     send(encode(ReplyEnd{id, error, encoder.recordCount(), document}));
///
/// Not thread-safe.
class ReplyEncoder
{
public:
    explicit ReplyEncoder(std::int64_t id, std::size_t chunkBytes = ReplyChunkBytes);

    /// Adds a record. The error is `ResourceExhausted` for a record that is larger than MaxRecordBytes or of an unknown
    /// class; the encoder is then unchanged.
    utils::NVError add(const nvservice::IData& record);
    /// True if the chunk has reached its size.
    bool isFull() const;
    /// True if the chunk has no record.
    bool isEmpty() const;
    /// Returns the chunk as an owned message and begins the next one.
    bson::BSONObj take();
    /// The number of records in all chunks together.
    std::int64_t recordCount() const { return m_recordCount; }

private:
    void begin();

    std::int64_t m_id;
    std::size_t m_chunkBytes;
    std::int64_t m_recordCount = 0;
    std::unique_ptr<bson::BSONObjBuilder> m_builder; ///< none while the chunk is empty
    int m_recordsOffset = 0;                         ///< the position of the first record
};

} // namespace wire
