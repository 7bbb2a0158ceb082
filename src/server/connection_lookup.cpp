#include "connection_lookup.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cstdlib>

namespace velino::server {
namespace {

bool endpointOf(const sockaddr_storage &address, std::string &host, int &port) {
    char text[INET6_ADDRSTRLEN] = {};
    if (address.ss_family == AF_INET) {
        const auto &ipv4 = reinterpret_cast<const sockaddr_in &>(address);
        inet_ntop(AF_INET, &ipv4.sin_addr, text, sizeof text);
        port = ntohs(ipv4.sin_port);
    } else if (address.ss_family == AF_INET6) {
        const auto &ipv6 = reinterpret_cast<const sockaddr_in6 &>(address);
        inet_ntop(AF_INET6, &ipv6.sin6_addr, text, sizeof text);
        port = ntohs(ipv6.sin6_port);
    } else {
        return false;
    }
    host = text;
    return true;
}

} // namespace

// The HTTP library hands its plain-HTTP handlers no socket, so it is found among the open
// descriptors by its two ends; this only runs for the rare refused or broken body.
int socketOfConnection(int localPort, const std::string &peerAddress, int peerPort) {
    DIR *descriptors = opendir("/proc/self/fd");
    if (!descriptors)
        return -1;
    int found = -1;
    while (dirent *entry = readdir(descriptors)) {
        const int fd = std::atoi(entry->d_name);
        struct stat info;
        if (fd <= 2 || fd == dirfd(descriptors) || fstat(fd, &info) != 0 || !S_ISSOCK(info.st_mode))
            continue;
        sockaddr_storage local{}, peer{};
        socklen_t localSize = sizeof local, peerSize = sizeof peer;
        std::string host;
        int port = 0;
        if (getsockname(fd, reinterpret_cast<sockaddr *>(&local), &localSize) != 0 ||
            !endpointOf(local, host, port) || port != localPort)
            continue;
        if (getpeername(fd, reinterpret_cast<sockaddr *>(&peer), &peerSize) != 0 ||
            !endpointOf(peer, host, port) || port != peerPort || host != peerAddress)
            continue;
        found = fd;
        break;
    }
    closedir(descriptors);
    return found;
}

} // namespace velino::server
