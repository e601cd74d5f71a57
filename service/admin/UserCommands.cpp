// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdministratorName.h"
#include "service/admin/Commands.h"
#include "service/admin/RightCommands.h"
#include "service/admin/Table.h"
#include "service/admin/Terminal.h"
#include "service/admin/UserChange.h"
#include "service/engine/Password.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"

#include <utils/Translation.h>

#include <QCoreApplication>

#include <algorithm>

namespace service
{

using utils::EErrorCode;

namespace
{

constexpr std::size_t MaxLogInBytes = 64;
constexpr int MinPasswordCharacters = 8;
constexpr int MaxDisplayNameCharacters = 64;

void requireValidLogin(const std::string& login)
{
    const QString text = QString::fromStdString(login);
    if (login.empty() || login.size() > MaxLogInBytes || text.trimmed() != text) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::text("service", "用户名不能为空，不能超过64个字节，首尾不能有空格"));
    }
    if (hasInvisibleCharacters(text)) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "用户名不能包含控制字符或不可见字符"));
    }
    if (text.startsWith(QLatin1String(ToolPrefix))) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "用户名不能以“%1”开头"), ToolPrefix));
    }
}

void requireValidDisplayName(const std::string& name)
{
    const QString text = QString::fromStdString(name);
    if (text.toUcs4().size() > MaxDisplayNameCharacters || hasInvisibleCharacters(text)) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::text("service", "姓名不能超过64个字符，也不能包含控制字符或不可见字符"));
    }
}

/// Hashing is slow, so it is done before the transaction. A refusal is thrown inside, so that it is audited.
class HashedPassword
{
public:
    explicit HashedPassword(const std::string& password)
        : m_isValid(QString::fromStdString(password).size() >= MinPasswordCharacters &&
                    password.size() <= MaxPasswordBytes),
          m_hash(m_isValid ? hashPassword(password) : std::string())
    {
    }

    const std::string& require() const
    {
        if (!m_isValid) {
            throw Refusal(EErrorCode::InvalidValue, utils::text("service", "密码至少8个字符，最多1024个字节"));
        }
        if (m_hash.empty()) {
            throw Refusal(EErrorCode::ResourceExhausted, utils::text("service", "内存不足，无法保存密码"));
        }
        return m_hash;
    }

private:
    bool m_isValid;
    std::string m_hash;
};

/// The institution with this id or name. Throws `Refusal` (NotFound).
std::int64_t requireInstitution(const ServerData& data, const std::string& text)
{
    const auto names = loadInstitutionNames(data);
    auto found = std::find_if(names.begin(), names.end(),
                              [&text](const auto& entry) { return std::to_string(entry.first) == text; });
    if (found == names.end()) {
        found = std::find_if(names.begin(), names.end(), [&text](const auto& entry) { return entry.second == text; });
    }
    if (found == names.end()) {
        throw Refusal(EErrorCode::NotFound, utils::filled(utils::text("service", "机构%1不存在"), quoted(text)));
    }
    return found->first;
}

int listUsers(Invocation& call)
{
    const ServerData data = call.data();
    const Transaction snapshot(data.connection, Transaction::EKind::Read);
    const auto institutions = loadInstitutionNames(data);
    Table table({{"login", QCoreApplication::translate("service", "用户名")},
                 {"name", QCoreApplication::translate("service", "姓名")},
                 {"institutionId", QCoreApplication::translate("service", "机构编号")},
                 {"institution", QCoreApplication::translate("service", "所属机构")},
                 {"enabled", QCoreApplication::translate("service", "启用")},
                 {"rights", QCoreApplication::translate("service", "权限数")}});
    for (const StoredUser& user : loadUsers(data)) {
        const auto institution = user.institution ? institutions.find(*user.institution) : institutions.end();
        const bool isBound = institution != institutions.end();
        table.add({user.login, user.displayName, isBound ? Cell(*user.institution) : Cell(),
                   isBound ? Cell(institution->second) : Cell(), user.enabled, user.rights.size()});
    }
    return report(call, table);
}

int addUser(Invocation& call)
{
    StoredUser user;
    user.login = loginOf(call);
    user.displayName = call.value("name").isEmpty() ? user.login : call.value("name").toStdString();
    user.enabled = true;
    user.rights = requireRights(call.value("rights").split(QLatin1Char(','), Qt::SkipEmptyParts));
    const std::string institution = call.value("institution").toStdString();
    const Administrator administrator = administratorOf(call);
    const HashedPassword hash(readPassword());
    const auto add = [&](Administration& administration) {
        requireValidLogin(user.login);
        requireValidDisplayName(user.displayName);
        if (!institution.empty()) {
            user.institution = requireInstitution(administration, institution);
        }
        administration.row.after = userDocument(administration.server, user, true);
        user.passwordHash = hash.require();
        if (findUser(administration, user.login)) {
            throw Refusal(EErrorCode::Duplicate,
                          utils::filled(utils::text("service", "用户%1已存在"), quoted(user.login)));
        }
        insertUser(administration, user);
    };
    return reportSaved(carryOut(administrator, nvservice::EZvDataOperation::Add, userKey(user.login), add));
}

int setPassword(Invocation& call)
{
    const Administrator administrator = administratorOf(call);
    const HashedPassword hash(readPassword());
    return changeUser(administrator, loginOf(call),
                      [&hash](const ServerData&, StoredUser& user) { user.passwordHash = hash.require(); });
}

int setEnabled(Invocation& call, bool isEnabled)
{
    return changeUser(administratorOf(call), loginOf(call),
                      [isEnabled](const ServerData&, StoredUser& user) { user.enabled = isEnabled; });
}

int bindUser(Invocation& call)
{
    if (call.isSet("institution") == call.isSet("none")) {
        throw UsageError(QCoreApplication::translate("service", "请用 --institution 指定机构，或用 --none 解除绑定"));
    }
    const bool isBound = call.isSet("institution");
    const std::string institution = isBound ? call.requiredValue("institution").toStdString() : std::string();
    return changeUser(administratorOf(call), loginOf(call), [&](const ServerData& data, StoredUser& user) {
        user.institution = isBound ? InstitutionId(requireInstitution(data, institution)) : std::nullopt;
    });
}

} // namespace

std::vector<Command> userCommands()
{
    const Command list("user list", QCoreApplication::translate("service", "列出分系统的用户"), EStoreUse::Read,
                       listUsers);

    Command add =
        userCommand("user add", QCoreApplication::translate("service", "创建用户，密码为标准输入的第一行"), addUser);
    add.details =
        QStringList{QCoreApplication::translate("service", "密码至少 8 个字符。在终端上会提示输入，且不显示。"),
                    QCoreApplication::translate("service", "绑定机构的用户只能查看和修改该机构的记录。")};
    add.examples =
        QStringList{"user add boss --server SH01 --rights all < password.txt",
                    QCoreApplication::translate(
                        "service", "user add li --name 李岚 --institution 101 --rights edit-account-group,10041")};
    add.options = {
        {"name", QCoreApplication::translate("service", "其他人看到的姓名，缺省为用户名"), "name"},
        {"institution", QCoreApplication::translate("service", "用户所绑定机构的编号或名称"), "institution"},
        {"rights", QCoreApplication::translate("service", "权限，以逗号分隔，写法同 right grant"), "rights"}};

    Command disable = userCommand("user disable", QCoreApplication::translate("service", "立即停用用户"),
                                  [](Invocation& call) { return setEnabled(call, false); });
    disable.details = QStringList{QCoreApplication::translate("service", "已登录的会话的请求也会被拒绝。")};
    const Command enable = userCommand("user enable", QCoreApplication::translate("service", "重新启用用户"),
                                       [](Invocation& call) { return setEnabled(call, true); });

    Command password =
        userCommand("user password", QCoreApplication::translate("service", "修改用户的密码，新密码为标准输入的第一行"),
                    setPassword);
    password.details =
        QStringList{QCoreApplication::translate("service", "已登录的会话在下一个请求时结束，用户须用新密码重新登录。")};

    Command bind =
        userCommand("user bind", QCoreApplication::translate("service", "将用户绑定到机构，或解除绑定"), bindUser);
    bind.options = {{"institution", QCoreApplication::translate("service", "机构的编号或名称"), "institution"},
                    {"none", QCoreApplication::translate("service", "用户可以查看全部机构")}};
    return {list, add, disable, enable, password, bind};
}

} // namespace service
