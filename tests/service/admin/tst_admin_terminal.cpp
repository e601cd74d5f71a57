// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"
#include "service/admin/Terminal.h"
#include "support/TestProgram.h"

#include <QElapsedTimer>

#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

using namespace testservice;

namespace
{

/// A terminal that a program writes to.
class Terminal
{
public:
    Terminal() : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
        grantpt(m_master);
        unlockpt(m_master);
        m_name = QString::fromLocal8Bit(ptsname(m_master));
        // Kept open, so that nothing is lost between two programs.
        m_slave = open(qPrintable(m_name), O_RDWR | O_NOCTTY);
    }
    ~Terminal()
    {
        close(m_slave);
        close(m_master);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    const QString& name() const { return m_name; }
    int descriptor() const { return m_slave; }
    void type(const QByteArray& text)
    {
        QCOMPARE(write(m_master, text.constData(), text.size()), ssize_t{text.size()});
    }
    bool echoes() const
    {
        termios settings{};
        tcgetattr(m_slave, &settings);
        return (settings.c_lflag & ECHO) != 0;
    }
    /// Everything that was written to it so far.
    const QString& text()
    {
        char part[4096];
        for (ssize_t size = 0; (size = read(m_master, part, sizeof part)) > 0;) {
            m_bytes.append(part, static_cast<int>(size));
        }
        return m_text = QString::fromUtf8(m_bytes);
    }

private:
    int m_master;
    int m_slave = -1;
    QString m_name;
    QByteArray m_bytes;
    QString m_text;
};

/// The tool as the only program of a terminal, whose keys reach it as signals.
class TerminalProgram : public QProcess
{
public:
    TerminalProgram(const Terminal& terminal, const QStringList& arguments) : m_terminal(terminal.descriptor())
    {
        setStandardInputFile(terminal.name());
        setStandardErrorFile(terminal.name());
        start(adminProgram(), arguments);
    }
    /// As /proc names it: 'T' is stopped.
    char state() const
    {
        const QByteArray line = readFile(QStringLiteral("/proc/%1/stat").arg(processId()));
        return line.mid(line.lastIndexOf(')') + 2, 1).at(0);
    }

protected:
    void setupChildProcess() override
    {
        setsid();
        ioctl(m_terminal, TIOCSCTTY, 0);
    }

private:
    int m_terminal;
};

/// Accounts that take some time to import.
void writeManyAccounts(const QString& name, int count)
{
    QByteArray text = "账号类型,账号,所属机构\n";
    for (int i = 0; i < count; ++i) {
        text += "证券账号," + QByteArray::number(100000000 + i) + ",1\n";
    }
    writeFile(name, text);
}

} // namespace

class AdminTerminalTest : public AdminTest
{
    Q_OBJECT

private slots:
    void longWorkWithoutATerminalPrintsALineFromTimeToTime()
    {
        const QString name = m_fixture->path("errors.txt");
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        std::fflush(stderr);
        const int terminal = dup(STDERR_FILENO);
        dup2(file.handle(), STDERR_FILENO);
        {
            service::Progress everyCall(QStringLiteral("导入"), 0);
            everyCall.show(1, 3);
            everyCall.show(3, 3);
            service::Progress never(QStringLiteral("导出"), 3600000);
            never.show(1, 3);
        }
        std::fflush(stderr);
        dup2(terminal, STDERR_FILENO);
        close(terminal);
        QCOMPARE(readFile(name), QByteArray("导入 33%\n导入 100%\n"));
    }

    void longWorkShowsABarOnATerminalAndNowhereElse()
    {
        writeManyAccounts(m_fixture->path("a.csv"), 3000);
        const QStringList arguments = {
            "import",    "--server", "E",       "--accounts",          m_fixture->path("a.csv"),
            "--dry-run", "--json",   "--store", m_fixture->storeName()};
        Terminal terminal;
        QProcess process;
        process.setStandardErrorFile(terminal.name());
        process.start(adminProgram(), arguments);
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 0);
        QVERIFY2(terminal.text().contains("导入 ["), qPrintable(terminal.text()));
        QVERIFY2(terminal.text().endsWith("\r\x1b[K"), "the bar is taken away");
        QVERIFY(!QJsonDocument::fromJson(process.readAllStandardOutput()).isNull());
        const Outcome elsewhere = runAdmin(arguments);
        COMPARE_EXIT(elsewhere, 0);
        QCOMPARE(elsewhere.errors, QString());
    }

    void interruptedImportStoresNothing()
    {
        writeManyAccounts(m_fixture->path("a.csv"), 30000);
        const QStringList before = m_fixture->content();
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            Terminal terminal;
            QProcess process;
            process.setStandardErrorFile(terminal.name());
            process.start(adminProgram(), {"import", "--server", "E", "--accounts", m_fixture->path("a.csv"), "--store",
                                           m_fixture->storeName()});
            QVERIFY(process.waitForStarted());
            // The bar appears with the first row; most are still to come.
            QTRY_VERIFY_WITH_TIMEOUT(terminal.text().contains("导入 ["), 60000);
            QCOMPARE(process.state(), QProcess::Running);
            ::kill(static_cast<pid_t>(process.processId()), signal);
            QVERIFY(process.waitForFinished(60000));
            QCOMPARE(process.exitStatus(), QProcess::NormalExit);
            QCOMPARE(process.exitCode(), 128 + signal);
            QCOMPARE(m_fixture->content(), before);
            QVERIFY(m_fixture->store().checkIntegrity().isSuccess());
        }
    }

    void whateverEndsThePromptForAPasswordTheTerminalEchoesAgain_data()
    {
        const support::DataRows<QByteArray, int, int> row("typed", "signal", "exitCode");
        row("Ctrl+C", "\x03", 0, 130);
        row("Ctrl+\\", "\x1c", 0, 131);
        row("Ctrl+C in the second line", "geheim-01\n\x03", 0, 130);
        row("Ctrl+D", "\x04", 0, 2);
        row("terminated", {}, SIGTERM, 143);
        row("hung up", {}, SIGHUP, 129);
    }
    void whateverEndsThePromptForAPasswordTheTerminalEchoesAgain()
    {
        QFETCH(QByteArray, typed);
        QFETCH(int, signal);
        const QStringList before = m_fixture->content();
        Terminal terminal;
        QVERIFY(terminal.echoes());
        TerminalProgram program(terminal, {"user", "add", "li", "--server", "E", "--store", m_fixture->storeName()});
        QTRY_VERIFY_WITH_TIMEOUT(terminal.text().contains("密码：") && !terminal.echoes(), 60000);
        terminal.type(typed);
        if (signal != 0) {
            ::kill(static_cast<pid_t>(program.processId()), signal);
        }
        QVERIFY(program.waitForFinished(60000));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QTEST(program.exitCode(), "exitCode");
        QVERIFY(terminal.echoes());
        QCOMPARE(m_fixture->content(), before);
    }

    void stoppedPromptForAPasswordLeavesTheTerminalWithEchoAndHidesThePasswordAgain()
    {
#ifdef __SANITIZE_THREAD__
        QSKIP("ThreadSanitizer holds the signal back until the program has read a line");
#endif
        Terminal terminal;
        TerminalProgram program(terminal, {"user", "add", "li", "--server", "E", "--store", m_fixture->storeName()});
        QTRY_VERIFY_WITH_TIMEOUT(terminal.text().contains("密码：") && !terminal.echoes(), 60000);
        terminal.type("\x1a");
        QTRY_COMPARE_WITH_TIMEOUT(program.state(), 'T', 60000);
        QVERIFY(terminal.echoes());
        ::kill(static_cast<pid_t>(program.processId()), SIGCONT);
        QTRY_VERIFY_WITH_TIMEOUT(!terminal.echoes(), 60000);
        terminal.type("geheim-01\n");
        QTRY_VERIFY_WITH_TIMEOUT(terminal.text().contains("再次输入密码："), 60000);
        terminal.type("geheim-01\n");
        QVERIFY(program.waitForFinished(60000));
        QCOMPARE(program.exitCode(), 0);
        QVERIFY2(!terminal.text().contains("geheim"), qPrintable(terminal.text()));
        QVERIFY(terminal.echoes());
        QVERIFY(m_fixture->east().logIn("li", "geheim-01").error.isSuccess());
    }

    void passwordIsAskedForTwiceAndNotShown()
    {
        const auto runWith = [&](const QByteArray& first, const QByteArray& second) {
            Terminal terminal;
            QProcess process;
            process.setStandardInputFile(terminal.name());
            process.setStandardErrorFile(terminal.name());
            process.start(adminProgram(), {"user", "add", "li", "--server", "E", "--store", m_fixture->storeName()});
            QString shown;
            int asked = 0;
            for (const QByteArray& line : {first, second}) {
                ++asked;
                QElapsedTimer timer;
                timer.start();
                while (terminal.text().count("密码：") < asked && timer.elapsed() < 30000) {
                    process.waitForFinished(10);
                }
                shown += terminal.echoes() ? "echo " : "";
                terminal.type(line + '\n');
            }
            process.waitForFinished(60000);
            return shown + terminal.text() + QString::number(process.exitCode());
        };
        const QString different = runWith("geheim-01", "geheim-02");
        QVERIFY2(different.endsWith("2"), qPrintable(different));
        QVERIFY(different.contains("两次输入的密码不一致"));
        const QString same = runWith("geheim-01", "geheim-01");
        QVERIFY2(same.endsWith("0"), qPrintable(same));
        for (const QString& text : {different, same}) {
            QVERIFY2(!text.contains("geheim"), qPrintable(text));
            QVERIFY2(!text.contains("echo"), qPrintable(text));
        }
        QVERIFY(m_fixture->east().logIn("li", "geheim-01").error.isSuccess());
    }
};

TEST_WITHOUT_WIDGETS(AdminTerminalTest)
#include "tst_admin_terminal.moc"
