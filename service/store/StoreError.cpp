#include "service/store/StoreError.h"

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

const char* textOf(int code)
{
    switch (code & 0xff) {
    case Busy:
    case Locked:
        return "数据库正被其他程序占用，请稍后重试";
    case ReadOnly:
        return "数据库是只读的，无法保存";
    case IoError:
        return "数据库读写失败，请检查磁盘";
    case Corrupt:
        return "数据库文件已损坏，请从备份恢复";
    case Full:
        return "磁盘空间不足，数据未保存";
    case CannotOpen:
        return "无法打开数据库文件";
    case TooBig:
        return "数据过大，无法保存";
    case NotADatabase:
        return "该文件不是数据库文件";
    default:
        return "数据库操作失败";
    }
}

} // namespace

StoreError StoreError::fromSql(const QSqlError& error)
{
    bool isNumber = false;
    const int code = error.nativeErrorCode().toInt(&isNumber);
    if (isNumber && (code & 0xff) == Constraint) {
        const QString detail = error.databaseText();
        if (detail.contains(QLatin1String("UNIQUE")))
            return {utils::EErrorCode::Duplicate, "记录已存在：" + detail.toStdString()};
        return {utils::EErrorCode::StorageFailure, "数据不符合数据库约束：" + detail.toStdString()};
    }
    std::string text = textOf(isNumber ? code : 0);
    const std::string detail = error.databaseText().toStdString();
    if (!detail.empty())
        text += "（" + detail + "）";
    return {utils::EErrorCode::StorageFailure, text};
}

} // namespace service
