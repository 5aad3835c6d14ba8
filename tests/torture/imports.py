"""What can happen to an import: it is killed, told to stop, locked out, run sixteen times at once, and more."""

import os
import random
import shutil
import signal
import subprocess
import time

from clinic import Clinic, require_equal


class Imports:
    """The cases of imports. Each raises an AssertionError for what must not be."""

    def __init__(self, program, samples, folder, seed):
        self.program = program
        self.samples = samples
        self.folder = folder
        self.random = random.Random(seed)
        self.made = 0
        undisturbed = self.clinic()
        started = time.monotonic()
        undisturbed.run("import", samples)
        self.seconds = time.monotonic() - started
        undisturbed.require_sound()
        self.expected = undisturbed.state()
        undisturbed.remove()

    def clinic(self):
        self.made += 1
        return Clinic(self.program, os.path.join(self.folder, f"clinic{self.made}"))

    def require_recovers(self, clinic):
        """A repeated import reaches the state of an undisturbed one and leaves nothing behind."""
        done = clinic.run("import", self.samples)
        assert done.returncode in (0, 3), f"the repeated import failed: {done.stderr}"
        clinic.require_sound()
        require_equal(clinic.state(), self.expected)
        found = clinic.run("check", "--json")
        assert found.returncode == 0, f"check finds: {found.stdout}"
        clinic.remove()

    def ended_at(self, sent, count):
        """Imports that get a signal at random instants; returns how many were still running then."""
        hit = 0
        for _ in range(count):
            clinic = self.clinic()
            run = clinic.start("import", self.samples, start_new_session=True)
            time.sleep(self.random.uniform(0, self.seconds))
            hit += run.poll() is None
            run.send_signal(sent)  # nothing for a process that has ended
            out, err = run.communicate(timeout=120)
            if sent != signal.SIGKILL and run.returncode >= 0:
                assert run.returncode == 3 and "files:" in out or run.returncode in (0, 3), f"{run.returncode}: {out} {err}"
                clinic.require_sound()
            assert clinic.rows("PRAGMA integrity_check") == [("ok",)]
            self.require_rows_have_files(clinic)
            self.require_recovers(clinic)
        return f"{count} imports, {hit} of them hit"

    @staticmethod
    def require_rows_have_files(clinic):
        for (name,) in clinic.rows("SELECT GraphicURL_NVC FROM ImageBild_T WHERE GraphicURL_NVC <> ''"):
            assert os.path.exists(os.path.join(clinic.root, name.replace("\\", "/"))), f"a row without its file: {name}"

    def killed(self, count):
        return self.ended_at(signal.SIGKILL, count)

    def stopped(self, count):
        for sent in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            self.ended_at(sent, count)
        return f"{count} of SIGINT, SIGTERM and SIGHUP each"

    def at_once(self, importers):
        """Many importers of the same files."""
        clinic = self.clinic()
        runs = [clinic.start("import", self.samples, "--jobs", "1") for _ in range(importers)]
        for run in runs:
            out, err = run.communicate(timeout=600)
            assert run.returncode in (0, 3), f"{run.returncode}: {err}"
            assert "locked" not in err, err
        clinic.require_sound()
        require_equal(clinic.state(), self.expected)
        clinic.remove()
        return f"{importers} importers"

    def in_any_order(self, rounds, processes=8):
        """The films of a series arrive through several processes at once: the frames are always the same."""
        films = sorted(
            os.path.join(folder, name) for folder, _, names in os.walk(os.path.join(self.samples, "fmx18")) for name in names
        )
        whole = self.clinic()
        whole.run("import", *films, check=True)
        expected = whole.state()
        whole.remove()
        for _ in range(rounds):
            clinic = self.clinic()
            self.random.shuffle(films)
            runs = [clinic.start("import", *films[i::processes], "--jobs", "1") for i in range(processes)]
            for run in runs:
                _, err = run.communicate(timeout=600)
                assert run.returncode == 0, err
            clinic.require_sound()
            require_equal(clinic.state(), expected)
            clinic.remove()
        return f"{rounds} rounds of {processes} processes"

    def locked(self, seconds):
        """Another program holds the write lock for longer than the program waits."""
        clinic = self.clinic()
        con = clinic.connect()
        con.execute("BEGIN IMMEDIATE")
        film = os.path.join(self.samples, "bitewings2")
        run = clinic.start("import", film)
        time.sleep(seconds)
        con.execute("ROLLBACK")
        con.close()
        out, err = run.communicate(timeout=120)
        assert "files:" in out, "the import ended without its summary"
        if seconds > 15:
            assert run.returncode == 3 and "locked" in err, f"{run.returncode}: {err}"
            assert clinic.rows("SELECT count(*) FROM ImageBild_T") == [(0,)]
        else:
            assert run.returncode == 0, err
        clinic.require_sound()
        self.require_recovers(clinic)
        return f"a lock of {seconds} seconds"

    def full_disks(self, count):
        """Files may not grow beyond a random size: the database or a copy meets the limit."""
        for _ in range(count):
            clinic = self.clinic()
            limit = self.random.randrange(20, 1500)
            done = subprocess.run(
                ["bash", "-c", 'ulimit -f "$0"; exec "$@"', str(limit), *clinic.command("import", self.samples)],
                stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace", timeout=600,
            )
            assert done.returncode in (0, 1, 3), f"limit {limit}: {done.returncode} {done.stderr[-2000:]}"
            self.require_rows_have_files(clinic)
            clinic.require_sound()
            self.require_recovers(clinic)
        return f"{count} limits"

    def damaged_files(self, count):
        """Copies of a film with random damage: none crashes the program, and the films beside them are stored."""
        with open(os.path.join(self.samples, "bitewings2", sorted(os.listdir(os.path.join(self.samples, "bitewings2")))[0]), "rb") as file:
            whole = file.read()
        whole = whole[: 1024 * 64] if len(whole) > 1024 * 1024 else whole
        batch = 500
        stored = 0
        for start in range(0, count, batch):
            folder = os.path.join(self.folder, "damaged")
            shutil.copytree(os.path.join(self.samples, "bitewings4"), os.path.join(folder, "whole"))
            for i in range(min(batch, count - start)):
                with open(os.path.join(folder, f"{start + i}.dcm"), "wb") as file:
                    file.write(self.damaged(whole))
            clinic = self.clinic()
            done = clinic.run("import", folder)
            assert done.returncode in (0, 3), done.stderr[-2000:]
            assert clinic.rows(
                "SELECT count(*) FROM ImageBild_T JOIN Patient_T USING (PatientID) WHERE PersonNr_CH = 'TEST-BITEWINGS4'"
            ) == [(4,)], f"a whole film is missing: {done.stderr[-2000:]}"
            stored += clinic.rows("SELECT count(*) FROM ImageBild_T")[0][0]
            clinic.require_sound()
            clinic.remove()
            shutil.rmtree(folder)
        return f"{count} variants, {stored} images stored"

    def damaged(self, whole):
        data = bytearray(whole)
        kind = self.random.randrange(4)
        if kind == 0:
            return bytes(data[: self.random.randrange(len(data))])
        head = min(len(data), 3000)
        for _ in range(self.random.randrange(1, 12)):
            at = self.random.randrange(132, head)
            if kind == 1:
                data[at] = self.random.randrange(256)
            elif kind == 2:
                data[at : at + 4] = self.random.choice((b"\xff\xff\xff\xff", b"\0\0\0\0", b"\xff\xff\xff\x7f", b"SQ\0\0"))
            else:
                piece = bytes(data[at : at + self.random.randrange(1, 64)])
                data[at:at] = piece * self.random.randrange(1, 20)
        return bytes(data)
