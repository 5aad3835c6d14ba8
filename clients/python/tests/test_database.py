"""The database layer: connections, recordsets, events, and text boxes."""
import contextlib
import datetime
import gc
import sys
from unittest import mock

import oxclass
from tests.kit import DatabaseTest, open_database, run_python


class Recordsets(DatabaseTest):
    def test_reading(self):
        self.con.Execute("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC, RespDoctor) VALUES ('A', 'Åkesson', 7)")
        self.con.Execute("INSERT INTO Patient_T (PersonNr_CH) VALUES ('B')")
        rs = self.con.Execute("SELECT * FROM Patient_T ORDER BY PersonNr_CH")
        self.assertEqual(rs("LastName_NVC").Value, "Åkesson")
        self.assertEqual(rs["respdoctor"].Value, 7)
        self.assertEqual(rs.Fields("PersonNr_CH").Value, "A")
        self.assertEqual(rs.Fields("PersonNr_CH")(), "A")
        self.assertIn("LastName_NVC", [field.Name for field in rs.Fields])
        self.assertEqual(len(rs.Fields), 16)
        rs.MoveNext()
        self.assertIs(rs("LastName_NVC").Value, oxclass.Null)
        self.assertIs(rs.Collect["LastName_NVC"], oxclass.Null)
        rs.MoveNext()
        self.assertIs(rs.EOF, True)

    def test_editing(self):
        rs = oxclass.CreateObject("ADODB.Recordset")
        rs.Open("SELECT * FROM ImageCard_T", self.con, oxclass.adOpenKeyset, LockType=oxclass.adLockOptimistic)
        rs.AddNew()
        rs("ICName").Value = "Åkes kort"
        rs.Fields("ICDateCreated").Value = datetime.datetime(2024, 3, 11, 9, 15)
        rs.Collect["PatientID"] = 12
        self.assertIs(rs.EditMode, oxclass.adEditAdd)
        rs.Update()
        key = rs("ImageCardID").Value
        rs("ICDescription").Value = oxclass.Null
        rs.Update()
        rs.Close()
        row = self.row("SELECT * FROM ImageCard_T")
        self.assertEqual((row["ImageCardID"], row["ICName"], row["ICDateCreated"], row["PatientID"],
                          row["ICDescription"]), (key, "Åkes kort", "2024-03-11 09:15:00", 12, None))

    def test_rows_affected(self):
        affected = oxclass.ByRef(0)
        self.con.Execute("INSERT INTO Root_T VALUES (7, 'a', 0), (8, 'b', 0)", affected)
        self.assertEqual(affected.value, 2)

    def test_transactions(self):
        count = "SELECT COUNT(*) AS n FROM GlobalList_T WHERE ListText = 'x'"
        for end, rows in ((self.con.RollbackTrans, 0), (self.con.CommitTrans, 1)):
            self.assertEqual(self.con.BeginTrans(), 1)
            self.con.Execute("INSERT INTO GlobalList_T (ListID, ListText) VALUES (1, 'x')")
            end()
            self.assertEqual(self.row(count)["n"], rows)

    def test_what_the_engine_reported_last(self):
        with self.assertRaises(oxclass.Error):
            self.con.Execute("SELECT * FROM Nowhere")
        self.assertEqual([error.Description for error in self.con.Errors], ["no such table: Nowhere"])


class Handler:
    def __init__(self):
        self.seen = []

    def WillExecute(self, source):
        self.seen.append(("will", source))

    def ExecuteComplete(self, source, records, seconds, error):
        self.seen.append(("done", source, records, error and (error.Number, error.Source, error.Description)))
        assert seconds >= 0


class Forbidden(Exception):
    pass


class Forbidding:
    def WillExecute(self, source):
        raise Forbidden(source)


@contextlib.contextmanager
def unraisable():
    """Collects the exceptions that reach sys.unraisablehook while the block runs."""
    caught = []
    with mock.patch.object(sys, "unraisablehook", lambda unraisable: caught.append(unraisable.exc_value)):
        yield caught


class Events(DatabaseTest):
    def setUp(self):
        super().setUp()
        self.handler = Handler()

    def test_each_statement_is_reported(self):
        oxclass.WithEvents(self.con, self.handler)
        gc.collect()
        insert, wrong = "INSERT INTO Root_T VALUES (9, 'a', 0)", "SELECT * FROM Nowhere"
        self.con.Execute(insert)
        self.con.Execute("SELECT 1")
        with self.assertRaises(oxclass.Error):
            self.con.Execute(wrong)
        self.assertEqual(self.handler.seen, [
            ("will", insert), ("done", insert, 1, None), ("will", "SELECT 1"), ("done", "SELECT 1", -1, None),
            ("will", wrong), ("done", wrong, mock.ANY, (-2147217865, "SQLite", "no such table: Nowhere"))])

    def test_after_close_nothing_is_reported(self):
        subscription = oxclass.WithEvents(self.con, self.handler)
        subscription.close()
        subscription.close()
        with oxclass.WithEvents(self.con, self.handler):
            self.con.Execute("SELECT 1")
        self.con.Execute("SELECT 2")
        self.assertEqual([event[1] for event in self.handler.seen], ["SELECT 1", "SELECT 1"])

    def test_a_handler_with_one_of_the_two(self):
        statements = []
        handler = type("Watch", (), {"WillExecute": lambda self, source: statements.append(source)})()
        with oxclass.WithEvents(self.con, handler):
            self.con.Execute("SELECT 1")
        self.assertEqual(statements, ["SELECT 1"])

    def test_the_connection_releases_the_handler_when_it_ends(self):
        other = oxclass.CreateObject("ADODB.Connection")
        handler = Handler()
        subscription = oxclass.WithEvents(other, handler)
        references = sys.getrefcount(handler)
        del other
        subscription.close()
        del subscription
        self.assertEqual(sys.getrefcount(handler), references - 1)

    def test_what_a_handler_raises_before_a_statement_cancels_it(self):
        with oxclass.WithEvents(self.con, Forbidding()):
            with self.assertRaises(Forbidden) as caught:
                self.con.Execute("DELETE FROM TemplateCard_T")
        self.assertEqual(caught.exception.args, ("DELETE FROM TemplateCard_T",))
        self.assertIsInstance(caught.exception.__cause__, oxclass.Error)
        self.assertEqual(caught.exception.__cause__.Number, 3712)
        self.assertGreater(self.row("SELECT COUNT(*) AS n FROM TemplateCard_T")["n"], 0)

    def test_it_reaches_the_caller_through_an_operation(self):
        series = oxclass.CreateObject("OXClass.cSerie")
        with oxclass.WithEvents(self.con, Forbidding()), self.assertRaises(Forbidden) as caught:
            series.loadSeries("1", self.con)
        self.assertTrue(caught.exception.__cause__.Source.startswith("cSerie.loadseries"))
        self.assertIs(series.loadSeries("1", self.con), False)

    def test_where_the_operation_continues_it_is_reported(self):
        boxes = []
        oxclass.OnMsgBox(boxes.append)
        self.addCleanup(oxclass.OnMsgBox, None)
        cards = oxclass.CreateObject("OXClass.cUniCards")
        with oxclass.WithEvents(self.con, Forbidding()), unraisable() as caught:
            self.assertEqual(cards.GetICAndSEList4Patient(self.con, "A", 0), 0)
        self.assertEqual([type(exception) for exception in caught], [Forbidden])
        self.assertEqual(len(boxes), 1)

    def test_what_a_handler_raises_after_a_statement_reaches_the_hook(self):
        handler = type("Wrong", (), {"ExecuteComplete": lambda self, *event: 1 / 0})()
        with oxclass.WithEvents(self.con, handler), unraisable() as caught:
            self.assertEqual(self.con.Execute("SELECT 1 AS n")("n").Value, 1)
        self.assertEqual([type(exception) for exception in caught], [ZeroDivisionError])

    def test_a_handler_can_use_another_connection(self):
        (self.folder / "log.db").touch()
        log = open_database(self.folder / "log.db")
        log.Execute("CREATE TABLE Log (Statement TEXT)")

        class Logging:
            def ExecuteComplete(self, source, records, seconds, error):
                log.Execute("INSERT INTO Log VALUES ('" + source.replace("'", "''") + "')")

        with oxclass.WithEvents(self.con, Logging()):
            self.con.Execute("SELECT 'a'")
        self.assertEqual(log.Execute("SELECT * FROM Log")("Statement").Value, "SELECT 'a'")

    def test_a_cancelled_statement_stays_so_while_other_handlers_work(self):
        other = oxclass.CreateObject("ADODB.Connection")
        other.Open("Provider=SQLite;Data Source=:memory:")

        class Working(Handler):
            def WillExecute(self, source):
                super().WillExecute(other.Execute("SELECT 'worked' AS t")("t").Value)

        working = Working()
        with oxclass.WithEvents(self.con, Forbidding()), oxclass.WithEvents(self.con, working), unraisable() as caught:
            with self.assertRaises(Forbidden):
                self.con.Execute("SELECT 1")
        self.assertEqual((working.seen[:1], caught), ([("will", "worked")], []))

    def test_only_connections_have_events(self):
        with self.assertRaises(oxclass.Error):
            oxclass.WithEvents(oxclass.CreateObject("Collection"), self.handler)
        with self.assertRaises(TypeError):
            oxclass.WithEvents("con", self.handler)
        with self.assertRaises(TypeError):
            oxclass.WithEvents(self.con, object())


class TextBoxes(DatabaseTest):
    def setUp(self):
        super().setUp()
        self.addCleanup(oxclass.OnMsgBox, None)
        self.con.Close()
        self.cards = oxclass.CreateObject("OXClass.cUniCards")

    def test_a_handler_gets_the_text(self):
        texts = []
        oxclass.OnMsgBox(texts.append)
        self.assertEqual(self.cards.GetICAndSEList4Patient(self.con, "A", 0), 0)
        self.assertRegex(texts[0], "cUniCards.GetICAndSEList4Patient.*3709")
        self.assertEqual(len(texts), 1)

    def test_what_it_raises_reaches_the_hook(self):
        oxclass.OnMsgBox(lambda text: 1 / 0)
        with unraisable() as caught:
            self.cards.GetICAndSEList4Patient(self.con, "A", 0)
        self.assertEqual([type(exception) for exception in caught], [ZeroDivisionError])

    def test_none_restores_standard_error(self):
        code = ("import oxclass\n"
                "def box(): oxclass.CreateObject('OXClass.cUniCards').GetICAndSEList4Patient("
                "oxclass.CreateObject('ADODB.Connection'), 'A', 0)\n"
                "oxclass.OnMsgBox(print); box(); oxclass.OnMsgBox(None); box()")
        done = run_python(code)
        self.assertEqual(done.returncode, 0, done.stderr)
        for text in (done.stdout, done.stderr):
            self.assertEqual(text.count("GetICAndSEList4Patient"), 1, text)

    def test_a_handler_must_be_callable(self):
        with self.assertRaises(TypeError):
            oxclass.OnMsgBox("text")
