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
        throw Refusal(EErrorCode::InvalidValue, "用户名不能为空，不能超过64个字节，首尾不能有空格");
    }
    if (hasInvisibleCharacters(text)) {
        throw Refusal(EErrorCode::InvalidValue, "用户名不能包含控制字符或不可见字符");
    }
    if (text.startsWith(QLatin1String(ToolPrefix))) {
        throw Refusal(EErrorCode::InvalidValue, std::string("用户名不能以“") + ToolPrefix + "”开头");
    }
}

void requireValidDisplayName(const std::string& name)
{
    const QString text = QString::fromStdString(name);
    if (text.toUcs4().size() > MaxDisplayNameCharacters || hasInvisibleCharacters(text)) {
        throw Refusal(EErrorCode::InvalidValue, "姓名不能超过64个字符，也不能包含控制字符或不可见字符");
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
            throw Refusal(EErrorCode::InvalidValue, "密码至少8个字符，最多1024个字节");
        }
        if (m_hash.empty()) {
            throw Refusal(EErrorCode::ResourceExhausted, "内存不足，无法保存密码");
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
        throw Refusal(EErrorCode::NotFound, "机构" + quoted(text) + "不存在");
    }
    return found->first;
}

int listUsers(Invocation& call)
{
    const ServerData data = call.data();
    const Transaction snapshot(data.connection, Transaction::EKind::Read);
    const auto institutions = loadInstitutionNames(data);
    Table table({{"login", "用户名"},
                 {"name", "姓名"},
                 {"institutionId", "机构编号"},
                 {"institution", "所属机构"},
                 {"enabled", "启用"},
                 {"rights", "权限数"}});
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
            throw Refusal(EErrorCode::Duplicate, "用户" + quoted(user.login) + "已存在");
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
        throw UsageError(QStringLiteral("请用 --institution 指定机构，或用 --none 解除绑定"));
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
    const Command list("user list", "List the users of a sub-system.", EStoreUse::Read, listUsers);

    Command add = userCommand("user add", "Create a user; the password is the first line of standard input.", addUser);
    add.details =
        QStringList{"The password has at least 8 characters. On a terminal it is asked for and not shown.",
                    "A user who is bound to an institution sees and changes that institution's records only."};
    add.examples = QStringList{"user add boss --server SH01 --rights all < password.txt",
                               "user add li --name 李岚 --institution 101 --rights edit-account-group,10041"};
    add.options = {{"name", "The name that others see; the log-in without it.", "name"},
                   {"institution", "The institution that the user is bound to, by id or name.", "institution"},
                   {"rights", "Rights, separated by commas, as 'right grant' takes them.", "rights"}};

    Command disable = userCommand("user disable", "Take a user's access away, at once.",
                                  [](Invocation& call) { return setEnabled(call, false); });
    disable.details = QStringList{"A request of a session that is open already is refused, too."};
    const Command enable = userCommand("user enable", "Give a user access again.",
                                       [](Invocation& call) { return setEnabled(call, true); });

    Command password =
        userCommand("user password", "Give a user another password, the first line of standard input.", setPassword);
    password.details = QStringList{
        "Sessions that are open end with their next request: the user logs in again with the new password."};

    Command bind = userCommand("user bind", "Bind a user to an institution, or to none.", bindUser);
    bind.options = {{"institution", "The institution, by id or name.", "institution"},
                    {"none", "The user sees every institution."}};
    return {list, add, disable, enable, password, bind};
}

} // namespace service
