#!/bin/sh
# Checks the table definitions and the standard layouts with the sqlite3 shell alone:
#   - both files load on an empty database and carry the marks that programs look for
#   - every statement that the library sends compiles on the tables, none of them reads a large table
#     whole, and the reads that promise an order need no sort
#   - the layouts are sound: frames and sequences without gaps, slots on the canvas and apart
#
# Usage: schema_check.sh [directory of the SQL files]. Exit code 0 when all holds, otherwise 1.

schema=${1:-$(dirname "$0")/../schema}
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
db=$work/check.db
failed=0

fail() {
    echo "FAILED: $*" >&2
    failed=1
}

# expect WANTED QUERY: the query's whole output must be the wanted text.
expect() {
    got=$(sqlite3 -bail "$db" "$2" 2>&1)
    [ "$got" = "$1" ] || fail "$2
    wanted: $1
    got:    $got"
}

# plan KIND STATEMENT: compiles the statement and looks at its plan.
#   keyed    no table is read whole
#   ordered  the same, and no sort
#   covered  the same, from an index alone
#   small    the tables may be read whole
plan() {
    if ! got=$(sqlite3 -bail "$db" "EXPLAIN QUERY PLAN $2" 2>&1); then
        fail "$2: $got"
        return
    fi
    case $1 in small) return ;; esac
    case $got in *SCAN*) fail "reads a table whole: $2
$got" ;; esac
    case $1-$got in ordered-*"TEMP B-TREE"*) fail "sorts: $2
$got" ;; esac
    case $1-$got in covered-*"COVERING INDEX"* | keyed-* | ordered-*) ;; *) fail "reads rows: $2
$got" ;; esac
}

for file in sqlite.sql layouts.sql; do
    sqlite3 -bail "$db" "BEGIN" ".read $schema/$file" "COMMIT" || fail "$file does not load"
done
[ $failed = 0 ] || exit 1

expect 1331184460 "PRAGMA application_id"
expect 1 "PRAGMA user_version"
expect 15 "SELECT COUNT(*) FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite%'"
expect ok "PRAGMA integrity_check"

# --- the library's statements --------------------------------------------------------------------

image="ImageBildID, ToothCollectionID, PatientID, DateCaptured_SD, Comments_NVC, StandCollName_NVC,
 ComputedDPI_INT, HardwareSourceId_INT, HardwareSourcetxt_NVC, ImageBild_T.RootId, GraphicURL_NVC, Invert_BT,
 StretchIntens_BT, Rotation_INT, Contrast_INT, Brightness_INT, Histogram_BT, ExposureTime_F, HorizMirror_BT,
 VerticalMirror_BT, CRC, Responsible_Person_NVC, Approved, ImageType, MirrRotStatus, DPIY_INT, DPIX_INT,
 Voltage_INT, Current_INT, Capture_Person_NVC, Pregnant_BT, XRaySource_NVC, PrevXrayDate_DT, Dosage_INT,
 Root_T.Status, Root_T.RootDirectory, Study_ID, Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries,
 DicomStatus_INT ,FrameNumber_INT,AnatomicRegion, DCMDerived_BT, Laterality, AnaRegion, AnaRegionMod,
 PriStructure, SubType_INT, Gamma_INT"
joined="FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId"
captured="ORDER BY DateCaptured_SD, ImageBildID"
slot="TemplateImageId, TemplateID, TAGroupName, TASequence, TARotation, TAFullViewWidth, TAFullViewHeight,
 TAFullViewPosX, TAFullViewPosY,TAPreviewWidth, TAPreviewHeight, TAPreviewPosX, TAPreviewPosY,
 TANumberInTemplate , TAProportions, TAComments, TATGId"
teeth=$(for q in 1 2 3 4 5 6 7 8; do
            for d in 1 2 3 4 5 6 7 8; do
                [ $q -gt 4 ] && [ $d -gt 5 ] || printf ', Tooth%s%s' $q $d
            done
        done)

plan small   "SELECT * FROM Root_T ORDER BY RootID;"
plan keyed   "SELECT * FROM Root_T WHERE RootID=1;"
plan small   "SELECT * FROM Root_T WHERE Status <> 0;"

plan keyed   "Update GlobalList_T Set ListID=1,ListText='a' WHERE GlobalListID=1"
plan keyed   "INSERT INTO GlobalList_T (ListID, ListText) VALUES ( 1, 'a');"
plan keyed   "Delete FROM GlobalList_T WHERE GlobalListID=1"
plan keyed   "SELECT * FROM GlobalList_T WHERE GlobalListID = 1"
plan keyed   "SELECT * FROM GlobalList_T WHERE ListID=1;"
plan keyed   "DELETE FROM globalList_T WHERE ListID = 1;"
plan keyed   "DELETE FROM GlobalList_T WHERE GlobalListID=1 OR GlobalListID=2 OR GlobalListID=3;"

plan keyed   "SELECT * FROM Patient_T WHERE PatientID = 1"
plan keyed   "SELECT * FROM Patient_T WHERE PersonNr_CH = 'A'"
plan keyed   "Select * from Patient_T where (PersonNr_CH) = 'A'"
plan keyed   "Update Patient_T Set
 Firstname_NVC='',LastName_NVC='',Birthdate_CH='',PrevXrayDate_CH='',Address_NVC='',
 TelOne_NVC='',TelTwo_NVC='',TelMobile_NVC
 ='',email_adress='',Comments_NVC='',IDImg='',OtherIDs='',Sex_CH='', RespDoctor=0 Where PersonNr_CH ='A'"
plan keyed   "INSERT INTO Patient_T (PersonNr_CH, Birthdate_CH, Firstname_NVC, LastName_NVC, Sex_CH,
 OtherIDs, RespDoctor, Address_NVC,TelOne_NVC, TelTwo_NVC, TelMobile_NVC, email_adress, Comments_NVC,
 PrevXrayDate_CH, IDImg) VALUES ('A', '', '', '', '', '', 0, '', '', '', '', '', '', '', '' );"
plan covered "SELECT MAX(PatientID) AS Max_ID FROM Patient_T WHERE (PersonNr_CH)='A';"
plan keyed   "SELECT * FROM Patient_T WHERE RespDoctor =1;"

plan keyed   "DELETE FROM Doctor_T WHERE DrID =1;"
plan keyed   "SELECT * FROM Doctor_T WHERE DrID =1"
plan keyed   "SELECT * FROM Doctor_T   WHERE DrGUID ='A';"
plan small   "SELECT * FROM Doctor_T order by DrLastName_nvc, DrFirstname_nvc;"
plan keyed   "DELETE FROM Clinic_T WHERE ClinicID =1;"
plan keyed   "SELECT * FROM Clinic_T WHERE ClinicID =1"
plan small   "SELECT * FROM Clinic_T order by ClinicName;"

plan keyed   "SELECT $image $joined Where ImageBildID = 1;"
plan keyed   "SELECT * FROM ImageBild_T WHERE ImageBildID =1;"
plan keyed   "SELECT * FROM ImageBild_T WHERE SOPInstanceUID_NVC ='1.2';"
plan covered "SELECT MAX(ImageBildID) AS ID FROM ImageBild_T WHERE (GraphicURL_NVC='a' AND PatientID=1);"
plan ordered "SELECT * $joined where PatientID=1 $captured"
plan ordered "SELECT * $joined where Series_ID=1 $captured"
plan keyed   "SELECT * $joined WHERE ImageBildID=1 OR ImageBildID=2 OR ImageBildID=3  $captured"
plan keyed   "UPDATE ImageBild_T SET ImageType = 1, GraphicURL_NVC = 'a', Approved = 0, MirrRotStatus = 1,
 DPIY_INT= 0, DPIX_INT= 0, ComputedDPI_INT= 0, PriStructure='',Study_ID=1, Series_ID=1,
 SOPInstanceUID_NVC='', HardwareSourcetxt_NVC='', ImageNumberInSeries=1, dicomStatus_INT=0, AnaRegion='',
 AnaRegionMod='', FrameNumber_INT=0, Gamma_INT=0, Invert_BT=0, Contrast_INT=0, Brightness_INT=0, CRC='',
 Laterality='', PatientID=1, Capture_Person_NVC='', Responsible_Person_NVC='', Voltage_INT= 0, DCMDerived_BT=
 0, SubType_INT= 0, Current_INT= 0, AnatomicRegion= '', ExposureTime_F = 0 WHERE ImageBildID = 1;"
plan keyed   "INSERT INTO ImageBild_T (ToothCollectionID, PatientID, DateCaptured_SD, Comments_NVC,
 StandCollName_NVC, ComputedDPI_INT, HardwareSourceId_INT, HardwareSourcetxt_NVC, RootId, GraphicURL_NVC,
 Invert_BT, StretchIntens_BT, Rotation_INT, Contrast_INT, Brightness_INT, Histogram_BT, ExposureTime_F,
 HorizMirror_BT, VerticalMirror_BT, Responsible_Person_NVC, Approved, MirrRotStatus, ImageType, CRC,
 DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, Pregnant_BT, XRaySource_NVC,
 PrevXrayDate_DT, Dosage_INT, Study_ID, Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries, DicomStatus_INT
 ,FrameNumber_INT ,AnatomicRegion, DCMDerived_BT, Laterality, AnaRegion, AnaRegionMod, PriStructure,
 SubType_INT, Gamma_INT) VALUES (0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);"

plan keyed   "INSERT INTO Comments_T ( dates, signature, tabelID, objectID,commentString ) VALUES ('', '', 1,
 1, '')"
plan ordered "SELECT Comments_T.* From Comments_T Where (((Comments_T.tabelID)=1) AND
 ((Comments_T.objectID)=1)) ORDER BY Comments_T.dates ASC;"
plan keyed   "DELETE FROM Comments_T where CommentString = 'a' and objectID = 1"

plan keyed   "SELECT * FROM Study_T   WHERE StudyInstanceUID ='1.2';"
plan keyed   "SELECT * FROM study_T WHERE study_id =1;"
plan keyed   "select * from Study_T where Study_T.Study_ID=1"
plan keyed   "SELECT * FROM Series_T   WHERE seriesInstanceUID ='1.2';"
plan keyed   "SELECT * FROM Series_T WHERE series_id =1;"
plan keyed   "select * from Series_T where Series_T.Series_ID=1"

plan keyed   "SELECT * FROM TemplateCard_T WHERE TCDicomId = 1"
plan keyed   "SELECT * FROM TemplateCard_T WHERE TemplateID = 1"
plan keyed   "SELECT MAX(TemplateID) AS Max_DicomID FROM TemplateCard_T WHERE TCName='a';"
plan keyed   "INSERT INTO TemplateCard_T (TCName, TCDate, TCComments, TCFullViewWidth, TCFullViewHeight,
 TCMaximized, TCCheckSum,TCDicomId, TCForcedImageType) VALUES ('', '', '', 1, 1, 0, 0, 1000, -1);"
plan keyed   "UPDATE TemplateCard_T SET TCName = '', TCComments = '', TCFullViewWidth = 1, TCFullViewHeight =
 1, TCMaximized = 0, TCChecksum = 0, TCDicomID = 1, TCForcedImageType = 0 WHERE TemplateId = 1;"
plan ordered "SELECT $slot FROM TemplateAttribute_T WHERE TemplateID = 1 ORDER BY TANumberInTemplate"
plan keyed   "SELECT Max(TemplateImageID) AS Max_ID FROM TemplateAttribute_T WHERE TemplateId = 1 AND
 TASequence = 1;"
plan keyed   "INSERT INTO TemplateAttribute_T (TemplateId, TAFullViewWidth, TAFullViewHeight, TAFullViewPosX,
 TAFullViewPosY, TARotation, TASequence, TAComments, TAGroupname, TANumberInTemplate, TAProportions, TATGid,
 TAImagePath) VALUES (1, 1, 1, 0, 0, 0, 1, '', '', 1, 0.7, 0, '');"
plan keyed   "UPDATE TemplateAttribute_T SET TemplateID = 1, TAFullviewWidth = 1, TAFullViewHeight = 1,
 TAFullViewPosX = 0, TAFullViewPosY = 0, TARotation = 0, TASequence = 1, TAGroupName = '', TAComments = '',
 TAProportions = 0.7, TANumberInTemplate = 1, TATGId =1, TAImagePath ='' WHERE TemplateImageId = 1;"

plan keyed   "SELECT * FROM ImageCard_T WHERE ImageCardID = 1;"
plan covered "SELECT MAX(ImageCardId) FROM ImageCard_T WHERE PatientId = 1;"
plan keyed   "INSERT INTO ImageCard_T (PatientId, ICName, ICDateCreated, ICLastUpdate, ICDescription,
 ICFullViewWidth, ICFullViewHeight, ICMaximized) VALUES (1, '', '', '', '', 1, 1, 0);"
plan keyed   "UPDATE ImageCard_T SET PatientID = 1, ICName = '', ICLastUpdate = '', ICDescription = '',
 ICFullViewWidth = 1, ICFullViewHeight = 1, ICMaximized = 0 WHERE ImageCardId = 1;"
plan keyed   "SELECT * FROM ImageAttribute_T WHERE ImageCardID = 1;"
plan covered "SELECT MAX(ImageAttributeId) FROM ImageAttribute_T WHERE ((ImageCardId = 1) AND (ImageBildId =
 1) AND (IASequence = 1));"
plan keyed   "INSERT INTO ImageAttribute_T (ImageCardId, ImageBildId, IAFullViewWidth, IAFullViewHeight,
 IAFullViewPosX, IAFullViewPosY, IAContrast, IABrightness, IAInvert, IARotation, IASharpen, IASoften, IAZoom,
 IAGamma, IAHorizontalMirror, IAVerticalMirror, IAHistoEqualize, IAStretchIntensity, IAHistogram, IASequence,
 IAComments, IAMirrRotStatus , IAColorized, IAAttCorr) VALUES (1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
 0, 0, 0, 0, 1, '', 1, 0, 0);"
plan keyed   "UPDATE ImageAttribute_T SET ImageCardID = 1, ImageBildID = 1, IAFullviewWidth = 1,
 IAFullViewHeight = 1, IAFullViewPosX = 0, IAFullViewPosY = 0, IASequence = 1, IAMirrRotStatus = 1,
 IAComments = '' WHERE ImageAttributeId = 1;"
plan keyed   "DELETE FROM ImageAttribute_T WHERE ImageattributeID = 1;"
plan keyed   "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=1;"
plan ordered "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=1 ORDER BY SequenceNo;"
plan keyed   "DELETE FROM ImageManipulation_T WHERE ImageAttributeID=1;"
plan keyed   "INSERT INTO ImageManipulation_T (SequenceNo, Type, LongParameter, StringParameter,
 ImageAttributeID) VALUES('1', '6', '90', '', '1');"

plan keyed   "SELECT Patient_T.PatientID as PatientID,  Patient_T.*, ImageCard_T.* FROM Patient_T INNER JOIN
 ImageCard_T ON Patient_T.PatientId=ImageCard_T.PatientId WHERE PersonNr_CH='A' ORDER BY ICDateCreated desc "
plan keyed   "SELECT Patient_T.* FROM Patient_T WHERE PersonNr_CH='A'"
plan keyed   "SELECT Series_T.Template_ID, Series_T.SeriesDescription, Series_T.SeriesDateTime,
 Series_T.Derived_BT, Series_T.NumberOfImages, Series_T.Series_ID,
 Series_T.SeriesNumber,Series_T.SeriesInstanceUID,Series_T.OrgServerID ,
 Study_T.StudyInstanceUID,Study_T.ReferDrName, Study_T.PhysOfRecord, Study_T.StudyDesc ,
 Study_T.StudyDateTime, Study_T.StudyID, Study_T.Study_ID, Study_T.PatientID, Study_T.Accessionnumber,
 Count(Series_T.Series_ID) AS ImageCount, Max(ImageBild_T.ImageBildID) AS ZeroImages,
 Sum(ImageBild_T.Approved) AS ApprovedSum, Sum(ImageBild_T.DicomStatus_INT) AS DicomStatusSum,
 series_T.ICShortcut FROM (Study_T INNER JOIN Series_T ON Study_T.Study_ID = Series_T.study_id) LEFT JOIN
 ImageBild_T ON (Series_T.Series_ID = ImageBild_T.Series_ID and ImageBild_T.GraphicURL_NVC <> '') Where
 Study_T.patientid =1 GROUP BY Series_T.Series_ID, Study_T.StudyInstanceUID, Study_T.StudyDateTime,
 Study_T.StudyID,Study_T.StudyDesc, Study_T.ReferDrName, Series_T.SeriesInstanceUID, Series_T.SeriesNumber,
 Study_T.Study_ID, Study_T.PatientID,  Study_T.PhysOfRecord,Study_T.Accessionnumber,
 Series_T.SeriesNumber,series_T.ICShortcut, Series_T.NumberOfImages, Series_T.OrgServerID,
 Series_T.SeriesDescription, Series_T.SeriesDateTime, Series_T.Derived_BT,Series_T.Template_ID ORDER BY
 Study_T.StudyDateTime DESC, Series_T.Series_ID DESC"

plan keyed   "SELECT * FROM StandardGroupName Where TGId = 1;"
plan keyed   "UPDATE StandardGroupName SET Name='', Comments='', OrderNo=0, TGId=1, ADType =0, ADLaterality
 ='', ADAnaRegion ='', ADAnaRegionMod ='', ADPriStructure ='' WHERE StandardNameID=1;"
plan keyed   "INSERT INTO StandardGroupName (Name, Comments, OrderNo, TGId, ADType, ADLaterality, ADAnaRegion,
 ADAnaRegionMod, ADPriStructure$teeth)
 VALUES ('', '', 0, 0, 0, '', '', '', ''$(echo "$teeth" | sed 's/Tooth[0-9]*/0/g'));"
plan keyed   "SELECT MAX(StandardNameID) AS ID FROM StandardGroupName WHERE Name='a';"
plan keyed   "DELETE FROM StandardGroupName WHERE StandardNameID=1;"
plan keyed   "DELETE FROM StandardGroupName WHERE TGId=1;"

# The columns that are written one by one through an updatable row.
plan small   "SELECT DrContactInfo_NVC, DrFirstName_NVC, DrLastName_NVC, DrName_NVC, DrPrefix_NVC, DrType_INT,
 DrEMail, drGUID, DrLogin FROM Doctor_T"
plan small   "SELECT ClinicName, OrgNumber, ZipCode, StreetAdress, City, Telephone, Remarks FROM Clinic_T"
plan small   "SELECT accessionNumber, StudyDateTime, Studydesc, StudyInstanceUID, PhysOfRecord, referDrName,
 studyID, PatientID FROM Study_T"
plan small   "SELECT SeriesInstanceUID, Modality, template_ID, Study_ID, NumberOfImages, orgServerID,
 SeriesDescription, SeriesDateTime, Derived_BT, location, seriesNumber FROM Series_T"

# --- what a column must do besides holding its value ------------------------------------------------

expect "1" "BEGIN; INSERT INTO Patient_T (PersonNr_CH) VALUES ('A1B');
 SELECT COUNT(*) FROM Patient_T WHERE PersonNr_CH = 'a1b'; ROLLBACK"
expect "0.85 text" "BEGIN; INSERT INTO TemplateAttribute_T (TAProportions) VALUES (0.85);
 SELECT TAProportions || ' ' || typeof(TAProportions) FROM TemplateAttribute_T WHERE TemplateID IS NULL;
 ROLLBACK"
expect "2 integer" "BEGIN; INSERT INTO ImageManipulation_T (SequenceNo) VALUES ('2');
 SELECT SequenceNo || ' ' || typeof(SequenceNo) FROM ImageManipulation_T; ROLLBACK"
expect "2024-01-31 09:05:07 text" "BEGIN;
 INSERT INTO ImageBild_T (DateCaptured_SD) VALUES ('2024-01-31 09:05:07');
 SELECT DateCaptured_SD || ' ' || typeof(DateCaptured_SD) FROM ImageBild_T; ROLLBACK"
expect "" "SELECT m.name, c.name FROM sqlite_schema m, pragma_table_info(m.name) c
 WHERE m.type = 'table' AND m.name NOT LIKE 'sqlite%' AND c.\"notnull\""

# --- the layouts -------------------------------------------------------------------------------------

expect "1:1 2:1 5:20 6:18 7:4 8:2 9:1 10:3 11:5 12:9 14:1" \
    "SELECT group_concat(TCDicomId || ':' || n, ' ') FROM (SELECT TCDicomId, COUNT(*) AS n FROM TemplateCard_T
     JOIN TemplateAttribute_T USING (TemplateID) GROUP BY TCDicomId ORDER BY TCDicomId)"
# Frames and sequences run from 1 without a gap.
for column in TANumberInTemplate TASequence; do
    expect "" "SELECT TemplateID FROM TemplateAttribute_T GROUP BY TemplateID
     HAVING MIN($column) <> 1 OR MAX($column) <> COUNT(*) OR COUNT(DISTINCT $column) <> COUNT(*)"
done
# Slots lie on the canvas.
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T WHERE TAFullViewPosX < 0 OR TAFullViewPosY < 0
 OR TAFullViewWidth <= 0 OR TAFullViewHeight <= 0
 OR TAFullViewPosX + TAFullViewWidth > 1 OR TAFullViewPosY + TAFullViewHeight > 1"
# Slots of a layout stand apart, by 6 pixels of the canvas at least.
expect "" "SELECT a.TemplateImageId, b.TemplateImageId FROM TemplateAttribute_T a JOIN TemplateAttribute_T b
 ON a.TemplateID = b.TemplateID AND a.TemplateImageId < b.TemplateImageId
 JOIN TemplateCard_T t ON t.TemplateID = a.TemplateID
 WHERE a.TAFullViewPosX < b.TAFullViewPosX + b.TAFullViewWidth + 5.99 / TCFullViewWidth
   AND b.TAFullViewPosX < a.TAFullViewPosX + a.TAFullViewWidth + 5.99 / TCFullViewWidth
   AND a.TAFullViewPosY < b.TAFullViewPosY + b.TAFullViewHeight + 5.99 / TCFullViewHeight
   AND b.TAFullViewPosY < a.TAFullViewPosY + a.TAFullViewHeight + 5.99 / TCFullViewHeight"
# The stored proportion is the slot's height by width in pixels.
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T JOIN TemplateCard_T USING (TemplateID)
 WHERE abs(TAProportions - TAFullViewHeight * TCFullViewHeight / (TAFullViewWidth * TCFullViewWidth)) >
 0.0001"
# The right side of the patient lies left of the left side, the upper jaw above the lower.
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T JOIN StandardGroupName ON TGId = TATGId
 WHERE ADType = 0 AND CASE ADLaterality WHEN 'R' THEN TAFullViewPosX + TAFullViewWidth > 0.5
  WHEN 'L' THEN TAFullViewPosX < 0.5 ELSE abs(TAFullViewPosX + TAFullViewWidth / 2 - 0.5) > 0.001 END"
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T JOIN StandardGroupName ON TGId = TATGId
 WHERE ADAnaRegion = 'T-11170' AND TAFullViewPosY + TAFullViewHeight > 0.5
    OR ADAnaRegion = 'T-11180' AND TAFullViewPosY < 0.5"
# Every slot names its group rightly, every group is used, and no slot has the number of a group.
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T
 LEFT JOIN StandardGroupName ON TGId = TATGId WHERE Name IS NOT TAGroupName"
expect "" "SELECT TGId FROM StandardGroupName WHERE TGId NOT IN (SELECT TATGId FROM TemplateAttribute_T)"
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T
 WHERE TemplateImageId IN (SELECT TGId FROM StandardGroupName) OR TemplateImageId > 1000"
# Tooth strings consist of two digits and a comma each.
expect "" "SELECT Name FROM StandardGroupName WHERE length(ADPriStructure) % 3 <> 0
 OR (ADType = 0) <> (ADPriStructure GLOB '[1-8][1-8],*')"

[ $failed = 0 ] && echo "schema and layouts hold"
exit $failed
