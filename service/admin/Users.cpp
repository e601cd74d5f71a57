// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Users.h"
#include "service/admin/AdministratorName.h"
#include "service/engine/Password.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"

#include <nvservice/CUserInfo.h>
#include <nvservice/Codec.h>
#include <nvservice/EZvDataOperation.h>

#include <algorithm>

namespace service
{

using utils::EErrorCode;

namespace
{

constexpr std::size_t MaxLogInBytes = 64;
constexpr int MinPasswordCharacters = 8;
constexpr int MaxDisplayNameCharacters = 64;

/// The user for the audit. Whether there is another password is all that it tells of the password.
bson::BSONObj documentOf(const SubSystem& server, const StoredUser& user, bool hasNewPassword = false)
{
    nvservice::CUserInfo info;
    info.userId = user.login;
    info.userName = user.displayName;
    if (user.institution) {
        info.institutionId = static_cast<std::int32_t>(*user.institution);
    }
    info.rights = user.rights;
    info.setSystemTag(server.systemTag);
    bson::BSONObjBuilder more;
    more.append("enabled", user.enabled);
    if (hasNewPassword) {
        more.append("newPassword", true);
    }
    info.unknownFields = more.obj();
    return nvservice::encodeRecord(info);
}

std::string keyOf(const std::string& login)
{
    return "user|" + login;
}

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

/// Takes long and needs no database, so it is done before the transaction that uses it.
class HashedPassword
{
public:
    explicit HashedPassword(const std::string& password)
        : m_isValid(QString::fromStdString(password).size() >= MinPasswordCharacters &&
                    password.size() <= MaxPasswordBytes)
    {
        if (m_isValid) {
            m_hash = hashPassword(password);
        }
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

} // namespace

std::int64_t requireInstitution(const ServerData& data, const std::string& text)
{
    const auto names = loadInstitutionNames(data);
    const auto byId = std::find_if(names.begin(), names.end(),
                                   [&text](const auto& entry) { return std::to_string(entry.first) == text; });
    const auto found = byId != names.end() ? byId
                                           : std::find_if(names.begin(), names.end(),
                                                          [&text](const auto& entry) { return entry.second == text; });
    if (found == names.end()) {
        throw Refusal(EErrorCode::NotFound, "机构" + quoted(text) + "不存在");
    }
    return found->first;
}

UserAdministration::UserAdministration(Store& store, SubSystem server, std::string administrator)
    : m_store(store), m_server(std::move(server)), m_administrator(std::move(administrator))
{
}

void UserAdministration::add(const NewUser& wanted)
{
    const HashedPassword hash(wanted.password);
    carryOut(m_store, m_server, m_administrator, [&](Administration& administration) {
        StoredUser user;
        user.login = wanted.login;
        user.displayName = wanted.displayName.empty() ? wanted.login : wanted.displayName;
        user.enabled = true;
        user.rights = wanted.rights;
        administration.row.operation = static_cast<int>(nvservice::EZvDataOperation::Add);
        administration.row.recordKey = keyOf(user.login);
        requireValidLogin(user.login);
        requireValidDisplayName(user.displayName);
        if (!wanted.institution.empty()) {
            user.institution = requireInstitution(administration, wanted.institution);
        }
        administration.row.after = documentOf(m_server, user, true);
        user.passwordHash = hash.require();
        if (findUser(administration, user.login)) {
            throw Refusal(EErrorCode::Duplicate, "用户" + quoted(user.login) + "已存在");
        }
        insertUser(administration, user);
    });
}

bool UserAdministration::setEnabled(const std::string& login, bool isEnabled)
{
    return change(login, [isEnabled](Administration&, StoredUser& user) { user.enabled = isEnabled; });
}

void UserAdministration::setPassword(const std::string& login, const std::string& password)
{
    const HashedPassword hash(password);
    change(login, [&hash](Administration&, StoredUser& user) { user.passwordHash = hash.require(); });
}

bool UserAdministration::bind(const std::string& login, const std::string& institution)
{
    return change(login, [&](Administration& administration, StoredUser& user) {
        user.institution.reset();
        if (!institution.empty()) {
            user.institution = requireInstitution(administration, institution);
        }
    });
}

bool UserAdministration::grant(const std::string& login, const std::set<int>& rights)
{
    return change(login,
                  [&rights](Administration&, StoredUser& user) { user.rights.insert(rights.begin(), rights.end()); });
}

bool UserAdministration::revoke(const std::string& login, const std::set<int>& rights)
{
    return change(login, [&rights](Administration&, StoredUser& user) {
        for (const int right : rights) {
            user.rights.erase(right);
        }
    });
}

bool UserAdministration::change(const std::string& login, const std::function<void(Administration&, StoredUser&)>& edit)
{
    return carryOut(m_store, m_server, m_administrator, [&](Administration& administration) {
        administration.row.operation = static_cast<int>(nvservice::EZvDataOperation::Modify);
        administration.row.recordKey = keyOf(login);
        std::optional<StoredUser> user = findUser(administration, login);
        if (!user) {
            throw Refusal(EErrorCode::NotFound, "用户" + quoted(login) + "不存在");
        }
        const StoredUser before = *user;
        administration.row.before = documentOf(m_server, before);
        edit(administration, *user);
        administration.row.after = documentOf(m_server, *user, user->passwordHash != before.passwordHash);
        updateUser(administration.connection, *user);
    });
}

} // namespace service
