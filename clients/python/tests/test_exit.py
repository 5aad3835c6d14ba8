"""The end of a program: whatever objects are left, nothing crashes and nothing is printed."""
import unittest

from tests.kit import run_python

MADE = """
import atexit, gc, threading
import oxclass
con = oxclass.CreateObject("ADODB.Connection")
con.Open("Provider=SQLite;Data Source=:memory:")
"""


class Exit(unittest.TestCase):
    def ends_well(self, code, output=""):
        done = run_python(MADE + code)
        self.assertEqual((done.returncode, done.stderr, done.stdout), (0, "", output))

    def test_with_objects_in_globals(self):
        self.ends_well("""
images = oxclass.CreateObject("OXClass.cImages")
con.Execute("CREATE TABLE T (n INTEGER)")
rs = con.Execute("SELECT * FROM T")
field = rs("n")
iterator = iter(rs.Fields)
shared = oxclass.Global("OXClass.cSerie")
""")

    def test_with_cycles(self):
        self.ends_well("""
class Node: pass
gc.disable()
for _ in range(10):
    node = Node()
    node.self, node.patient, node.con = node, oxclass.CreateObject("OXClass.cPatient"), con
""")

    def test_with_an_open_transaction(self):
        self.ends_well("""
con.Execute("CREATE TABLE T (n INTEGER)")
con.BeginTrans()
con.Execute("INSERT INTO T VALUES (1)")
""")

    def test_with_handlers(self):
        self.ends_well("""
class Handler:
    def __init__(self): self.con = con
    def WillExecute(self, source): pass
    def ExecuteComplete(self, source, records, seconds, error): print(source)
subscription = oxclass.WithEvents(con, Handler())
oxclass.WithEvents(con, Handler())
oxclass.OnMsgBox(print)
con.Execute("SELECT 1")
""", "SELECT 1\n" * 2)

    def test_with_threads_that_have_ended(self):
        self.ends_well("""
kept = []
def work():
    own = oxclass.CreateObject("ADODB.Connection")
    own.Open("Provider=SQLite;Data Source=:memory:")
    kept.append((own, own.Execute("SELECT 1 AS n"), oxclass.Global("OXClass.cStudy")))
threads = [threading.Thread(target=work) for _ in range(4)]
for thread in threads: thread.start()
for thread in threads: thread.join()
assert len(kept) == 4
""")

    def test_with_a_thread_that_still_waits(self):
        self.ends_well("""
ready = threading.Event()
def wait():
    patient = oxclass.CreateObject("OXClass.cPatient")
    globals()["theirs"] = patient
    ready.set()
    threading.Event().wait()
threading.Thread(target=wait, daemon=True).start()
ready.wait()
""")

    def test_with_calls_during_shutdown(self):
        self.ends_well("""
class Late:
    def __init__(self): self.patient = oxclass.CreateObject("OXClass.cPatient")
    def __del__(self, Error=oxclass.Error):
        try:
            print(self.patient.LastName)
        except Error as failure:
            print(failure.Number)
late = Late()
early = atexit.register(lambda: print(int(con.State)))
""", "1\n91\n")

    def test_after_a_failure(self):
        done = run_python(MADE + "con.Execute('SELECT * FROM Nowhere')")
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"\noxclass.Error: no such table: Nowhere \(error -2147217865, SQLite\)\n$")
