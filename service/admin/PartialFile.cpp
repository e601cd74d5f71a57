#include "service/admin/PartialFile.h"
#include "service/admin/Terminal.h"
#include "service/engine/GroupRules.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace service
{

using utils::EErrorCode;

namespace
{

constexpr std::array<int, 4> Interruptions = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
// What a database leaves beside its file while it is written.
constexpr std::array<const char*, 4> Companions = {"", "-journal", "-wal", "-shm"};

/// Names for the signal handler, which can do no more than read them.
struct Slot {
    volatile std::sig_atomic_t isUsed = 0;
    std::array<std::array<char, 4096>, Companions.size()> names{};
};

std::array<Slot, 16>& registry()
{
    static std::array<Slot, 16> all;
    return all;
}

void removeFilesOf(const Slot& slot)
{
    for (const auto& name : slot.names)
        unlink(name.data());
}

void onInterruption(int signal)
{
    for (const Slot& slot : registry()) {
        if (slot.isUsed != 0)
            removeFilesOf(slot);
    }
    showInput();
    _exit(128 + signal);
}

sigset_t interruptionSet()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : Interruptions)
        sigaddset(&set, signal);
    return set;
}

[[noreturn]] void refuse(const QString& file, const char* what)
{
    throw Refusal(EErrorCode::Failed, file.toStdString() + "：" + what + "（" + std::strerror(errno) + "）");
}

void syncToDisk(const QString& path, int flags)
{
    const int file = open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    const bool isDone = file >= 0 && fsync(file) == 0;
    const int error = errno;
    if (file >= 0)
        close(file);
    errno = error;
    if (!isDone)
        refuse(path, "无法写入磁盘");
}

} // namespace

PartialFile::PartialFile(const QString& target)
    : m_target(target), m_path(target + QStringLiteral(".partial")), m_slot(-1)
{
    const QByteArray name = QFile::encodeName(m_path);
    const auto free =
        std::find_if(registry().begin(), registry().end(), [](const Slot& slot) { return slot.isUsed == 0; });
    if (free == registry().end() || name.size() + 16 > static_cast<int>(free->names[0].size()))
        throw Refusal(EErrorCode::ResourceExhausted, target.toStdString() + "：文件名过长");
    for (std::size_t i = 0; i < Companions.size(); ++i)
        std::snprintf(free->names[i].data(), free->names[i].size(), "%s%s", name.constData(), Companions[i]);
    m_slot = static_cast<int>(free - registry().begin());
    free->isUsed = 1;
    removeFilesOf(*free);
    const int created = open(name.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (created < 0) {
        free->isUsed = 0;
        refuse(target, "无法写入");
    }
    close(created);
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
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush())
        throw Refusal(EErrorCode::Failed,
                      m_target.toStdString() + "：无法写入（" + file.errorString().toStdString() + "）");
}

void PartialFile::commit()
{
    syncToDisk(m_path, O_RDONLY);
    if (rename(QFile::encodeName(m_path).constData(), QFile::encodeName(m_target).constData()) != 0)
        refuse(m_target, "无法写入");
    syncToDisk(QFileInfo(m_target).absolutePath(), O_RDONLY | O_DIRECTORY);
}

void requireNewFile(const QString& name, bool mayReplace)
{
    if (!mayReplace && QFileInfo::exists(name))
        throw Refusal(EErrorCode::Duplicate, "文件已存在：" + name.toStdString() + "（--force 可替换）");
}

void cleanUpWhenInterrupted()
{
    registry(); // made before the handler can ask for it
    struct sigaction action {
    };
    action.sa_handler = onInterruption;
    action.sa_mask = interruptionSet();
    for (const int signal : Interruptions)
        sigaction(signal, &action, nullptr);
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
