# SPDX-License-Identifier: Apache-2.0
"""A daemon with sample data, as its documents tell to start it."""

import json
import os
import signal
import subprocess
import tempfile
import threading

SERVER = "上海分系统"

CONFIGURATION = """
[store]
location = "{database}"
[[listen]]
sub_system = "{server}"
address = "127.0.0.1"
port = 0
[tls]
certificate = "{folder}/server.pem"
key = "{folder}/server.key"
[limits]
waiting_log_ins = 1
[workers]
log_ins = 1
[log_in]
failures_per_address = 1000
lock_seconds = 1
[timeouts]
keep_alive_seconds = {keep_alive}
"""


def _run(*command, folder=None):
    done = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    if done.returncode != 0:
        raise RuntimeError(f"{command}: {done.stdout.decode(errors='replace')}")


class Installation:
    """Sample data and certificates. By default the database is a file in the folder of the certificates."""

    def __init__(self, database=None):
        self._folder = tempfile.TemporaryDirectory(prefix="interop")
        self.folder = self._folder.name
        self.database = database or f"{self.folder}/sample.db"
        _run(os.environ["QAV_SAMPLE_DATA"], "--database", self.database, "--groups", "24", "--accounts",
             "240", "--securities", "400", "--categories", "60")
        self._make_certificates()

    @property
    def authority(self):
        return f"{self.folder}/authority.pem"

    def _make_certificates(self):
        with open(f"{self.folder}/san.ext", "w", encoding="ascii") as extension:
            extension.write("subjectAltName=DNS:localhost,IP:127.0.0.1\n")
        for key in "authority", "server":
            _run("openssl", "ecparam", "-name", "prime256v1", "-genkey", "-noout", "-out", f"{key}.key",
                 folder=self.folder)
        _run("openssl", "req", "-x509", "-new", "-key", "authority.key", "-days", "365", "-subj", "/CN=authority",
             "-addext", "keyUsage=critical,keyCertSign,cRLSign", "-out", "authority.pem", folder=self.folder)
        _run("openssl", "req", "-new", "-key", "server.key", "-subj", "/CN=server", "-out", "server.csr",
             folder=self.folder)
        _run("openssl", "x509", "-req", "-in", "server.csr", "-CA", "authority.pem", "-CAkey", "authority.key",
             "-CAcreateserial", "-days", "365", "-extfile", "san.ext", "-out", "server.pem", folder=self.folder)

    def close(self):
        self._folder.cleanup()


class Daemon:
    """The daemon of an installation, in a process of its own."""

    def __init__(self, installation, keep_alive=20):
        file = f"{installation.folder}/daemon.toml"
        with open(file, "w", encoding="utf-8") as configuration:
            configuration.write(
                CONFIGURATION.format(folder=installation.folder, database=installation.database, server=SERVER,
                                     keep_alive=keep_alive))
        self._process = subprocess.Popen([os.environ["QAV_DATASERVICED"], "--config", file], stdout=subprocess.PIPE,
                                         stderr=subprocess.STDOUT)
        self.log = []
        self.port = self._wait_until_started()
        self._reader = threading.Thread(target=self._read_rest, daemon=True)
        self._reader.start()

    def _wait_until_started(self):
        port = None
        for line in self._process.stdout:
            self.log.append(line)
            event = json.loads(line) if line.startswith(b"{") else {}
            if event.get("event") == "listening":
                port = event["port"]
            elif event.get("event") == "started":
                return port
        raise RuntimeError(b"".join(self.log).decode(errors="replace"))

    def _read_rest(self):
        self.log.extend(self._process.stdout)

    def stop(self):
        """The exit code."""
        if self._process.poll() is None:
            self._process.send_signal(signal.SIGTERM)
        code = self._process.wait(120)
        self._reader.join()
        self._process.stdout.close()
        return code
