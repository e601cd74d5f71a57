// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CNetworkTransport.h>

#include <QString>
#include <QStringList>

#include <vector>

namespace workbench
{

/// A sub-system that the client reaches over the network.
struct ServerSetting {
    QString name;               ///< shown to the user
    QAV::NetworkServer address; ///< with the system tag
};

/// Reads a list of servers: a UTF-8 INI file with one section per server, in the order of the section names.
///
///     [shanghai]
///     name=上海分系统
///     tag=SH01
///     host=risk.example.com
///     port=7431
///     ca=ca.pem
///
/// `ca` is a PEM file with the trusted authorities, relative to the list; the default are those of the operating
/// system. `plain=true` switches TLS off and is accepted only for a loopback address. If there is any mistake, returns
/// false and sets `problem`, because a client with only some of its servers would be misleading.
bool readServerList(const QString& file, std::vector<ServerSetting>& servers, QString& problem);

/// Parses a server from the command line: "name,tag,host:port", with an IPv6 address in brackets.
bool parseServer(const QString& text, ServerSetting& server, QString& problem);

/// Checks that names and tags are distinct and all addresses are usable.
bool checkServers(const std::vector<ServerSetting>& servers, QString& problem);

} // namespace workbench
