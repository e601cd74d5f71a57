// SPDX-License-Identifier: Apache-2.0
#include "service/admin/PartialFile.h"
#include "service/admin/Terminal.h"
#include "service/engine/Refusal.h"

#include <utils/Translation.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace service
{

using utils::EErrorCode;

namespace
{

constexpr std::array<int, 4> Interruptions = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

/// Names for the signal handler, which must not allocate memory.
struct Slot {
    volatile std::sig_atomic_t isUsed = 0;
    std::array<char, 4096> folder{};
    std::array<std::array<char, 4096>, DatabaseCompanions.size() + 1> files{}; ///< the file and its companions
};

std::array<Slot, 16>& registry()
{
    static std::array<Slot, 16> all;
    return all;
}

void removeFilesOf(const Slot& slot)
{
    for (const auto& name : slot.files) {
        unlink(name.data());
    }
    rmdir(slot.folder.data());
}

void onInterruption(int signal)
{
    for (const Slot& slot : registry()) {
        if (slot.isUsed != 0) {
            removeFilesOf(slot);
        }
    }
    showInput();
    _exit(128 + signal);
}

sigset_t interruptionSet()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : Interruptions) {
        sigaddset(&set, signal);
    }
    return set;
}

[[noreturn]] void refuse(const QString& file, const std::string& pattern)
{
    throw Refusal(EErrorCode::Failed, utils::filled(pattern, file.toStdString(), std::strerror(errno)));
}

[[noreturn]] void refuseExisting(const QString& file)
{
    throw Refusal(EErrorCode::Duplicate,
                  utils::filled(utils::text("service", "文件已存在：%1（--force 可替换）"), file.toStdString()));
}

/// If the file system cannot rename without replacing, the file briefly has both names.
bool renameToNew(const QByteArray& from, const QByteArray& to)
{
    if (renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    const bool isUnknown = errno == EINVAL || errno == ENOSYS;
    return isUnknown && link(from.constData(), to.constData()) == 0 && unlink(from.constData()) == 0;
}

void syncToDisk(const QString& path, int flags)
{
    const int file = open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    const bool isDone = file >= 0 && fsync(file) == 0;
    const int error = errno;
    if (file >= 0) {
        close(file);
    }
    errno = error;
    if (!isDone) {
        refuse(path, utils::text("service", "%1：无法写入磁盘（%2）"));
    }
}

} // namespace

PartialFile::PartialFile(const QString& target, bool mayReplace) : m_target(target), m_mayReplace(mayReplace)
{
    const Uninterrupted registered;
    const auto free =
        std::find_if(registry().begin(), registry().end(), [](const Slot& slot) { return slot.isUsed == 0; });
    QByteArray folder = QFile::encodeName(target) + ".partial-XXXXXX";
    if (free == registry().end() || folder.size() + 16 > static_cast<int>(free->folder.size())) {
        throw Refusal(EErrorCode::ResourceExhausted,
                      utils::filled(utils::text("service", "%1：文件名过长"), target.toStdString()));
    }
    if (!mkdtemp(folder.data())) {
        refuse(target, utils::text("service", "%1：无法写入（%2）"));
    }
    const auto remember = [&folder](auto& name, const char* ending) {
        std::snprintf(name.data(), name.size(), "%s%s", folder.constData(), ending);
    };
    remember(free->folder, "");
    remember(free->files[0], "/file");
    for (std::size_t i = 0; i < DatabaseCompanions.size(); ++i) {
        remember(free->files[i + 1], ("/file" + std::string(DatabaseCompanions[i])).c_str());
    }
    m_path = QFile::decodeName(free->files[0].data());
    m_slot = static_cast<int>(free - registry().begin());
    free->isUsed = 1;
}

PartialFile::~PartialFile()
{
    Slot& slot = registry()[static_cast<std::size_t>(m_slot)];
    removeFilesOf(slot);
    slot.isUsed = 0;
}

void PartialFile::write(const QByteArray& content)
{
    QFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush()) {
        throw Refusal(EErrorCode::Failed, utils::filled(utils::text("service", "%1：无法写入（%2）"),
                                                        m_target.toStdString(), file.errorString().toStdString()));
    }
}

void PartialFile::commit()
{
    syncToDisk(m_path, O_RDONLY);
    const QByteArray from = QFile::encodeName(m_path);
    const QByteArray to = QFile::encodeName(m_target);
    const bool isDone = m_mayReplace ? rename(from.constData(), to.constData()) == 0 : renameToNew(from, to);
    if (!isDone && errno == EEXIST) {
        refuseExisting(m_target);
    }
    if (!isDone) {
        refuse(m_target, utils::text("service", "%1：无法写入（%2）"));
    }
    syncToDisk(QFileInfo(m_target).absolutePath(), O_RDONLY | O_DIRECTORY);
}

void requireNewFile(const QString& name, bool mayReplace, const QString& store)
{
    const QFileInfo file(name);
    if (!file.exists() && !file.isSymLink()) {
        return;
    }
    if (!mayReplace) {
        refuseExisting(name);
    }
    if (file.isSymLink() || !file.isFile()) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "不能替换：%1（不是普通文件）"), name.toStdString()));
    }
    const QString path = file.canonicalFilePath();
    bool isOfStore = path == QFileInfo(store).canonicalFilePath();
    for (const char* companion : DatabaseCompanions) {
        isOfStore = isOfStore || path == QFileInfo(store + QLatin1String(companion)).canonicalFilePath();
    }
    if (isOfStore) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "不能替换：%1（属于该数据库）"), name.toStdString()));
    }
}

void cleanUpWhenInterrupted()
{
    registry(); // made before the handler can ask for it
    struct sigaction action{};
    action.sa_handler = onInterruption;
    action.sa_mask = interruptionSet();
    for (const int signal : Interruptions) {
        sigaction(signal, &action, nullptr);
    }
}

Uninterrupted::Uninterrupted()
{
    const sigset_t set = interruptionSet();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

Uninterrupted::~Uninterrupted()
{
    const sigset_t set = interruptionSet();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

} // namespace service
