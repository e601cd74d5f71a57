#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Plays the failures of a three-machine Patroni cluster while clients work at a daemon.

    play.py <build folder> [scene...]

Needs root and the packages etcd-server, iproute2, patroni and postgresql. Nothing of it reaches the network or the
processes of the machine that it runs on.
"""

import collections
import os
import shutil
import sys
import tempfile
import threading
import time
import uuid

from machines import ADDRESSES, NAMES, ROOT, Machines, run, wait_until

sys.path.insert(0, f"{ROOT}/tests/interop")

CLIENTS = 4
WARM_UP = 100  # operations acknowledged before and after each failure
INNER = "QAV_CLUSTER_INNER"


class Writer(threading.Thread):
    """A client that adds groups, each until it is acknowledged, on one connection."""

    def __init__(self, name, client, group):
        super().__init__(daemon=True)
        self._name = name
        self._client = client
        self._group = group
        self._ended = threading.Event()
        self.acknowledged = []
        self.uncertain = 0
        self.longest_wait = 0.0
        self.failure = None

    def run(self):
        try:
            while not self._ended.is_set():
                self._add(f"{self._name}-{len(self.acknowledged)}")
        except Exception as error:  # pylint: disable=broad-except
            self.failure = error

    def _add(self, name):
        operation_id = str(uuid.uuid4())
        begin = time.monotonic()
        while True:
            answer = self._client.operate(GROUP, ADD, {**self._group, "groupName": name}, operation_id)
            if answer.code == SUCCESS:
                self.acknowledged.append(name)
                self.longest_wait = max(self.longest_wait, time.monotonic() - begin)
                return
            if answer.code != STORAGE:
                raise AssertionError(f"{name}: {answer.code} {answer.text}")
            self.uncertain += 1

    def end(self):
        self._ended.set()
        self.join()
        if self.failure:
            raise self.failure


def lose_power(machines):
    primary = machines.primary()
    machines.kill(primary)
    return lambda: machines.start(primary)


def switch_over(machines):
    machines.switch_over()
    return lambda: None


def unplug(machines):
    primary = machines.primary()
    machines.unplug(primary)
    return lambda: machines.plug_in(primary)


def part(machines):
    primary = machines.primary()
    machines.part(primary)
    return lambda: machines.join(primary)


SCENES = {
    "power": ("the primary loses its power", lose_power),
    "switchover": ("another machine becomes the primary", switch_over),
    "unplugged": ("the primary is cut off from everybody", unplug),
    "parted": ("the primary is cut off from the others, not from the daemon", part),
}


def play(scene, label, machines, daemon, installation):
    title, strike = SCENES[scene]
    scenery = Scene()
    writers = []
    for number in range(CLIENTS):
        client = Client(daemon.port, installation.authority)
        client.hello()
        if client.log_in("admin", "admin123")["code"] != SUCCESS:
            raise AssertionError("no log-in")
        writers.append(Writer(f"{label}-{number}", client, scenery.new_group(client, "")))

    def acknowledged():
        for writer in writers:
            if writer.failure:
                raise writer.failure
        return sum(len(writer.acknowledged) for writer in writers)

    for writer in writers:
        writer.start()
    wait_until("the clients work", lambda: acknowledged() >= WARM_UP)
    primary = machines.primary()
    repair = strike(machines)
    wait_until("another machine is the primary", lambda: machines.primary() not in (None, primary))
    before = acknowledged()
    wait_until("the clients go on", lambda: acknowledged() >= before + WARM_UP)
    repair()
    machines.wait_until_healthy()
    for writer in writers:
        writer.end()
    compare(label, machines, writers)
    print(f"{title}: {acknowledged()} operations, none lost, none doubled, {sum(w.uncertain for w in writers)} asked "
          f"again; longest wait {max(w.longest_wait for w in writers):.1f} s", flush=True)


def compare(label, machines, writers):
    """Every machine holds exactly what was acknowledged."""
    expected = sorted(name for writer in writers for name in writer.acknowledged)
    question = f"SELECT name FROM account_group WHERE name LIKE '{label}-%'"
    for machine in NAMES:
        wait_until(f"{machine} has caught up",
                   lambda machine=machine: len(machines.ask(machine, "qav", question)) >= len(expected))
        stored = collections.Counter(machines.ask(machine, "qav", question))
        lost = [name for name in expected if not stored[name]]
        doubled = [name for name, count in stored.items() if count > 1]
        unknown = stored.keys() - set(expected)
        if lost or doubled or unknown:
            raise AssertionError(f"{machine}: lost {lost}, doubled {doubled}, never acknowledged {unknown}")


def main(build, scenes):
    folder = tempfile.mkdtemp(prefix="qav-cluster-")
    os.chmod(folder, 0o755)
    machines = Machines(folder)
    for name in NAMES:
        machines.start(name)
    machines.wait_until_healthy()
    machines.ask(machines.primary(), "postgres", "CREATE ROLE qav LOGIN")
    machines.ask(machines.primary(), "postgres", "CREATE DATABASE qav OWNER qav")
    for name in NAMES:
        wait_until(f"{name} has the database", lambda name=name: machines.ask(
            name, "postgres", "SELECT 1 FROM pg_database WHERE datname = 'qav'"))
    location = f"postgresql://qav@{','.join(ADDRESSES.values())}/qav"
    installation = Installation(location)
    daemon = Daemon(installation)
    try:
        for number, scene in enumerate(scenes):
            play(scene, f"{number}-{scene}", machines, daemon, installation)
        print(run(f"{build}/bin/qav-admin", "--store", location, "check"), end="")
    except Exception:
        print(f"The logs of the machines are in {folder}", file=sys.stderr)
        raise
    finally:
        daemon.stop()
        installation.close()
    for name in NAMES:
        machines.kill(name)
    shutil.rmtree(folder)


if __name__ == "__main__":
    if len(sys.argv) < 2 or set(sys.argv[2:]) - SCENES.keys():
        sys.exit(f"{__doc__}\nScenes: {' '.join(SCENES)}")
    if INNER not in os.environ:
        os.environ[INNER] = "1"
        os.makedirs("/run/netns", exist_ok=True)
        # The shell waits for killed processes whose parent is gone, as every machine's first process does.
        os.execvp("unshare", ["unshare", "--net", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc", "bash",
                              "-c", '"$@"; exit $?', "bash", sys.executable, "-B", *sys.argv])
    run("mount", "-t", "tmpfs", "tmpfs", "/run/netns")
    folder_of_build = os.path.abspath(sys.argv[1])
    os.environ["QAV_DATASERVICED"] = f"{folder_of_build}/bin/qav-dataserviced"
    os.environ["QAV_SAMPLE_DATA"] = f"{folder_of_build}/bin/qav-sample-data"
    from client import Client
    from installation import Daemon, Installation
    from scene import ADD, GROUP, STORAGE, SUCCESS, Scene
    main(folder_of_build, sys.argv[2:] or list(SCENES))
