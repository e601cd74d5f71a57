// SPDX-License-Identifier: Apache-2.0
#include "service/sampledata/SampleUsers.h"
#include "service/engine/AccountRights.h"
#include "service/engine/CategoryRights.h"
#include "service/sampledata/SampleData.h"

#include <nvservice/UserRight.h>

namespace service
{

namespace
{

namespace UserRight = nvservice::UserRight;

/// The rights to all types of accounts, and others.
std::set<int> withAccountTypes(std::set<int> rights)
{
    for (const AccountRight& each : accountRights()) {
        rights.insert(each.right);
    }
    return rights;
}

/// The rights to the system types 1 to 6 of security categories, and others.
std::set<int> withCategories(std::set<int> rights)
{
    for (int sysType = 1; sysType <= 6; ++sysType) {
        rights.insert(rightOfCategorySysType(sysType));
    }
    return rights;
}

struct Definition {
    SampleUser user;
    // Fixed, because a new salt for each file would make the files differ.
    const char* passwordHash;
    std::set<int> rights;
    bool enabled;
};

const std::vector<Definition>& definitions()
{
    static const std::set<int> all =
        withCategories(withAccountTypes({UserRight::EditAccountGroup, UserRight::SetAccountGroupRisk,
                                         UserRight::DeleteAccountGroup, UserRight::ReadAudit}));
    static const std::vector<Definition> users = {
        {{"admin", "admin123", "系统管理员", 0},
         "$argon2id$v=19$m=65536,t=2,p=1$QtZX86uKn6rQ6JZxqrKcmw$KFSyYegEfNlKh6+U2438RYhxrdlVwtF4+4fL/ABxc2E",
         all,
         true},
        {{"viewer", "viewer123", "查询员", 0},
         "$argon2id$v=19$m=65536,t=2,p=1$y+jeRldnVmb8hEx8Y9nDpA$KhyltcIz/J6uAX+cO+sEuIFjAdvpgtaSNbVcDlJpgSE",
         {},
         true},
        {{"editor", "editor123", "账号组维护员", 0},
         "$argon2id$v=19$m=65536,t=2,p=1$/bE7Eq2/4wBs791kT/rphQ$4c4+prXiFReMKeGKDtF0kRXAZuvh496pDR21nk85ZOw",
         withAccountTypes({UserRight::EditAccountGroup}),
         true},
        {{"futures", "futures123", "期货账号组维护员", 0},
         "$argon2id$v=19$m=65536,t=2,p=1$pP0NExnLPRKpbJTHhsWCdw$5zFUwCeN26aMu9KaYIdphbGFhdbTSZ46nfVtuTBBpe0",
         {UserRight::EditAccountGroup, UserRight::FutureAccount, UserRight::FutureOptionAccount},
         true},
        {{"risk", "risk123", "风控员", 0},
         "$argon2id$v=19$m=65536,t=2,p=1$TFFbxgQ9d8+S7cmEHksTfw$pZJ6h4RVBOhWTiMxmRyYrGPHuEExGWkFiNknvwGN7og",
         {UserRight::SetAccountGroupRisk, rightOfCategorySysType(1), rightOfCategorySysType(2),
          rightOfCategorySysType(4)},
         true},
        {{"deleter", "deleter123", "账号组清理员", 0},
         "$argon2id$v=19$m=65536,t=2,p=1$DY0B2jKcbN5s+AdMS1FPeA$R2/dSADdmLmcNmEBvTre5sFg1FE9KyUn1uyth8Z7Osk",
         {UserRight::DeleteAccountGroup},
         true},
        {{"bound", "bound123", "砚池证券管理员", 1},
         "$argon2id$v=19$m=65536,t=2,p=1$dmDx5QDTkH+cyd8ofTxkXQ$RmekeempJsf7ZmLRvMH2GV7MCnciY2bz2xCI6jstm+4",
         all,
         true},
        {{"boundviewer", "boundviewer123", "栖梧基金查询员", 2},
         "$argon2id$v=19$m=65536,t=2,p=1$BNJ54J5xlzjXZsl9LHMDHw$aODIuaGYJ3sbTc/Dlt6sazPei30oZHVS26o6S0I3jpA",
         {},
         true},
        {{"disabled", "disabled123", "已停用用户", 0},
         "$argon2id$v=19$m=65536,t=2,p=1$WC3N8j9U6KAC6Smdb6VB2w$iLyJUelnkMgrhzmNAsV8YOSiNWyRBJOKssQoc8riaHs",
         all,
         false}};
    return users;
}

} // namespace

std::vector<SampleUser> sampleUsers()
{
    std::vector<SampleUser> users;
    for (const Definition& definition : definitions()) {
        users.push_back(definition.user);
    }
    return users;
}

std::vector<StoredUser> sampleUserRows()
{
    std::vector<StoredUser> rows;
    for (const Definition& definition : definitions()) {
        StoredUser row;
        row.login = definition.user.login;
        row.displayName = definition.user.displayName;
        row.passwordHash = definition.passwordHash;
        if (definition.user.institutionId != 0) {
            row.institution = definition.user.institutionId;
        }
        row.enabled = definition.enabled;
        row.rights = definition.rights;
        rows.push_back(row);
    }
    return rows;
}

} // namespace service
