#!/usr/bin/env python3
"""Lists the patients of a clinic with their series.

    python3 patients_and_series.py clinic.db

Cell by cell it can be run in an editor that knows "# %%".
"""
# %% The connection
import sys

import oxclass

database = sys.argv[1] if len(sys.argv) > 1 else "clinic.db"
if database.startswith("-"):
    sys.exit(__doc__)
con = oxclass.CreateObject("ADODB.Connection")
con.Open(f"Provider=SQLite;Data Source={database}")

# %% The patients, by name
patients = con.Execute("SELECT PatientID, PersonNr_CH, LastName_NVC, FirstName_NVC FROM Patient_T "
                       "ORDER BY LastName_NVC, FirstName_NVC, PatientID")


# %% The series of a patient, as objects of the library
def series_of(patient_key):
    """The series of a patient, oldest first."""
    keys = con.Execute("SELECT Series_T.Series_ID FROM Series_T INNER JOIN Study_T "
                       "ON Series_T.Study_ID = Study_T.Study_ID "
                       f"WHERE Study_T.PatientID = {patient_key} ORDER BY SeriesDateTime, Series_T.Series_ID")
    while not keys.EOF:
        series = oxclass.CreateObject("OXClass.cSerie")
        if series.loadSeries(str(keys("Series_ID").Value), con):
            yield series
        keys.MoveNext()


# %% The list
while not patients.EOF:
    print(f"{patients('PersonNr_CH').Value}  {patients('LastName_NVC').Value}, {patients('FirstName_NVC').Value}")
    for series in series_of(patients("PatientID").Value):
        images = oxclass.CreateObject("OXClass.cImages")
        images.LoadAll4Object(con, oxclass.iootSeries, series.ID)
        line = f"    {series.SeriesDateTime:%Y-%m-%d %H:%M}  {len(images):3} images  {series.SeriesDescription}"
        print(line.rstrip())
    patients.MoveNext()

# %% The end
con.Close()
