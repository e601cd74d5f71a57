# SPDX-License-Identifier: Apache-2.0
"""Three machines of a Patroni cluster: each a network namespace with etcd, Patroni and PostgreSQL."""

import glob
import json
import os
import re
import subprocess
import time
import urllib.request

NAMES = ("db1", "db2", "db3")
ADDRESSES = {name: f"10.117.0.{number}" for number, name in enumerate(NAMES, 1)}
OWN_ADDRESS = "10.117.0.254"
ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
PATIENCE_SECONDS = 120

CONFIGURATION = """
scope: qav
name: {name}
restapi: {{listen: "{address}:8008", connect_address: "{address}:8008"}}
etcd: {{hosts: [{etcd}]}}
bootstrap:
  initdb: [{{encoding: UTF8}}, {{locale: C.UTF-8}}, {{auth: trust}}]
  dcs:
{settings}
postgresql:
  listen: "{address}:5432"
  connect_address: "{address}:5432"
  data_dir: {folder}/data
  bin_dir: {programs}
  pgpass: {folder}/pgpass
  pg_hba: [host all all 10.117.0.0/24 trust, host replication all 10.117.0.0/24 trust]
  parameters: {{unix_socket_directories: {folder}}}
  authentication:
    superuser: {{username: postgres, password: unused}}
    replication: {{username: replicator, password: unused}}
"""


def run(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def wait_until(what, holds):
    end = time.monotonic() + PATIENCE_SECONDS
    while not holds():
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain until {what}")
        time.sleep(0.2)


def documented_settings():
    """What docs/data-service.md puts under bootstrap.dcs."""
    with open(f"{ROOT}/docs/data-service.md", encoding="utf-8") as document:
        block = re.search(r"# patroni\.yml, under bootstrap\.dcs.*?\n(.*?)\n\n", document.read(), re.S).group(1)
    return block


class Machines:
    def __init__(self, folder):
        self._folder = folder
        self._programs = sorted(glob.glob("/usr/lib/postgresql/*/bin"))[-1]
        run("ip", "link", "add", "cluster", "type", "bridge")
        run("ip", "addr", "add", f"{OWN_ADDRESS}/24", "dev", "cluster")
        run("ip", "link", "set", "cluster", "up")
        run("ip", "link", "set", "lo", "up")
        for name in NAMES:
            self._connect(name)
            os.mkdir(self._path(name), 0o700)
            with open(f"{self._path(name)}/patroni.yml", "w", encoding="utf-8") as configuration:
                configuration.write(self._configuration(name))
            run("chown", "-R", "postgres", self._path(name))

    def _path(self, name):
        return f"{self._folder}/{name}"

    def _connect(self, name):
        run("ip", "netns", "add", name)
        run("ip", "link", "add", name, "type", "veth", "peer", "name", "eth0", "netns", name)
        run("ip", "link", "set", name, "master", "cluster", "up")
        run("ip", "-n", name, "addr", "add", f"{ADDRESSES[name]}/24", "dev", "eth0")
        run("ip", "-n", name, "link", "set", "eth0", "up")
        run("ip", "-n", name, "link", "set", "lo", "up")

    def _configuration(self, name):
        return CONFIGURATION.format(name=name, address=ADDRESSES[name], folder=self._path(name),
                                    programs=self._programs, settings=documented_settings(),
                                    etcd=", ".join(f'"{address}:2379"' for address in ADDRESSES.values()))

    def _start_program(self, name, *command):
        with open(f"{self._path(name)}/{command[0]}.log", "a", encoding="utf-8") as log:
            subprocess.Popen(["ip", "netns", "exec", name, "runuser", "-u", "postgres", "--", *command],
                             cwd=self._path(name), stdout=log, stderr=log)

    def start(self, name):
        url = f"http://{ADDRESSES[name]}"
        peers = ",".join(f"{peer}=http://{address}:2380" for peer, address in ADDRESSES.items())
        self._start_program(name, "etcd", "--name", name, "--data-dir", f"{self._path(name)}/etcd",
                            "--listen-peer-urls", f"{url}:2380", "--initial-advertise-peer-urls", f"{url}:2380",
                            "--listen-client-urls", f"{url}:2379", "--advertise-client-urls", f"{url}:2379",
                            "--initial-cluster", peers, "--enable-v2")
        self._start_program(name, "patroni", f"{self._path(name)}/patroni.yml")

    def kill(self, name):
        """The machine loses its power."""
        run("kill", "-9", *run("ip", "netns", "pids", name).split())

    def unplug(self, name):
        run("ip", "link", "set", name, "down")

    def plug_in(self, name):
        run("ip", "link", "set", name, "up")

    def part(self, name):
        """Cuts a machine off from the two others; the daemon still reaches all."""
        self._route(name, "add")

    def join(self, name):
        self._route(name, "del")

    def _route(self, name, action):
        for other in set(NAMES) - {name}:
            run("ip", "-n", name, "route", action, "blackhole", ADDRESSES[other])
            run("ip", "-n", other, "route", action, "blackhole", ADDRESSES[name])

    def switch_over(self):
        name = self.primary()
        run("ip", "netns", "exec", name, "patronictl", "-c", f"{self._path(name)}/patroni.yml", "switchover", "--force")

    # State

    def members(self):
        """Role and state of each member, as the majority of the machines sees them."""
        views = []
        for name in NAMES:
            try:
                with urllib.request.urlopen(f"http://{ADDRESSES[name]}:8008/cluster", timeout=2) as answer:
                    members = json.load(answer)["members"]
                    views.append({member["name"]: (member["role"], member["state"]) for member in members})
            except (OSError, ValueError, KeyError):
                pass
        return next((view for view in views if views.count(view) > 1), {})

    def primary(self):
        return next((name for name, (role, _) in self.members().items() if role == "leader"), None)

    def are_healthy(self):
        question = "SELECT sync_state FROM pg_stat_replication WHERE state = 'streaming' ORDER BY 1"
        primary = self.primary()
        return primary is not None and self.ask(primary, "postgres", question) == ["async", "sync"]

    def wait_until_healthy(self):
        wait_until("all three machines replicate", self.are_healthy)

    def ask(self, name, database, statement):
        """The rows of the answer; none while the server is away."""
        asked = subprocess.run([f"{self._programs}/psql", "-X", "-A", "-t", "-q", "-h", ADDRESSES[name], "-U",
                                "postgres", "-d", database, "-c", statement], check=False, capture_output=True, text=True)
        if asked.returncode not in (0, 2):
            raise AssertionError(asked.stderr)
        return asked.stdout.splitlines()
