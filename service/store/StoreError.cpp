// SPDX-License-Identifier: Apache-2.0
#include "service/store/StoreError.h"

#include <utils/Translation.h>

#include <QCoreApplication>

#include <cstring>

namespace service
{

namespace
{

// Primary result codes of SQLite; extended codes carry them in their low byte.
enum ESqliteCode {
    Busy = 5,
    Locked = 6,
    ReadOnly = 8,
    IoError = 10,
    Corrupt = 11,
    Full = 13,
    CannotOpen = 14,
    TooBig = 18,
    Constraint = 19,
    NotADatabase = 26,
};

std::string textOfSqlite(int code)
{
    switch (code & 0xff) {
    case Busy:
    case Locked:
        return utils::text("service", "数据库正被其他程序占用，请稍后重试");
    case ReadOnly:
        return utils::text("service", "数据库是只读的，无法保存");
    case IoError:
        return utils::text("service", "数据库读写失败，请检查磁盘");
    case Corrupt:
        return utils::text("service", "数据库文件已损坏，请从备份恢复");
    case Full:
        return utils::text("service", "磁盘空间不足，数据未保存");
    case CannotOpen:
        return utils::text("service", "无法打开数据库文件");
    case TooBig:
        return utils::text("service", "数据过大，无法保存");
    case NotADatabase:
        return utils::text("service", "该文件不是数据库文件");
    default:
        return utils::text("service", "数据库操作失败");
    }
}

struct SqlState {
    const char* state; ///< or the class, its first two letters
    const char* text;
    StoreError::EKind kind;
    bool isBusy = false;
};

// A state comes before its class.
constexpr SqlState SqlStates[] = {
    {"08", QT_TRANSLATE_NOOP("service", "数据库连接已断开"), StoreError::EKind::ConnectionLost},
    {"25006", QT_TRANSLATE_NOOP("service", "数据库是只读的，无法保存"), StoreError::EKind::Final},
    {"28", QT_TRANSLATE_NOOP("service", "数据库拒绝登录，请检查数据库用户和密码"), StoreError::EKind::Final},
    {"3D000", QT_TRANSLATE_NOOP("service", "数据库不存在"), StoreError::EKind::Final},
    {"40", QT_TRANSLATE_NOOP("service", "数据库繁忙，请稍后重试"), StoreError::EKind::Passing},
    {"42501", QT_TRANSLATE_NOOP("service", "数据库用户的权限不足"), StoreError::EKind::Final},
    {"53100", QT_TRANSLATE_NOOP("service", "磁盘空间不足，数据未保存"), StoreError::EKind::Final},
    {"53300", QT_TRANSLATE_NOOP("service", "数据库连接数已满，请稍后重试"), StoreError::EKind::ConnectionLost},
    {"53", QT_TRANSLATE_NOOP("service", "数据库资源不足，请稍后重试"), StoreError::EKind::Final, true},
    {"54", QT_TRANSLATE_NOOP("service", "数据过大，无法保存"), StoreError::EKind::Final},
    {"55P03", QT_TRANSLATE_NOOP("service", "数据库正被其他程序占用，请稍后重试"), StoreError::EKind::Final, true},
    {"57014", QT_TRANSLATE_NOOP("service", "数据库操作超时，请稍后重试"), StoreError::EKind::Final, true},
    {"57P", QT_TRANSLATE_NOOP("service", "数据库连接已断开"), StoreError::EKind::ConnectionLost},
    {"58", QT_TRANSLATE_NOOP("service", "数据库读写失败，请检查磁盘"), StoreError::EKind::Final},
    {"XX001", QT_TRANSLATE_NOOP("service", "数据库文件已损坏，请从备份恢复"), StoreError::EKind::Final},
    {"XX002", QT_TRANSLATE_NOOP("service", "数据库文件已损坏，请从备份恢复"), StoreError::EKind::Final},
};

} // namespace

StoreError StoreError::fromSqlite(const QSqlError& error)
{
    bool isNumber = false;
    const int code = error.nativeErrorCode().toInt(&isNumber);
    const std::string detail = error.databaseText().toStdString();
    if (!isNumber || (code & 0xff) != Constraint) {
        StoreError failure(utils::EErrorCode::StorageFailure, textOfSqlite(isNumber ? code : 0), detail, EKind::Final);
        failure.m_isBusy = isNumber && ((code & 0xff) == Busy || (code & 0xff) == Locked);
        return failure;
    }
    if (error.databaseText().contains(QLatin1String("UNIQUE"))) {
        return {utils::EErrorCode::Duplicate, utils::text("service", "记录已存在"), detail, EKind::Final};
    }
    return {utils::EErrorCode::StorageFailure, utils::text("service", "数据不符合数据库约束"), detail, EKind::Final};
}

StoreError StoreError::fromPostgres(const std::string& sqlState, const std::string& detail)
{
    if (sqlState.empty()) {
        return {utils::EErrorCode::StorageFailure, utils::text("service", "数据库连接已断开"), detail,
                EKind::ConnectionLost};
    }
    if (sqlState == "23505") {
        return {utils::EErrorCode::Duplicate, utils::text("service", "记录已存在"), detail, EKind::Final};
    }
    if (sqlState.compare(0, 2, "23") == 0) {
        return {utils::EErrorCode::StorageFailure, utils::text("service", "数据不符合数据库约束"), detail,
                EKind::Final};
    }
    for (const SqlState& known : SqlStates) {
        if (sqlState.compare(0, std::strlen(known.state), known.state) == 0) {
            StoreError failure(utils::EErrorCode::StorageFailure, utils::text("service", known.text), detail,
                               known.kind);
            failure.m_isBusy = known.isBusy;
            return failure;
        }
    }
    return {utils::EErrorCode::StorageFailure, utils::text("service", "数据库操作失败"), detail, EKind::Final};
}

StoreError StoreError::uncertainCommit()
{
    return {utils::EErrorCode::StorageFailure,
            utils::text("service", "数据库连接在保存时中断，无法确定操作是否已执行，请刷新后确认"), EKind::Uncertain};
}

} // namespace service
