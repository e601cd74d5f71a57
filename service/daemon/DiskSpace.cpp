// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/DiskSpace.h"

#include "service/daemon/Mebibyte.h"
#include "service/store/Store.h"

#include <QFile>
#include <QFileInfo>

#include <sys/statvfs.h>

#include <algorithm>
#include <cstdint>

namespace service::daemon
{

namespace
{

// The largest record in its table, in the history, in the audit before and after, and again in SQLite's write-ahead
// log.
constexpr std::uint64_t LargestChangeBytes = 128 * Mebibyte;
constexpr std::uint64_t MostLowBytes = 4096 * Mebibyte;
constexpr std::uint64_t LowShare = 20;

} // namespace

EDiskState diskStateOf(const QString& store)
{
    struct statvfs disk = {};
    if (isPostgres(store) || ::statvfs(QFile::encodeName(QFileInfo(store).path()).constData(), &disk) != 0 ||
        disk.f_blocks == 0) {
        return EDiskState::Enough;
    }
    const std::uint64_t all = std::uint64_t{disk.f_frsize} * disk.f_blocks;
    const std::uint64_t available = std::uint64_t{disk.f_frsize} * disk.f_bavail;
    if (available < LargestChangeBytes) {
        return EDiskState::Full;
    }
    return available < std::min(all / LowShare, MostLowBytes) ? EDiskState::Low : EDiskState::Enough;
}

} // namespace service::daemon
