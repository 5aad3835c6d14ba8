#!/usr/bin/env python3
"""Saves a patient by a connection of Python's own sqlite3, in a transaction of the program.

    python3 database_of_the_program.py clinic.db IDENTIFIER LAST_NAME FIRST_NAME

The classes accept any object that has the members of a connection that they use. Here it is a Python class around an
open DB-API connection, which the program also uses itself.
"""
import re
import sqlite3
import sys

import oxclass


class Connection:
    """A connection as the classes use it, on an open connection of sqlite3 in autocommit mode."""

    def __init__(self, database):
        self.database = database
        self.CursorLocation = oxclass.adUseClient  # the rows of a Recordset are in memory

    def Execute(self, CommandText):
        text = CommandText.replace("@@IDENTITY", "last_insert_rowid()").replace("DELETE * FROM", "DELETE FROM")
        cursor = self.database.execute(text)
        return Recordset(self, text, cursor) if cursor.description else None

    def BeginTrans(self):
        self.database.execute("BEGIN")
        return 1

    def CommitTrans(self):
        self.database.execute("COMMIT")


class Field:
    def __init__(self, value):
        self.Value = oxclass.Null if value is None else value


class Recordset:
    """The rows of a statement. Those of one table can be changed and deleted, and new ones added."""

    def __init__(self, connection, text, cursor):
        self.ActiveConnection = connection
        self.database = connection.database
        self.names = [column[0].lower() for column in cursor.description]
        self.rows = [list(row) for row in cursor]
        self.table = re.search(r"\bFROM\s+(\w+)", text, re.IGNORECASE)
        self.position = 0
        self.assigned = {}
        self.adding = False

    @property
    def EOF(self):
        return not self.adding and self.position >= len(self.rows)

    @property
    def BOF(self):
        return not self.adding and not self.rows

    @property
    def RecordCount(self):
        return len(self.rows)

    def MoveFirst(self):
        self.position = 0

    def MoveNext(self):
        self.position += 1

    def Fields(self, name):
        place = name if isinstance(name, int) else self.place_of(name)
        return Field(None if self.adding else self.rows[self.position][place])

    def place_of(self, name):
        if name.lower() not in self.names:
            raise oxclass.Error(3265, "Recordset", f"There is no column {name}")
        return self.names.index(name.lower())

    @property
    def Collect(self):
        return self  # rs.Collect(name) = value calls __setitem__

    def __setitem__(self, name, value):
        self.assigned[self.place_of(name)] = self.stored(value)

    @staticmethod
    def stored(value):
        """Returns a value in the form in which the database keeps it."""
        if value is oxclass.Null:
            return None
        if isinstance(value, bool):
            return -1 if value else 0
        return value.strftime("%Y-%m-%d %H:%M:%S") if hasattr(value, "strftime") else value

    def AddNew(self):
        self.adding = True

    def Update(self):
        columns = [self.names[place] for place in self.assigned]
        values = list(self.assigned.values())
        if self.adding:
            marks = ", ".join("?" * len(values))
            cursor = self.database.execute(
                f"INSERT INTO {self.table[1]} ({', '.join(columns)}) VALUES ({marks})", values)
            cursor = self.database.execute(f"SELECT * FROM {self.table[1]} WHERE rowid = ?", (cursor.lastrowid,))
            self.rows.append(list(cursor.fetchone()))
            self.position = len(self.rows) - 1
        else:
            self.database.execute(f"UPDATE {self.table[1]} SET {', '.join(f'{name} = ?' for name in columns)} "
                                  f"WHERE {self.key()} = ?", (*values, self.key_of_row()))
            for place, value in self.assigned.items():
                self.rows[self.position][place] = value
        self.adding, self.assigned = False, {}

    def Delete(self, AffectRecords=1):
        self.database.execute(f"DELETE FROM {self.table[1]} WHERE {self.key()} = ?", (self.key_of_row(),))

    def key(self):
        columns = self.database.execute(f"PRAGMA table_info({self.table[1]})").fetchall()
        return next(column[1] for column in columns if column[5])

    def key_of_row(self):
        return self.rows[self.position][self.place_of(self.key())]

    def Close(self):
        self.rows = []


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    database = sqlite3.connect(sys.argv[1], isolation_level=None)
    connection = Connection(database)
    patient = oxclass.CreateObject("OXClass.cPatient")
    identifier, last_name, first_name = sys.argv[2:]
    database.execute("BEGIN")
    patient.LoadOnPatientIDorPDBID(connection, identifier, 0)  # a known patient keeps what is not changed here
    patient.PatientID, patient.LastName, patient.FirstName = identifier, last_name, first_name
    patient.Save(connection)
    database.execute("COMMIT")
    print(f"{patient.PatientID} is patient {patient.ID}")


if __name__ == "__main__":
    main()
