// SPDX-License-Identifier: Apache-2.0
#include "service/admin/BackupSeal.h"
#include "service/engine/Refusal.h"

#include <utils/Translation.h>

#include <QCryptographicHash>
#include <QFile>

namespace service
{

namespace
{

// Marks at both ends, so that a partly changed seal is still recognised.
constexpr char Begin[] = "\nqav-backup sha256 ";
constexpr char End[] = " sha256 qav-backup\n";
constexpr qint64 HashSize = 64;
constexpr qint64 SealSize = sizeof Begin - 1 + HashSize + sizeof End - 1;

[[noreturn]] void refuse(const QFile& file, const std::string& pattern)
{
    throw Refusal(utils::EErrorCode::Failed,
                  utils::filled(pattern, file.fileName().toStdString(), file.errorString().toStdString()));
}

/// The seal of the first `size` bytes.
QByteArray sealOfContent(QFile& file, qint64 size)
{
    constexpr qint64 ChunkBytes = 1 << 20;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    file.seek(0);
    while (size > 0) {
        const QByteArray bytes = file.read(qMin(size, ChunkBytes));
        if (bytes.isEmpty()) {
            refuse(file, utils::text("service", "无法读取文件：%1（%2）"));
        }
        hash.addData(bytes);
        size -= bytes.size();
    }
    return Begin + hash.result().toHex() + End;
}

} // namespace

void sealBackup(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadWrite)) {
        refuse(file, utils::text("service", "无法写入：%1（%2）"));
    }
    const QByteArray seal = sealOfContent(file, file.size());
    if (file.write(seal) != seal.size() || !file.flush()) {
        refuse(file, utils::text("service", "无法写入：%1（%2）"));
    }
}

ESeal sealOf(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        refuse(file, utils::text("service", "无法读取文件：%1（%2）"));
    }
    const qint64 size = file.size() - SealSize;
    if (size < 0) {
        return ESeal::None;
    }
    file.seek(size);
    const QByteArray seal = file.read(SealSize);
    if (!seal.startsWith(Begin) && !seal.endsWith(End)) {
        return ESeal::None;
    }
    return seal == sealOfContent(file, size) ? ESeal::Intact : ESeal::Broken;
}

} // namespace service
