# SPDX-License-Identifier: Apache-2.0
set(QAV_NETWORK_SOURCES
  network/CNetworkTransport.cpp
  network/CReplyDecoder.cpp
  network/CRequestBook.cpp
  network/CServerLink.cpp
  network/CWireSocket.cpp
  network/ConnectionTexts.cpp
  network/ServerLinkMessages.cpp)
