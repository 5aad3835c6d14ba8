' A series of a patient: built, hung, stored as a card, and found in the patient's list. The connection and the objects of the
' library are passed back into its calls.
Dim con, services, patient, study, series, image, images, teeth, layout, cards, card, kinds, frames, placed
Set con = OpenClinic()
Set services = CreateObject("OXClass.Class1")

Set patient = CreateObject("OXClass.cPatient")
patient.PatientID = "P-1"
patient.LastName = "Ek"
patient.Save con

con.BeginTrans
Set study = CreateObject("OXClass.cStudy")
study.instanceUID = services.GetInstanceUID(con)
study.PatientID = patient.ID
study.dateTime = #3/11/2024 9:15:00 AM#
Check "study saved", True, study.savestudy(False, con)
Set series = CreateObject("OXClass.cSerie")
series.instanceUID = services.GetInstanceUID(con)
series.studyID = study.ID
series.SeriesDateTime = #3/11/2024 9:15:00 AM#
series.Modality = "IO"
series.ImgCount = 2
Check "series saved", True, series.SaveSeries(False, con)
For Each teeth In Array("17,16,15,14,47,46,45,44,", "24,25,26,27,34,35,36,37,")
    Set image = CreateObject("OXClass.cImage")
    image.instanceUID = services.GetInstanceUID(con)
    image.PatID = patient.ID
    image.seriesID = series.ID
    image.dateTime = #3/11/2024 9:15:00 AM#
    image.sTeeth = teeth
    image.AnaRegion = "T-D1213"
    image.URL = "00000001\" & image.instanceUID & ".dcm"
    image.Save con
    Check "image saved", True, image.ID > 0
Next
con.CommitTrans

Set images = CreateObject("OXClass.cImages")
Check "images loaded, the condition left out", 2, images.LoadAll4Object(con, 3, series.ID)
layout = series.HangSeries(images, con)
Check "layout", 8, layout
frames = ""
For Each image In images
    frames = frames & image.FrameNumber & " " & image.sTeeth & ";"
    image.Save con
Next
Check "frames", "1 17,16,15,14,47,46,45,44,;2 24,25,26,27,34,35,36,37,;", frames
Check "series with its layout saved", True, series.SaveSeries(True, con)

series.SaveAsIC con, images
Set cards = CreateObject("OXClass.cUniCards")
Check "whose list", patient.ID, cards.GetICAndSEList4Patient(con, "P-1", patient.ID)
Check "cards", 2, cards.Count
kinds = 0
For Each card In cards
    kinds = kinds + card.CardType
    If Left(card.Key, 2) = "SE" Then Check "the series' own card", "SE" & series.ID, card.Key
Next
Check "kinds of cards", True, kinds > 0

Set card = cards("SE" & series.ID)
card.LoadCardFull con, series.instanceUID, series.ID, card.CardType
Check "the series of the card", series.instanceUID, card.Series.instanceUID
Check "images of the card", 2, card.colImages.Count
Check "an image by its position", 1, card.colImages(1).FrameNumber
con.Close
Done
