#include "platform/qt/tls_line.h"

#include <fcntl.h>

#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslError>
#include <QSslSocket>
#include <QStringList>
#include <QTcpSocket>

#include "base/error.h"

namespace korvane {
namespace {

QList<QSslCertificate> CertificatesIn(const std::string& file) {
    const QList<QSslCertificate> certificates =
        QSslCertificate::fromPath(QString::fromStdString(file), QSsl::Pem, QSslCertificate::PatternSyntax::FixedString);
    if (certificates.isEmpty()) throw Error("There are no certificates in the file '" + file + "'");
    return certificates;
}

}  // namespace

QSslSocket* ContinueUnderTls(QTcpSocket& plain, const std::string& host, const std::string& authorities, QObject& owner) {
    if (!QSslSocket::supportsSsl()) throw Error("This system cannot encrypt connections");
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    if (!authorities.empty()) configuration.addCaCertificates(CertificatesIn(authorities));

    plain.flush();
    plain.readAll();
    const int descriptor = ::fcntl(static_cast<int>(plain.socketDescriptor()), F_DUPFD_CLOEXEC, 0);
    plain.disconnect();
    plain.abort();

    auto* socket = new QSslSocket(&owner);
    socket->setProxy(QNetworkProxy::NoProxy);
    socket->setReadBufferSize(plain.readBufferSize());
    socket->setSocketDescriptor(descriptor);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket->setSslConfiguration(configuration);
    socket->setPeerVerifyName(QString::fromStdString(host));
    socket->startClientEncryption();
    return socket;
}

std::string HandshakeFailure(const QSslSocket& socket) {
    QStringList reasons;
    for (const QSslError& error : socket.sslHandshakeErrors())
        reasons += error.errorString();
    reasons.removeDuplicates();
    return (reasons.isEmpty() ? socket.errorString() : reasons.join("; ")).toStdString();
}

}  // namespace korvane
