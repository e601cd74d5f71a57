// SPDX-License-Identifier: Apache-2.0
#include "FrameReader.h"

#include <nvservice/Bson.h>
#include <utils/Translation.h>

#include <algorithm>
#include <utility>

namespace wire
{

namespace
{

// What is allocated at once for a frame; beyond it, memory grows as bytes come.
constexpr std::size_t FirstBytes = std::size_t{512} * 1024;

} // namespace

FrameReader::FrameReader(std::size_t maxFrameBytes) : m_maxFrameBytes(maxFrameBytes) {}

void FrameReader::setMaxFrameBytes(std::size_t bytes)
{
    m_maxFrameBytes = bytes;
}

std::size_t FrameReader::feed(const char* data, std::size_t size, utils::NVError& error)
{
    error = m_broken;
    if (!error.isSuccess()) {
        return 0;
    }
    std::size_t taken = 0;
    if (m_length == 0) {
        taken = std::min(size, bson::LengthBytes - m_frame.size());
        m_frame.append(data, taken);
        if (m_frame.size() < bson::LengthBytes) {
            return taken;
        }
        error = m_broken = readLength();
        if (!error.isSuccess()) {
            return taken;
        }
        m_frame.reserve(std::min(m_length, FirstBytes));
    }
    const std::size_t rest = std::min(size - taken, m_length - m_frame.size());
    m_frame.append(data + taken, rest);
    return taken + rest;
}

bool FrameReader::hasFrame() const
{
    return m_length != 0 && m_frame.size() == m_length;
}

Frame FrameReader::take()
{
    m_length = 0;
    return std::exchange(m_frame, {});
}

bool FrameReader::isInFrame() const
{
    return !m_frame.empty();
}

utils::NVError FrameReader::readLength()
{
    const std::int32_t length = nvservice::readLittleEndian<std::int32_t>(m_frame.data());
    if (length < static_cast<std::int32_t>(bson::ShortestDocument)) {
        return {utils::EErrorCode::Malformed, utils::text("wire", "通信数据格式错误: 消息长度无效")};
    }
    if (static_cast<std::size_t>(length) > m_maxFrameBytes) {
        return {utils::EErrorCode::ResourceExhausted,
                utils::filled(utils::text("wire", "通信数据超出限制: 消息长度 %1 字节, 最多 %2 字节"), length,
                              m_maxFrameBytes)};
    }
    m_length = static_cast<std::size_t>(length);
    return {};
}

} // namespace wire
