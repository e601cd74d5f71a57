#include "table/CPinyinArena.h"

#include <WQ/Pinyin.h>

#include <algorithm>
#include <cstring>

namespace WQ
{

void CPinyinArena::append(const QString& text)
{
    const PinyinKeys keys = pinyinSearchKeys(text);
    for (QChar c : keys.syllables)
        m_keys.push_back(c.toLatin1());
    m_keys.push_back('\n');
    // Of a text without Chinese characters both are the same.
    if (keys.initials != keys.syllables) {
        for (QChar c : keys.initials)
            m_keys.push_back(c.toLatin1());
        m_keys.push_back('\n');
    }
    m_ends.push_back(m_keys.size());
}

void CPinyinArena::mark(const QByteArray& latin, std::vector<char>& admitted) const
{
    const char* const begin = m_keys.data();
    const char* const end = begin + m_keys.size();
    const char* from = begin;
    auto record = m_ends.begin();
    while (from < end) {
        const void* hit = ::memmem(from, static_cast<std::size_t>(end - from), latin.constData(),
                                   static_cast<std::size_t>(latin.size()));
        if (!hit)
            return;
        const auto at = static_cast<std::uint64_t>(static_cast<const char*>(hit) - begin);
        record = std::upper_bound(record, m_ends.end(), at);
        admitted[static_cast<std::size_t>(record - m_ends.begin())] = 1;
        from = begin + *record;
    }
}

} // namespace WQ
