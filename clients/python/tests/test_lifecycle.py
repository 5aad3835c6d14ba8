"""A series and a card list from capture to removal, compared with what Python's own sqlite3 reads from the file."""
import datetime

import oxclass
from tests.kit import FULL_MOUTH, ClinicTest

PATIENT = {"ID": "PatientID", "PatientID": "PersonNr_CH", "FirstName": "FirstName_NVC", "LastName": "LastName_NVC",
           "Sex": "Sex_CH", "RespDoctor": "RespDoctor"}
SERIES = {"ID": "Series_ID", "instanceUID": "SeriesInstanceUID", "Modality": "Modality",
          "seriesNumber": "seriesNumber", "TemplateID": "template_ID", "studyID": "Study_ID",
          "SeriesDescription": "SeriesDescription", "SeriesDateTime": "SeriesDateTime", "location": "location",
          "SeriesDerived": "Derived_BT"}
IMAGE = {"ID": "ImageBildID", "PatID": "PatientID", "dateTime": "DateCaptured_SD", "URL": "GraphicURL_NVC",
         "HWSourceTxt": "HardwareSourcetxt_NVC", "RootId": "RootId", "ImageType": "ImageType",
         "RespPerson": "Responsible_Person_NVC", "DPIX": "DPIX_INT", "DPIY": "DPIY_INT", "Voltage_kV": "Voltage_INT",
         "Current_mA": "Current_INT", "studyID": "Study_ID", "seriesID": "Series_ID",
         "instanceUID": "SOPInstanceUID_NVC", "FrameNumber": "FrameNumber_INT", "Laterality": "Laterality",
         "AnaRegion": "AnaRegion", "AnaRegionMod": "AnaRegionMod", "sTeeth": "PriStructure", "Approved": "Approved"}


def stored(value):
    """A property's value as the table has it."""
    if isinstance(value, datetime.datetime):
        return value.strftime("%Y-%m-%d %H:%M:%S")
    return int(value) if isinstance(value, bool) else value


class Lifecycle(ClinicTest):
    def assert_same(self, thing, row, columns):
        self.assertEqual({name: stored(getattr(thing, name)) for name in columns},
                         {name: row[column] for name, column in columns.items()})

    def patient(self, text=FULL_MOUTH):
        patient = oxclass.CreateObject("OXClass.cPatient")
        self.assertNotEqual(patient.LoadOnPatientIDorPDBID(self.con, text, 0), 0)
        return patient

    def full_mouth(self):
        """The series of the full mouth with its images, as the library loads them, and the rows of both."""
        row = self.row("SELECT Series_T.* FROM Series_T JOIN Study_T USING (Study_ID) JOIN Patient_T USING (PatientID) "
                       "WHERE PersonNr_CH = ?", FULL_MOUTH)
        series = oxclass.CreateObject("OXClass.cSerie")
        self.assertIs(series.loadSeries(row["SeriesInstanceUID"], self.con), True)
        images = oxclass.CreateObject("OXClass.cImages")
        images.LoadAll4Object(self.con, oxclass.iootSeries, series.ID)
        return series, images, row

    def image_rows(self, series):
        return self.rows("SELECT * FROM ImageBild_T WHERE Series_ID = ? ORDER BY DateCaptured_SD, ImageBildID",
                         series.ID)

    # ---- patients -----------------------------------------------------------------------------------

    def test_every_patient_reads_the_same(self):
        rows = self.rows("SELECT * FROM Patient_T")
        self.assertGreater(len(rows), 10)
        for row in rows:
            patient = self.patient(row["PersonNr_CH"])
            self.assert_same(patient, row, PATIENT)
            self.assertEqual(stored(patient.BirthDate)[:10], row["Birthdate_CH"])

    def test_a_patient_is_changed_and_made(self):
        patient = self.patient()
        patient.LastName, patient.BirthDate = "O'Åkesson 山", datetime.date(1979, 12, 31)
        patient.Save(self.con)
        row = self.row("SELECT * FROM Patient_T WHERE PatientID = ?", patient.ID)
        self.assertEqual((row["LastName_NVC"], row["Birthdate_CH"]), ("O'Åkesson 山", "1979-12-31"))

        made = oxclass.CreateObject("OXClass.cPatient")
        made.PatientID, made.FirstName = "20010203-1234", "Anna"
        made.Save(self.con)
        row = self.row("SELECT * FROM Patient_T WHERE PatientID = ?", made.ID)
        self.assertEqual((row["PersonNr_CH"], row["FirstName_NVC"]), ("20010203-1234", "Anna"))
        self.assertEqual(oxclass.CreateObject("OXClass.cPatient").LoadOnPatientIDorPDBID(self.con, "nobody", 0), 0)

    # ---- a series -----------------------------------------------------------------------------------

    def test_a_series_and_its_images_read_the_same(self):
        series, images, row = self.full_mouth()
        self.assert_same(series, row, SERIES)
        rows = self.image_rows(series)
        self.assertEqual(len(rows), 18)
        self.assertEqual(len(images), 18)
        for image, image_row in zip(images, rows):
            self.assert_same(image, image_row, IMAGE)
            self.assertIs(images[f"K{image.ID}"], image)

    def test_hanging_finds_each_frame_again(self):
        series, images, row = self.full_mouth()
        for image in images:
            image.FrameNumber = 0
        series.TemplateID, series.ImgCount = 0, len(images)
        series.HangSeries(images, self.con)
        self.assertEqual(series.TemplateID, row["template_ID"])
        self.assertEqual([image.FrameNumber for image in images],
                         [image_row["FrameNumber_INT"] for image_row in self.image_rows(series)])
        self.assertEqual(sorted(image.FrameNumber for image in images), list(range(1, 19)))

    def test_what_is_saved_is_in_the_tables(self):
        series, images, _ = self.full_mouth()
        series.SeriesDescription = "Åkes helstatus"
        self.assertIs(series.SaveSeries(True, self.con), True)
        for number, image in enumerate(images, 1):
            image.FrameNumber, image.sTeeth = 19 - number, f"{number},"
            image.Save(self.con)
        row = self.row("SELECT * FROM Series_T WHERE Series_ID = ?", series.ID)
        self.assertEqual(row["SeriesDescription"], "Åkes helstatus")
        self.assert_same(series, row, SERIES)
        rows = self.image_rows(series)
        self.assertEqual([image_row["FrameNumber_INT"] for image_row in rows], list(range(18, 0, -1)))
        for image, image_row in zip(images, rows):
            self.assert_same(image, image_row, IMAGE)

    def test_comments(self):
        _, images, _ = self.full_mouth()
        image, when = images(1), datetime.datetime(2024, 5, 6, 7, 8, 9)
        image.addComment("Karies på 16?", "ÅE", when, False)
        image.Save(self.con)
        row = self.row("SELECT * FROM Comments_T WHERE objectID = ?", image.ID)
        self.assertEqual((row["commentString"], row["signature"], row["dates"]),
                         ("Karies på 16?", "ÅE", "2024-05-06 07:08:09"))
        image.GetComments(self.con)
        self.assertEqual([(comment.str, comment.Signature, comment.DateStamp) for comment in image.Comments],
                         [("Karies på 16?", "ÅE", when)])

    # ---- cards --------------------------------------------------------------------------------------

    def card_list(self):
        cards = oxclass.CreateObject("OXClass.cUniCards")
        self.assertEqual(cards.GetICAndSEList4Patient(self.con, FULL_MOUTH, 0), self.patient().ID)
        return cards

    def test_the_list_has_every_card_and_series(self):
        series, images, row = self.full_mouth()
        series.SeriesName, series.SeriesDateTime = "Helstatus", datetime.datetime(2024, 6, 7)
        series.SaveAsIC(self.con, images)
        card_row = self.row("SELECT * FROM ImageCard_T WHERE PatientID = ?", self.patient().ID)
        first, second = self.card_list()
        self.assertEqual((first.Key, first.CardType), (f"IC{card_row['ImageCardID']}", oxclass.ctImagecard))
        self.assertEqual((first.Imagecard.ICName, stored(first.SortDate)), ("Helstatus", "2024-06-07 00:00:00"))
        self.assertEqual(card_row["ICName"], "Helstatus")
        self.assertIsNone(first.Series)
        self.assertEqual((second.Key, second.CardType), (f"SE{row['Series_ID']}", oxclass.ctseries))
        listed = {name: column for name, column in SERIES.items() if name != "Modality"}  # a list reads no modality
        self.assert_same(second.Series, row, listed)
        self.assertEqual(second.Study.instanceUID,
                         self.row("SELECT * FROM Study_T WHERE Study_ID = ?", row["Study_ID"])["StudyInstanceUID"])

    def test_a_card_opens_with_what_was_placed_on_it(self):
        series, images, _ = self.full_mouth()
        series.SaveAsIC(self.con, images)
        card = self.card_list()(1)
        key = oxclass.ByRef(card.Imagecard.ICID)
        self.assertEqual(card.LoadCardFull(self.con, "", key, card.CardType), 0)
        rows = self.rows("SELECT * FROM ImageAttribute_T WHERE ImageCardID = ? ORDER BY ImageAttributeID", key.value)
        self.assertEqual(len(rows), 18)
        placed = sorted(card.Imagecard.ImagecardAttributes, key=lambda attribute: attribute.ID)
        columns = ("ImageAttributeID", "ImageBildId", "IAFullViewPosX", "IAFullViewPosY")
        self.assertEqual([(one.ID, one.ImageID, one.IAPosX, one.IAPosY) for one in placed],
                         [tuple(row[column] for column in columns) for row in rows])
        self.assertEqual(sorted(image.ID for image in card.colImages), sorted(image.ID for image in images))

    def test_a_series_opens_as_it_hangs(self):
        entry = self.card_list()["SE" + str(self.full_mouth()[0].ID)]
        key = oxclass.ByRef(0)
        self.assertEqual(entry.LoadCardFull(self.con, "", key, entry.CardType), 0)
        self.assertEqual(key.value, entry.Series.ID)
        template = self.row("SELECT * FROM TemplateCard_T WHERE TCDicomId = ?", entry.Series.TemplateID)
        self.assertEqual(entry.Template.TCName, template["TCName"])
        self.assertEqual(len(entry.colImages), 18)
        self.assertEqual(len(entry.Imagecard.ImagecardAttributes), 18)
