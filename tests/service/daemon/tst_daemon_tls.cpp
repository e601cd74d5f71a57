// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Installation.h"
#include "support/TestProgram.h"

#include <QRegularExpression>
#include <QSslCipher>
#include <QSslConfiguration>
#include <QTcpSocket>

#include <cmath>

using namespace testservice;
using nvservice::DataType::Account;
using nvservice::DataType::AccountGroup;
using nvservice::DataType::Institution;
using support::TestCertificates;

namespace
{

/// The beginning of a TLS connection that offers nothing newer than TLS 1.1.
QByteArray oldClientHello()
{
    const QByteArray body = QByteArray("\x03\x02", 2) + QByteArray(32, 'r') + QByteArray(1, '\0') +
                            QByteArray("\0\x06\xC0\x09\xC0\x13\0\x2F", 8) + QByteArray("\x01\0", 2);
    const QByteArray handshake = QByteArray("\x01\0\0", 3) + static_cast<char>(body.size()) + body;
    return QByteArray("\x16\x03\x01\0", 4) + static_cast<char>(handshake.size()) + handshake;
}

/// Whether a client that offers nothing else gets a connection.
bool isAccepted(int port, const QString& cipher, QSsl::SslProtocol protocol)
{
    QSslConfiguration configuration;
    configuration.setProtocol(protocol);
    configuration.setCaCertificates(QSslCertificate::fromPath(certificates().authority()));
    if (!cipher.isEmpty()) {
        configuration.setCiphers({QSslCipher(cipher)});
    }
    QSslSocket socket;
    socket.setSslConfiguration(configuration);
    socket.connectToHostEncrypted(QStringLiteral("127.0.0.1"), static_cast<quint16>(port), QStringLiteral("localhost"));
    return socket.waitForEncrypted(30000) && (cipher.isEmpty() || socket.sessionCipher().name() == cipher);
}

} // namespace

/// The daemon behind TLS: who gets a connection, and by which certificate.
class DaemonTlsTest : public InstallationTest
{
    Q_OBJECT

private slots:
    void queryIsAnsweredOverTls()
    {
        m_installation->useTls();
        storeGroups(m_installation->fixture, 3);
        DaemonThread daemon(m_installation->configuration);
        QVERIFY2(daemon.startError().isSuccess(), daemon.startError().errorMsg().c_str());
        RawClient client;
        QVERIFY2(enter(client, daemon.port(), certificates().authority()), qPrintable(client.errorText()));
        const RawClient::Answer answer = client.query(AccountGroup);
        COMPARE_CODE(answer, EErrorCode::Success);
        QCOMPARE(answer.totalCount, 3);
        QCOMPARE(answer.records.size(), std::size_t(3));
        QCOMPARE(answer.records[2]->getKey(), std::string("E|3"));
        QCOMPARE(client.query(Account).records.size(), std::size_t(8));
    }

    void certificateThatDoesNotFitIsRefusedByTheClient_data()
    {
        const support::DataRows<int> row("kind");
        row("expired", static_cast<int>(TestCertificates::EKind::Expired));
        row("wrong host", static_cast<int>(TestCertificates::EKind::WrongHost));
        row("unknown authority", static_cast<int>(TestCertificates::EKind::OtherAuthority));
    }
    void certificateThatDoesNotFitIsRefusedByTheClient()
    {
        QFETCH(int, kind);
        m_installation->useTls(static_cast<TestCertificates::EKind>(kind));
        DaemonThread daemon(m_installation->configuration);
        QVERIFY(daemon.startError().isSuccess());
        QCOMPARE(daemon.hasLogged("过期"),
                 static_cast<TestCertificates::EKind>(kind) == TestCertificates::EKind::Expired);
        RawClient client;
        QVERIFY(!client.open(daemon.port(), certificates().authority()));
        QTRY_VERIFY(daemon.hasLogged("handshake_failed"));
    }

    void downgradeIsRefused()
    {
        m_installation->useTls();
        DaemonThread daemon(m_installation->configuration);
        QTcpSocket socket;
        socket.connectToHost("127.0.0.1", static_cast<quint16>(daemon.port()));
        QVERIFY(socket.waitForConnected());
        socket.write(oldClientHello());
        QByteArray answer;
        while (socket.waitForReadyRead(30000)) {
            answer += socket.readAll();
        }
        QCOMPARE(socket.state(), QAbstractSocket::UnconnectedState);
        QVERIFY(!answer.startsWith('\x16')); // no handshake
        QTRY_VERIFY(daemon.hasLogged("handshake_failed"));
        QVERIFY2(daemon.hasLogged("unsupported protocol"), qPrintable(daemon.log().join('\n')));
    }

    void onlyForwardSecretAndAuthenticatedEncryptionIsSpoken_data()
    {
        const support::DataRows<bool, QString, bool> add("rsa", "cipher", "accepted");
        const auto row = [&add](bool rsa, const char* cipher, bool accepted) {
            add(QString("%1 %2").arg(rsa ? "RSA" : "EC", cipher), rsa, QString(cipher), accepted);
        };
        for (const char* cipher :
             {"ECDHE-RSA-AES256-GCM-SHA384", "ECDHE-RSA-AES128-GCM-SHA256", "ECDHE-RSA-CHACHA20-POLY1305"}) {
            row(true, cipher, true);
        }
        for (const char* cipher :
             {"ECDHE-ECDSA-AES256-GCM-SHA384", "ECDHE-ECDSA-AES128-GCM-SHA256", "ECDHE-ECDSA-CHACHA20-POLY1305"}) {
            row(false, cipher, true);
        }
        // Without forward secrecy, without authentication of every byte, or both.
        for (const char* cipher : {"AES256-GCM-SHA384", "AES128-GCM-SHA256", "ECDHE-RSA-AES256-SHA384",
                                   "ECDHE-RSA-AES128-SHA", "AES256-SHA256", "AES128-SHA"}) {
            row(true, cipher, false);
        }
        for (const char* cipher : {"ECDHE-ECDSA-AES256-SHA384", "ECDHE-ECDSA-AES128-SHA"}) {
            row(false, cipher, false);
        }
    }
    void onlyForwardSecretAndAuthenticatedEncryptionIsSpoken()
    {
        QFETCH(bool, rsa);
        QFETCH(QString, cipher);
        QVERIFY2(!QSslCipher(cipher).isNull(), "this client can offer it");
        m_installation->useTls();
        if (rsa) {
            m_installation->configuration.tls = {certificates().rsaCertificate(), certificates().rsaKey()};
        }
        DaemonThread daemon(m_installation->configuration);
        QVERIFY2(daemon.startError().isSuccess(), daemon.startError().errorMsg().c_str());
        QTEST(isAccepted(daemon.port(), cipher, QSsl::TlsV1_2), "accepted");
        QVERIFY(isAccepted(daemon.port(), {}, QSsl::TlsV1_3));
    }

    void certificateThatEndsSoonIsInLogMetricsAndHealth()
    {
        for (const auto kind : {TestCertificates::EKind::Good, TestCertificates::EKind::EndsSoon}) {
            const bool endsSoon = kind == TestCertificates::EKind::EndsSoon;
            Installation installation;
            installation.useTls(kind);
            installation.useMonitor();
            DaemonThread daemon(installation.configuration);
            QCOMPARE(daemon.hasLogged("证书将于"), endsSoon);
            const HttpReply health = httpGet(daemon.monitorPort(), "/health");
            QCOMPARE(health.status, 200);
            QCOMPARE(health.body.contains("\"warnings\":[\"certificate_ends\"]"), endsSoon);
            const QString metrics = httpGet(daemon.monitorPort(), "/metrics").body;
            const QRegularExpressionMatch end =
                QRegularExpression("\nqav_certificate_end_seconds ([0-9.e+]+)").match(metrics);
            QVERIFY2(end.hasMatch(), qPrintable(metrics));
            const double days = (end.captured(1).toDouble() - QDateTime::currentSecsSinceEpoch()) / (24 * 60 * 60);
            QVERIFY2(std::abs(days - (endsSoon ? 20 : 365)) < 0.5, qPrintable(QString::number(days)));
        }
    }

    void certificateIsReadAnewWithoutAnInterruption()
    {
        m_installation->useTls();
        QTemporaryDir directory;
        const QString file = directory.filePath("server.pem");
        QVERIFY(QFile::copy(certificates().certificate(TestCertificates::EKind::WrongHost), file));
        m_installation->configuration.tls.certificateFile = file;
        DaemonThread daemon(m_installation->configuration);
        RawClient before;
        QVERIFY(!before.open(daemon.port(), certificates().authority()));
        QVERIFY(QFile::remove(file) && QFile::copy(certificates().certificate(), file));
        daemon.reloadCertificate();
        QTRY_VERIFY(daemon.hasLogged("certificate_reloaded"));
        RawClient client, later;
        QVERIFY(enter(client, daemon.port(), certificates().authority()));
        QVERIFY(QFile::remove(file));
        daemon.reloadCertificate();
        QTRY_VERIFY(daemon.hasLogged("certificate_not_reloaded"));
        QVERIFY(enter(later, daemon.port(), certificates().authority()));
        COMPARE_CODE(client.query(Institution), EErrorCode::Success);
    }
};

TEST_WITHOUT_WIDGETS(DaemonTlsTest)
#include "tst_daemon_tls.moc"
