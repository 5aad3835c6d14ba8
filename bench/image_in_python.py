#!/usr/bin/env python3
"""Compares the Python client with Python's own sqlite3 module, and with bare calls of ctypes.

usage: image_in_python.py DATABASE    (OXCLASS_LIBRARY names the folder of the libraries)

Prints the comparisons as JSON, in the form of the benchmarks' --json. Both sides run in turns.
"""

import ctypes
import json
import pathlib
import random
import sqlite3
import statistics
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "clients" / "python"))

import oxclass  # noqa: E402
from oxclass import _binary as binary  # noqa: E402

COLUMNS = ("Approved, Brightness_INT, Contrast_INT, DateCaptured_SD, ExposureTime_F, GraphicURL_NVC, "
           "HardwareSourcetxt_NVC, ImageBildID, ImageType, Invert_BT, PatientID, Responsible_Person_NVC, "
           "ImageBild_T.RootId, Root_T.Status, Root_T.RootDirectory, AnaRegion, AnaRegionMod, Laterality, PriStructure, "
           "MirrRotStatus, CRC, DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, Study_ID, Series_ID, "
           "SOPInstanceUID_NVC, ImageNumberInSeries, DicomStatus_INT, FrameNumber_INT, SubType_INT, Gamma_INT, "
           "AnatomicRegion, DCMDerived_BT")
SELECT = (f"SELECT {COLUMNS} FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId "
          "WHERE ImageBildID=?")
SAVED = ["ImageType", "GraphicURL_NVC", "Approved", "MirrRotStatus", "DPIY_INT", "DPIX_INT", "PriStructure", "Study_ID",
         "Series_ID", "SOPInstanceUID_NVC", "HardwareSourcetxt_NVC", "ImageNumberInSeries", "DicomStatus_INT", "AnaRegion",
         "AnaRegionMod", "FrameNumber_INT", "Gamma_INT", "Invert_BT", "Contrast_INT", "Brightness_INT", "CRC", "Laterality",
         "PatientID", "Capture_Person_NVC", "Responsible_Person_NVC", "Voltage_INT", "DCMDerived_BT", "SubType_INT",
         "Current_INT", "AnatomicRegion", "ExposureTime_F"]
UPDATE = f"UPDATE ImageBild_T SET {', '.join(name + '=?' for name in SAVED)}, ComputedDPI_INT=? WHERE ImageBildID=?"


def compare(key, what, unit, count, rounds, library, by_hand):
    ours, theirs = [], []
    for turn in range(rounds + 1):
        times = []
        for work in (library, by_hand):
            start = time.perf_counter()
            work()
            times.append(time.perf_counter() - start)
        if turn:  # the first round warms the caches
            ours.append(times[0])
            theirs.append(times[1])
    ratios = [a / b for a, b in zip(ours, theirs)]
    low, _, high = statistics.quantiles(ratios, n=4)
    return {"key": key, "what": what, "unit": unit, "library_us": round(statistics.median(ours) * 1e6 / count, 3),
            "by_hand_us": round(statistics.median(theirs) * 1e6 / count, 3),
            "ratio": round(statistics.median(ratios), 3),
            "noise": round(3 * 1.25 * (high - low) / 1.35 / rounds**0.5, 3)}


def images(database):
    """An image loaded, looked at, changed and saved."""
    keys = random.Random(1).sample(range(1, 1_000_001), 500)
    con = oxclass.CreateObject("ADODB.Connection")
    con.Open(f"Provider=SQLite;Data Source={database}")
    own = sqlite3.connect(database, isolation_level=None)
    own.row_factory = sqlite3.Row
    own.execute("PRAGMA synchronous=NORMAL")
    image = oxclass.CreateObject("OXClass.cImage")

    def by_library():
        con.BeginTrans()
        for key in keys:
            assert image.GetImage(con, key)
            assert image.URL and image.sTeeth
            image.ApprContrast = image.ApprContrast + 1
            image.Save(con)
        con.CommitTrans()

    def by_hand():
        own.execute("BEGIN IMMEDIATE")
        for key in keys:
            row = dict(own.execute(SELECT, (key,)).fetchone())
            assert row["GraphicURL_NVC"] and row["PriStructure"]
            row["Contrast_INT"] = row["Contrast_INT"] + 1
            own.execute(UPDATE, [*(row[name] for name in SAVED), row["DPIX_INT"], key])
        own.execute("COMMIT")

    row = compare("python-image", "an image loaded, changed and saved from Python, beside sqlite3", "each", len(keys), 15,
                  by_library, by_hand)
    own.close()
    con.Close()
    return row


def slot(there, name, prototype):
    """The function of a property's get in the vtable of an object."""
    described = ctypes.c_void_p()
    functions = oxclass._library.library()
    functions.check(functions.OxDescribe(there._reference.pointer, described))
    members = json.loads(functions.take_text(described.value))["members"]
    at = next(i for i, member in enumerate(members) if member["name"] == name and member["kind"] == "get")
    return binary._slot(there._reference.pointer, 7 + at, prototype)


def calls():
    """A property of an object, beside the bare call of its slot."""
    count = 20_000
    patient = oxclass.CreateObject("OXClass.cPatient")
    patient.LastName = "Åkesson"
    pointer = patient._reference.pointer
    number = slot(patient, "ID", ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.POINTER(ctypes.c_int32)))
    text = slot(patient, "LastName", ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.POINTER(ctypes.c_void_p)))
    functions = oxclass._library.library()

    def bare_number():
        for _ in range(count):
            place = ctypes.c_int32()
            number(pointer, ctypes.byref(place))
            place.value

    def bare_text():
        for _ in range(count):
            place = ctypes.c_void_p()
            text(pointer, ctypes.byref(place))
            units = ctypes.string_at(place.value, functions.SysStringByteLen(place.value))
            functions.SysFreeString(place.value)
            units.decode("utf-16-le")

    def number_property():
        for _ in range(count):
            patient.ID

    def text_property():
        for _ in range(count):
            patient.LastName

    yield compare("python-number", "a number read in Python, beside the bare ctypes call", "each", count, 9,
                  number_property, bare_number)
    yield compare("python-text", "a text read in Python, beside the bare ctypes calls", "each", count, 9,
                  text_property, bare_text)


def main():
    print(json.dumps([images(sys.argv[1]), *calls()], indent=2, ensure_ascii=False))


main()
