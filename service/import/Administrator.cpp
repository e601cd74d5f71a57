#include "service/import/Administrator.h"

#include "service/engine/CategoryRights.h"
#include "service/engine/Password.h"
#include "service/store/MasterData.h"
#include "service/store/Users.h"

#include <nvservice/UserRight.h>

#include <QString>

namespace service
{

using utils::EErrorCode;
using utils::NVError;

NVError createAdministrator(Store& store, const std::string& serverName, const std::string& logIn,
                            const std::string& password)
{
    namespace UserRight = nvservice::UserRight;
    if (QString::fromStdString(logIn).trimmed().isEmpty() || logIn.size() > 64)
        return {EErrorCode::InvalidValue, "用户名不能为空，且不能超过64个字节"};
    if (QString::fromStdString(password).size() < 8 || password.size() > MaxPasswordBytes)
        return {EErrorCode::InvalidValue, "密码至少8个字符"};
    StoredUser user;
    user.login = logIn;
    user.displayName = logIn;
    user.enabled = true;
    user.passwordHash = hashPassword(password);
    if (user.passwordHash.empty())
        return {EErrorCode::ResourceExhausted, "内存不足，无法保存密码"};
    user.rights = {UserRight::EditAccountGroup,
                   UserRight::SetAccountGroupRisk,
                   UserRight::DeleteAccountGroup,
                   UserRight::FutureAccount,
                   UserRight::StockAccount,
                   UserRight::StockOptionAccount,
                   UserRight::ShanghaiHongKongAccount,
                   UserRight::OverseasFutureAccount,
                   UserRight::FutureOptionAccount,
                   UserRight::NeeqAccount,
                   UserRight::CreditAccount,
                   UserRight::ShenzhenHongKongAccount,
                   UserRight::IbOverseasAccount,
                   UserRight::GoldAccount,
                   UserRight::InterbankAccount};
    for (int sysType = 0; sysType < CategorySysTypes; ++sysType)
        user.rights.insert(rightOfCategorySysType(sysType));
    try {
        Connection& connection = store.connection();
        const std::lock_guard<std::mutex> turn(store.writeMutex());
        Transaction transaction(connection, Transaction::EKind::Write);
        const std::optional<SubSystem> server = findSubSystem(connection, serverName);
        if (!server)
            return {EErrorCode::NotFound, "分系统“" + serverName + "”不存在"};
        if (findUser(connection, *server, logIn))
            return {EErrorCode::Duplicate, "用户“" + logIn + "”已存在"};
        insertUser(connection, *server, user);
        transaction.commit();
    } catch (const StoreError& failure) {
        return failure.error();
    }
    return {};
}

} // namespace service
