#!/usr/bin/env python3
"""Kills a PostgreSQL server during an import, promotes its replica, and checks what is stored.

usage: replica_check.py PROGRAM SAMPLES

The connection string names both servers. The import says that the connection is lost; the same command completes it on the
promoted replica. No image is lost that the first run reported as stored, and each one is stored once.
"""

import os
import subprocess
import sys

from shared_import import finished, require_equal, run_check, state, wait_until

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "servers", "replica.sh")
SETS = ("fmx18", "fmx20", "bitewings2", "bitewings4", "panoramic", "ceph-lateral", "ceph-frontal", "awkward")


class Servers:
    def __init__(self, folder):
        self.folder = folder
        self.both = self.run("start").stdout.strip()

    def run(self, command):
        return subprocess.run([SCRIPT, command, self.folder], capture_output=True, text=True, timeout=120, check=True)

    def images(self, server):
        done = subprocess.run(
            ["psql", "-h", os.path.join(self.folder, server), "-U", "oxclass", "-Atqc", "SELECT count(*) FROM ImageBild_T", "clinic"],
            capture_output=True, text=True, timeout=60,
        )
        return int(done.stdout or 0)


def check(servers, importers):
    code, numbers, expected = importers.undisturbed(SETS)
    total = len(expected[3])
    print(f"an undisturbed import stores {total} images in {len(expected[2])} series", flush=True)
    importers.run_init(servers.both, importers.root)
    run = importers.start(servers.both, SETS)
    wait_until("the first series is stored", lambda: servers.images("primary") > 0)
    servers.run("kill")
    ended, first, err = finished(run)
    print(f"the primary server was killed; exit code {ended}, {first['stored']} images stored", flush=True)
    assert ended == 1, f"the import was not running any more: {first} {err}"
    assert "is lost" in err and "the same command again" in err, f"the message does not say what to do: {err}"
    importers.run(servers.both, "patients", codes=(1,))
    servers.run("promote")
    kept = servers.images("replica")
    print(f"the replica was promoted and has {kept} images", flush=True)
    assert kept >= first["stored"], f"{first['stored']} images were reported as stored, and the replica has {kept}"
    ended, second, err = finished(importers.start(servers.both, SETS))
    assert (ended, second["failed"]) == (code, numbers["failed"]), f"the repeated import: {ended} {second} {err}"
    print(f"the repeated import: exit code {ended}, {second['stored']} images stored, {second['known']} were stored already", flush=True)
    assert kept + second["stored"] == total, f"{kept} and {second['stored']} images are not {total}"
    _, file = importers.copied(servers.both, "copy.db")
    require_equal(state(file), expected)
    importers.require_files(file)
    importers.run(servers.both, "check")
    print("the rows are those of the undisturbed import, each with its file", flush=True)


if __name__ == "__main__":
    sys.exit(run_check("replica", SCRIPT, lambda folder, importers: check(Servers(folder), importers)))
