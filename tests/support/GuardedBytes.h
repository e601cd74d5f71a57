// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

namespace support
{

/// A copy of bytes that ends where memory may not be read: a read behind the last byte ends the process.
class GuardedBytes
{
public:
    explicit GuardedBytes(std::string_view bytes) : m_size(bytes.size())
    {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t readable = (m_size + page - 1) / page * page;
        m_mappedSize = readable + page;
        void* const memory = mmap(nullptr, m_mappedSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED || mprotect(static_cast<char*>(memory) + readable, page, PROT_NONE) != 0) {
            qFatal("no guarded memory");
        }
        m_mapped = static_cast<char*>(memory);
        m_data = m_mapped + readable - m_size;
        bytes.copy(m_data, m_size);
    }
    ~GuardedBytes() { munmap(m_mapped, m_mappedSize); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    const char* data() const { return m_data; }
    std::size_t size() const { return m_size; }

private:
    char* m_mapped = nullptr;
    std::size_t m_mappedSize = 0;
    char* m_data = nullptr;
    std::size_t m_size;
};

} // namespace support
