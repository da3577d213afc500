// Continues a TCP connection under TLS (RFC 8446), as a client that verifies the server's certificate.
#pragma once

#include <string>

class QObject;
class QSslSocket;
class QTcpSocket;

namespace korvane {

/// Takes the connection over from `plain`, which is disconnected from its slots and closed without a word to the other side, and
/// begins the handshake. Bytes that arrived before are discarded. The certificate must be of `host`, a name or an address, and of
/// an authority of the system or of the PEM file `authorities` (empty: none). The new socket belongs to `owner`. Throws Error when
/// the file has no certificates or the system cannot encrypt.
QSslSocket* ContinueUnderTls(QTcpSocket& plain, const std::string& host, const std::string& authorities, QObject& owner);

/// Returns why the handshake failed: all that is wrong with the certificate, or the socket's own words.
std::string HandshakeFailure(const QSslSocket& socket);

}  // namespace korvane
