#pragma once

#include <QString>

namespace service
{

// A backup ends with the SHA-256 of all that stands before. Neither SQLite nor pg_restore looks at what follows their
// content.

enum class ESeal {
    None,   ///< a copy that was made by other means, or by a version that didn't seal
    Intact, ///< not a bit has changed since the backup was made
    Broken
};

/// Throws `Refusal`.
void sealBackup(const QString& file);

/// Reads the whole file. Throws `Refusal`.
ESeal sealOf(const QString& file);

} // namespace service
