#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <string>
#include <vector>

namespace WQ
{

/// The pinyin of every record's text of one column, in one piece of memory that is searched at a stretch.
class CPinyinArena
{
public:
    /// The next record's text; records come in order of data index.
    void append(const QString& text);
    int size() const { return static_cast<int>(m_ends.size()); }
    /// Sets `admitted[i]` for every record whose pinyin contains `latin` (lower case letters and digits, not empty).
    void mark(const QByteArray& latin, std::vector<char>& admitted) const;

private:
    std::string m_keys; ///< Per record its keys, parted and ended by line feeds.
    std::vector<std::uint64_t> m_ends;
};

} // namespace WQ
