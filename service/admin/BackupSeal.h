// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace service
{

// A backup ends with the SHA-256 of its content. SQLite and pg_restore ignore bytes after their content.

enum class ESeal {
    None,   ///< a copy made by other means, or by a version without seals
    Intact, ///< no bit has changed since the backup was made
    Broken
};

/// Throws `Refusal`.
void sealBackup(const QString& file);

/// Reads the whole file. Throws `Refusal`.
ESeal sealOf(const QString& file);

} // namespace service
