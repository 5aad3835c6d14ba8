#!/usr/bin/env python3
"""Imports on the three nodes of a Galera cluster at once, kills a node, and checks what is stored.

usage: cluster_check.py PROGRAM SAMPLES

Three importers, one on each node, store overlapping sets of samples; one node gets SIGKILL when half of the images are
stored, and joins again. In the end each image is stored once, with the rows and the frames of an undisturbed import, and all
nodes have the same rows. An importer that could not finish says so, and the same command completes its work.
"""

import os
import subprocess
import sys
import threading

from shared_import import finished, require_equal, run_check, state, wait_until

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "servers", "cluster.sh")
ALL = ("fmx18", "fmx20", "bitewings2", "bitewings4", "panoramic", "ceph-lateral", "ceph-frontal", "awkward")
SETS = (ALL, ALL[:4] + ALL[7:], ALL[2:])
KILLED = 2


class Cluster:
    def __init__(self, folder):
        self.folder = folder
        self.nodes = self.run("start").stdout.splitlines()
        assert len(self.nodes) == 3, self.nodes

    def run(self, command, *node):
        return subprocess.run([SCRIPT, command, self.folder, *node], capture_output=True, text=True, timeout=300, check=True)

    def ask(self, node, statement):
        """The only value of a select on a node; none if the node does not answer."""
        done = subprocess.run(
            ["mariadb", "--no-defaults", f"--socket={self.folder}/{node + 1}/socket", "-u", "root", "-Nse", statement, "clinic"],
            capture_output=True, text=True, timeout=60,
        )
        return done.stdout.split()[-1] if done.stdout.split() else None

    def images(self, node):
        return int(self.ask(node, "SELECT count(*) FROM imagebild_t") or 0)


def check(cluster, importers):
    plans = [importers.undisturbed(names) for names in SETS]
    expected = plans[0][2]
    total = len(expected[3])
    print(f"an undisturbed import stores {total} images in {len(expected[2])} series", flush=True)
    importers.run_init(cluster.nodes[0], importers.root)
    runs = [importers.start(node, names) for node, names in zip(cluster.nodes, SETS)]
    wait_until("half of the images are stored", lambda: cluster.images(0) >= total // 2)
    cluster.run("kill", str(KILLED + 1))
    print(f"node {KILLED + 1} was killed when {cluster.images(0)} images were stored", flush=True)
    stored = 0
    for node, (run, (code, numbers, _)) in enumerate(zip(runs, plans)):
        ended, told, err = finished(run)
        stored += told["stored"]
        print(f"importer {node + 1}: exit code {ended}, {told['stored']} images stored", flush=True)
        if node == KILLED and ended == 1:
            assert "is lost" in err and "the same command again" in err, f"the message does not say what to do: {err}"
            continue
        assert (ended, told["failed"]) == (code, numbers["failed"]), f"importer {node + 1}: {ended} {told} {err}"
    assert cluster.images(0) >= stored, f"{stored} images were reported as stored, and {cluster.images(0)} are there"
    cluster.run("join", str(KILLED + 1))
    print(f"node {KILLED + 1} takes part again", flush=True)
    again = importers.start(cluster.nodes[KILLED], SETS[KILLED])
    ended, told, err = finished(again)
    code, numbers, _ = plans[KILLED]
    assert (ended, told["failed"]) == (code, numbers["failed"]), f"the repeated import: {ended} {told} {err}"
    print(f"the repeated import: exit code {ended}, {told['stored']} images stored, {told['known']} were stored already", flush=True)
    assert stored + told["stored"] <= total, "an image was reported as stored twice"
    copies = [importers.copied(node, f"node{number}.db") for number, node in enumerate(cluster.nodes)]
    for checksums, file in copies:
        require_equal(state(file), expected)
        assert checksums == copies[0][0], "the nodes have different rows"
    print(f"all nodes have the same {total} images, each once, and the rows of the undisturbed import", flush=True)
    importers.require_files(copies[0][1])
    importers.run(cluster.nodes[KILLED], "check")
    print("each row has its file, and each file its row", flush=True)


def check_conflicts(cluster, importers):
    """Each node places images on one card, all at once. No transaction is stored in part or lost without a message."""
    commands = 12

    image = cluster.ask(0, "SELECT ImageBildID FROM imagebild_t i JOIN patient_t p USING (PatientID) "
                           "WHERE PersonNr_CH = 'TEST-FMX18' ORDER BY 1 LIMIT 1")
    importers.run(cluster.nodes[0], "card", "new", "TEST-FMX18", "Shared")
    card = "IC" + cluster.ask(0, "SELECT max(ImageCardID) FROM imagecard_t")
    before = int(cluster.ask(0, "SELECT Writes FROM schemaversion_t"))
    codes = []

    def place(node):
        for _ in range(commands):
            done = subprocess.run(importers.command(node, "card", "add", card, image), stdin=subprocess.DEVNULL,
                                  capture_output=True, text=True, timeout=120)
            assert done.returncode == 0 or "run the command again" in done.stderr, done.stderr
            codes.append(done.returncode)

    threads = [threading.Thread(target=place, args=(node,)) for node in cluster.nodes]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    succeeded = codes.count(0)
    assert len(codes) == 3 * commands, f"{len(codes)} commands have ended as they should"
    placed = int(cluster.ask(0, f"SET SESSION wsrep_sync_wait = 1; SELECT count(*) FROM imageattribute_t WHERE ImageCardID = {card[2:]}"))
    writes = int(cluster.ask(0, "SET SESSION wsrep_sync_wait = 1; SELECT Writes FROM schemaversion_t")) - before
    assert (placed, writes) == (succeeded, succeeded), f"{succeeded} commands succeeded: {placed} images, {writes} transactions"
    print(f"{succeeded} of {len(codes)} commands on one card, from three nodes at once, are stored, each as a whole", flush=True)


def check_all(folder, importers):
    cluster = Cluster(folder)
    check(cluster, importers)
    for _ in range(3):
        check_conflicts(cluster, importers)


if __name__ == "__main__":
    sys.exit(run_check("cluster", SCRIPT, check_all))
