#include "service/engine/Session.h"

#include <QUuid>

#include <utility>

namespace service
{

Session::Session(std::int64_t userRow, std::int64_t server, std::string logIn)
    : m_userRow(userRow), m_server(server), m_logIn(std::move(logIn)),
      m_id(QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString())
{
}

} // namespace service
