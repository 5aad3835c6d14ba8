"""The example, on an imported database."""
import os
import subprocess
import sys

from tests.kit import PACKAGE, SOURCES, ClinicTest

STATEMENT = """
SELECT PersonNr_CH, LastName_NVC, FirstName_NVC, SeriesDateTime, SeriesDescription,
       (SELECT COUNT(*) FROM ImageBild_T WHERE ImageBild_T.Series_ID = Series_T.Series_ID) AS images
FROM Patient_T LEFT JOIN Study_T USING (PatientID) LEFT JOIN Series_T USING (Study_ID)
ORDER BY LastName_NVC, FirstName_NVC, Patient_T.PatientID, SeriesDateTime, Series_ID
"""


class Example(ClinicTest):
    def expected(self):
        lines, last = [], None
        for row in self.rows(STATEMENT):
            patient = f"{row['PersonNr_CH']}  {row['LastName_NVC']}, {row['FirstName_NVC']}"
            if patient != last:
                lines.append(patient)
                last = patient
            if row["SeriesDateTime"]:
                lines.append(f"    {row['SeriesDateTime'][:16]}  {row['images']:3} images  "
                             f"{row['SeriesDescription'] or ''}".rstrip())
        return lines

    def test_it_lists_what_is_there(self):
        self.con.Execute("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC, FirstName_NVC) "
                         "VALUES ('N', 'Å', 'No series')")
        self.con.Execute("DELETE FROM ImageBild_T WHERE ImageBildID = 30")
        done = subprocess.run([sys.executable, str(SOURCES / "examples" / "patients_and_series.py"), str(self.file)],
                              env={**os.environ, "PYTHONPATH": str(PACKAGE.parent), "PYTHONIOENCODING": "utf-8"},
                              capture_output=True, encoding="utf-8", timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(done.stdout.splitlines(), self.expected())
        self.assertGreater(len(self.expected()), 20)
