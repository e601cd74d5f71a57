#pragma once

#include <QAV/CNetworkTransport.h>

#include <QString>
#include <QStringList>

#include <vector>

namespace workbench
{

/// A sub-system that the client reaches over the network.
struct ServerSetting {
    QString name;               ///< as the user sees it
    QAV::NetworkServer address; ///< with the system tag
};

/// Reads a list of servers: an INI file in UTF-8, one section per server, in the order of the sections' names.
///
///     [shanghai]
///     name=上海分系统
///     tag=SH01
///     host=risk.example.com
///     port=7431
///     ca=ca.pem
///
/// `ca` names a PEM file with the authorities that are trusted, relative to the list; without it those of the operating
/// system are. `plain=true` leaves out TLS and is accepted on a loopback address only. Returns false and says in
/// `problem` what is wrong, where, when anything is: a client with half of its servers would mislead.
bool readServerList(const QString& file, std::vector<ServerSetting>& servers, QString& problem);

/// Reads one server of the command line, "name,tag,host:port"; an IPv6 address stands in brackets.
bool parseServer(const QString& text, ServerSetting& server, QString& problem);

/// Whether names and tags are distinct and every address usable.
bool checkServers(const std::vector<ServerSetting>& servers, QString& problem);

} // namespace workbench
