// SPDX-License-Identifier: Apache-2.0
#include "CSession.h"

#include "ClientCentre.h"
#include "service/engine/CategoryRights.h"

#include <QAV/CConfigService.h>
#include <QAV/CUserManager.h>
#include <WQ/StringConversion.h>
#include <utils/Translation.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace workbench
{

namespace
{

QAV::CUserManager& users()
{
    return *utils::CSingletonT<QAV::CUserManager>::instance();
}

struct ServerAnswer {
    utils::NVError error;
    boost::shared_ptr<nvservice::CUserInfo> user;
};

/// Why no server accepted the user. One line if all give the same reason.
utils::NVError refusalOfAll(const std::map<std::string, ServerAnswer>& answers)
{
    if (answers.empty()) {
        return {utils::EErrorCode::NotConnected, utils::text("workbench", "没有可用的分系统，无法登录")};
    }
    const utils::NVError& first = answers.begin()->second.error;
    const bool same = std::all_of(answers.begin(), answers.end(), [&](const auto& answer) {
        return answer.second.error.errorMsg() == first.errorMsg();
    });
    if (same) {
        return first;
    }
    std::string text;
    for (const auto& [server, answer] : answers) {
        text += (text.empty() ? "" : "\n") +
                utils::filled(utils::text("workbench", "%1：%2"), server, answer.error.errorMsg());
    }
    return {first.code(), text};
}

} // namespace

/// The answers of one log-in. On the UI thread only.
struct CSession::Gathering {
    std::map<std::string, ServerAnswer> answers;
    std::size_t missing = 0;
    Handler handler;
};

CSession::CSession(QObject* parent) : QObject(parent) {}

CSession::~CSession() = default;

void CSession::logIn(const QString& user, const QString& password, Handler handler)
{
    const auto clients = clientCentre().getAllClients();
    const auto gathering = std::make_shared<Gathering>();
    gathering->missing = clients.size();
    gathering->handler = std::move(handler);
    m_current = gathering;
    if (clients.empty()) {
        m_mailbox.address().post([this, gathering] { finish(gathering); });
        return;
    }
    for (const auto& [server, client] : clients) {
        const auto answered = [this, gathering, name = server, mailbox = m_mailbox.address()](
                                  const utils::NVError& error, const boost::shared_ptr<nvservice::CUserInfo>& info) {
            mailbox.post([this, gathering, name, answer = ServerAnswer{error, info}] {
                gathering->answers[name] = answer;
                if (--gathering->missing == 0) {
                    finish(gathering);
                }
            });
        };
        client->logIn_async(WQ::qsToS(user), WQ::qsToS(password), answered);
    }
}

void CSession::finish(const std::shared_ptr<Gathering>& gathering)
{
    if (gathering != m_current) {
        return;
    }
    m_current.reset();
    Outcome outcome;
    m_refusals.clear();
    boost::shared_ptr<nvservice::CUserInfo> user;
    for (const auto& [server, answer] : gathering->answers) {
        if (!answer.error.isSuccess() || !answer.user) {
            m_refusals[WQ::sToQs(server)] = WQ::sToQs(answer.error.errorMsg());
        } else if (!user) {
            user = answer.user;
        } else {
            user->rights.insert(answer.user->rights.begin(), answer.user->rights.end());
        }
    }
    if (user) {
        users().setUserInfo(user);
        utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes(
            service::categorySysTypesOf(user->rights));
    } else {
        outcome.error = refusalOfAll(gathering->answers);
        m_refusals.clear();
        users().setUserInfo(nullptr);
    }
    emit sigUserChanged();
    gathering->handler(outcome);
}

void CSession::logOut()
{
    m_current.reset();
    m_refusals.clear();
    users().setUserInfo(nullptr);
    emit sigUserChanged();
}

QStringList CSession::refusedServers() const
{
    QStringList servers;
    for (auto refusal = m_refusals.begin(); refusal != m_refusals.end(); ++refusal) {
        servers << tr("%1：%2").arg(refusal.key(), refusal.value());
    }
    return servers;
}

bool CSession::isLoggedIn() const
{
    return users().getUserInfoPtr() != nullptr;
}

} // namespace workbench
