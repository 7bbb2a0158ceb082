#pragma once

#include <string>

namespace velino::server {

// The descriptor of this process's TCP connection whose local port is `localPort` and whose
// peer is `peerAddress`:`peerPort`, or -1.
int socketOfConnection(int localPort, const std::string &peerAddress, int peerPort);

} // namespace velino::server
