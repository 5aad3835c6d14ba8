-- Tables of the dental imaging database, for MariaDB 10.11 and newer.
--
-- Run in an empty database, for example by the command line client:
--
--     mariadb --execute "CREATE DATABASE clinic CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin"
--     mariadb clinic < schema/mariadb.sql
--
-- The library never creates or changes a table: it finds these and sends its statements. docs/tables.md describes each
-- column.
--
-- Names of tables are in lower case, so that they are found on every server whatever its lower_case_table_names is: the
-- library writes them so. Names of columns have no case.
--
-- Texts are compared and sorted by their characters' numbers, and blanks at their end count (utf8mb4_nopad_bin), as by the
-- other engines. Four columns are compared without regard to case by utf8mb4_uca1400_nopad_as_ci, which differs from
-- the other engines: all letters lose their case and not only A to Z ("Å" equals "å", and never "a"); characters that
-- differ in their form only are equal ("²" and "2", "ß" and "ss"); control characters are ignored; letters with
-- diacritics are sorted beside the letters without.
--
-- All columns but the keys take NULL, and no reference between tables is enforced: rows are
-- written and removed one table at a time, and every reader accepts a missing parent row.
-- An index is defined only if a statement of the library would scan a large table without it.

-- Marks the database as one of this system and stores the version of its tables, so that a program can reject a foreign
-- or a newer database. The last statement of this file marks it. Writes is the number of write transactions of the
-- program; updated first in each, so that they run one after the other, and in a cluster conflict.
CREATE TABLE IF NOT EXISTS schemaversion_t (
    Application varchar(16) PRIMARY KEY,
    Version int,
    Writes bigint NOT NULL DEFAULT 0
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Storage roots: the directories that hold the image files. One row has a Status other than 0,
-- the active root that takes new files. Few rows; the whole table is read.
CREATE TABLE IF NOT EXISTS root_t (
    RootID int AUTO_INCREMENT PRIMARY KEY,
    RootDirectory varchar(255),
    Status int
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Settings and short lists of texts. The rows of one ListID are a list; a setting is a list of one row.
CREATE TABLE IF NOT EXISTS globallist_t (
    GlobalListID int AUTO_INCREMENT PRIMARY KEY,
    ListID int,
    ListText longtext
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Loading or deleting one list. Returns the rows of a list in the order of their insertion.
CREATE INDEX IF NOT EXISTS GlobalList_by_ListID ON globallist_t (ListID);

-- Patients. The identifier that people know is PersonNr_CH, stored in upper case and compared
-- without regard to case. Several rows of one PersonNr_CH are possible.
CREATE TABLE IF NOT EXISTS patient_t (
    PatientID int AUTO_INCREMENT PRIMARY KEY,
    PersonNr_CH varchar(64) COLLATE utf8mb4_uca1400_nopad_as_ci,
    FirstName_NVC varchar(128),
    LastName_NVC varchar(128),
    Birthdate_CH varchar(10),
    Sex_CH varchar(16),
    Address_NVC varchar(255),
    TelOne_NVC varchar(64),
    TelTwo_NVC varchar(64),
    TelMobile_NVC varchar(64),
    Email_adress varchar(255),
    Comments_NVC longtext,
    IDImg varchar(255),
    OtherIDs varchar(255),
    RespDoctor int,
    PrevXrayDate_CH varchar(10)
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Loading, saving and the card list of a patient by the text identifier, and the key of a new row.
CREATE INDEX IF NOT EXISTS Patient_by_PersonNr ON patient_t (PersonNr_CH);

-- Counting the patients of a doctor.
CREATE INDEX IF NOT EXISTS Patient_by_RespDoctor ON patient_t (RespDoctor);

-- Doctors. Names sort for display without regard to case. Few rows, the list reads them all.
CREATE TABLE IF NOT EXISTS doctor_t (
    drID int AUTO_INCREMENT PRIMARY KEY,
    DrContactInfo_NVC varchar(255),
    DrFirstName_NVC varchar(60) COLLATE utf8mb4_uca1400_nopad_as_ci,
    DrLastName_NVC varchar(60) COLLATE utf8mb4_uca1400_nopad_as_ci,
    DrName_NVC varchar(30),
    DrPrefix_NVC varchar(20),
    DrType_INT int,
    DrEMail varchar(255),
    drGUID varchar(38),
    DrLogin varchar(255)
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Loading a doctor by GUID.
CREATE INDEX IF NOT EXISTS Doctor_by_GUID ON doctor_t (drGUID);

-- Clinics. The row named __HQ is the head office. Names sort for display without regard to case.
-- Few rows, the list reads them all.
CREATE TABLE IF NOT EXISTS clinic_t (
    ClinicID int AUTO_INCREMENT PRIMARY KEY,
    ClinicName varchar(50) COLLATE utf8mb4_uca1400_nopad_as_ci,
    OrgNumber varchar(50),
    ZipCode varchar(50),
    StreetAdress varchar(50),
    City varchar(50),
    Telephone varchar(50),
    Remarks varchar(50)
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Images, one row a stored image. The largest table: every index here costs each save.
CREATE TABLE IF NOT EXISTS imagebild_t (
    ImageBildID int AUTO_INCREMENT PRIMARY KEY,
    ToothCollectionID int,
    PatientID int,
    DateCaptured_SD datetime,
    Comments_NVC longtext,
    StandCollName_NVC varchar(255),
    ComputedDPI_INT int,
    HardwareSourceId_INT int,
    HardwareSourcetxt_NVC varchar(255),
    RootId int,
    GraphicURL_NVC varchar(512),
    Invert_BT int,
    StretchIntens_BT int,
    Rotation_INT int,
    Contrast_INT int,
    Brightness_INT int,
    Histogram_BT int,
    ExposureTime_F double,
    HorizMirror_BT int,
    VerticalMirror_BT int,
    Responsible_Person_NVC varchar(255),
    Approved int,
    MirrRotStatus int,
    ImageType int,
    CRC varchar(128),
    DPIY_INT int,
    DPIX_INT int,
    Voltage_INT int,
    Current_INT int,
    Capture_Person_NVC varchar(255),
    Pregnant_BT int,
    XRaySource_NVC varchar(255),
    PrevXrayDate_DT datetime,
    Dosage_INT int,
    Study_ID int,
    Series_ID int,
    SOPInstanceUID_NVC varchar(64),
    ImageNumberInSeries int,
    DicomStatus_INT int,
    FrameNumber_INT int,
    AnatomicRegion varchar(255),
    DCMDerived_BT int,
    Laterality varchar(16),
    AnaRegion varchar(64),
    AnaRegionMod varchar(64),
    PriStructure varchar(255),
    SubType_INT int,
    Gamma_INT int
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- All images of a patient in the order of capture, without a sort.
CREATE INDEX IF NOT EXISTS ImageBild_by_Patient ON imagebild_t (PatientID, DateCaptured_SD);

-- All images of a series in the order of capture, without a sort, and the sums of the card list.
CREATE INDEX IF NOT EXISTS ImageBild_by_Series ON imagebild_t (Series_ID, DateCaptured_SD);

-- The key of an image just inserted, read back by patient and file.
CREATE INDEX IF NOT EXISTS ImageBild_by_File ON imagebild_t (PatientID, GraphicURL_NVC);

-- Finding an image that is imported a second time.
CREATE INDEX IF NOT EXISTS ImageBild_by_SOPInstanceUID ON imagebild_t (SOPInstanceUID_NVC);

-- Signed, dated comments. tabelID names the kind of owner (1 an image), objectID its key.
CREATE TABLE IF NOT EXISTS comments_t (
    CommentID int AUTO_INCREMENT PRIMARY KEY,
    dates datetime,
    signature varchar(150),
    tabelID int,
    objectID int,
    commentString varchar(150)
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- The comments of an image, oldest first, without a sort, and the removal of a deletion mark.
CREATE INDEX IF NOT EXISTS Comments_by_Object ON comments_t (objectID, tabelID, dates);

-- Studies. Study_ID is the key of the row, studyID the study identifier of DICOM. A study that is
-- saved without a patient gets PatientID 0, so that it can be loaded again.
CREATE TABLE IF NOT EXISTS study_t (
    Study_ID int AUTO_INCREMENT PRIMARY KEY,
    StudyInstanceUID varchar(64),
    PatientID int DEFAULT 0,
    accessionNumber varchar(64),
    StudyDateTime datetime,
    Studydesc varchar(64),
    referDrName varchar(255),
    studyID varchar(16),
    PhysOfRecord varchar(510)
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Loading and merging a study by UID.
CREATE INDEX IF NOT EXISTS Study_by_InstanceUID ON study_t (StudyInstanceUID);

-- The studies of a patient, for the card list.
CREATE INDEX IF NOT EXISTS Study_by_Patient ON study_t (PatientID);

-- Series of a study. template_ID holds the TCDicomId of a template, not its key.
CREATE TABLE IF NOT EXISTS series_t (
    Series_ID int AUTO_INCREMENT PRIMARY KEY,
    SeriesInstanceUID varchar(64),
    Modality varchar(16),
    seriesNumber varchar(16),
    template_ID int,
    Study_ID int,
    orgServerID int,
    SeriesDescription varchar(64),
    SeriesDateTime datetime,
    Derived_BT int,
    location int,
    NumberOfImages int,
    ICShortcut int
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Loading and merging a series by UID.
CREATE INDEX IF NOT EXISTS Series_by_InstanceUID ON series_t (SeriesInstanceUID);

-- The series of a study, for the card list.
CREATE INDEX IF NOT EXISTS Series_by_Study ON series_t (Study_ID);

-- Templates: named page layouts. The canvas is counted in pixels. TCMaximized stores the hidden flag.
CREATE TABLE IF NOT EXISTS templatecard_t (
    TemplateID int AUTO_INCREMENT PRIMARY KEY,
    TCName varchar(255),
    TCDate datetime,
    TCComments longtext,
    TCFullViewWidth double,
    TCFullViewHeight double,
    TCPreviewWidth double,
    TCPreviewHeight double,
    TCMaximized int,
    TCChecksum int,
    TCDicomId int,
    TCForcedImageType int
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Loading a template by the number that series carry.
CREATE INDEX IF NOT EXISTS TemplateCard_by_DicomId ON templatecard_t (TCDicomId);

-- The key of a new template, read back by its name.
CREATE INDEX IF NOT EXISTS TemplateCard_by_Name ON templatecard_t (TCName);

-- Slots of a template, one row a place for an image. Places and sizes are fractions of the canvas,
-- counted from the top left. TAProportions is a text, as older rows hold a decimal comma.
CREATE TABLE IF NOT EXISTS templateattribute_t (
    TemplateImageId int AUTO_INCREMENT PRIMARY KEY,
    TemplateID int,
    TAGroupName varchar(255),
    TASequence int,
    TARotation int,
    TAFullViewWidth double,
    TAFullViewHeight double,
    TAFullViewPosX double,
    TAFullViewPosY double,
    TAPreviewWidth double,
    TAPreviewHeight double,
    TAPreviewPosX double,
    TAPreviewPosY double,
    TANumberInTemplate int,
    TAProportions varchar(16),
    TAComments longtext,
    TATGId int,
    TAImagePath varchar(512)
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- The slots of a template in the order of their numbers, without a sort, and the key of a new slot.
CREATE INDEX IF NOT EXISTS TemplateAttribute_by_Template ON templateattribute_t (TemplateID, TANumberInTemplate);

-- Image cards: pages that a user composed from images of one patient.
CREATE TABLE IF NOT EXISTS imagecard_t (
    ImageCardID int AUTO_INCREMENT PRIMARY KEY,
    PatientID int,
    ICName varchar(255),
    ICDateCreated datetime,
    ICLastUpdate datetime,
    ICDescription longtext,
    ICFullViewWidth double,
    ICFullViewHeight double,
    ICPreviewWidth double,
    ICPreviewHeight double,
    ICMaximized int
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- The cards of a patient, for the card list, and the key of a card just inserted.
CREATE INDEX IF NOT EXISTS ImageCard_by_Patient ON imagecard_t (PatientID);

-- Placed images of a card, on the scale of the template slots. The columns from IAContrast to
-- IAHistogram, IAColorized and IAAttCorr are written 0 and never read.
CREATE TABLE IF NOT EXISTS imageattribute_t (
    ImageAttributeID int AUTO_INCREMENT PRIMARY KEY,
    ImageCardID int,
    ImageBildId int,
    IAFullViewWidth double,
    IAFullViewHeight double,
    IAFullViewPosX double,
    IAFullViewPosY double,
    IAContrast int,
    IABrightness int,
    IAInvert int,
    IARotation int,
    IASharpen int,
    IASoften int,
    IAZoom int,
    IAGamma int,
    IAHorizontalMirror int,
    IAVerticalMirror int,
    IAHistoEqualize int,
    IAStretchIntensity int,
    IAHistogram int,
    IASequence int,
    IAComments longtext,
    IAMirrRotStatus int,
    IAColorized int,
    IAAttCorr int
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- The placed images of a card, in the order of the card, and the key of a new one.
CREATE INDEX IF NOT EXISTS ImageAttribute_by_Card ON imageattribute_t (ImageCardID, IASequence, ImageBildId);

-- Recorded manipulations of a placed image, numbered from 1 within it.
CREATE TABLE IF NOT EXISTS imagemanipulation_t (
    ImageManipulationID int AUTO_INCREMENT PRIMARY KEY,
    ImageAttributeID int,
    SequenceNo int,
    Type int,
    LongParameter int,
    StringParameter longtext
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- The manipulations of a placed image in their order, without a sort.
CREATE INDEX IF NOT EXISTS ImageManipulation_by_Attribute ON imagemanipulation_t (ImageAttributeID, SequenceNo);

-- Anatomic groups: what an image or a slot shows. StandardNameID is the key of the row, TGId the
-- number of the group. ADPriStructure lists the teeth of a group; the tooth columns are always 0.
CREATE TABLE IF NOT EXISTS standardgroupname (
    StandardNameID int AUTO_INCREMENT PRIMARY KEY,
    Name varchar(255),
    Comments longtext,
    OrderNo int,
    TGId int,
    ADType int,
    ADLaterality varchar(16),
    ADAnaRegion varchar(64),
    ADAnaRegionMod varchar(64),
    ADPriStructure varchar(255),
    Tooth11 int DEFAULT 0, Tooth12 int DEFAULT 0, Tooth13 int DEFAULT 0,
    Tooth14 int DEFAULT 0, Tooth15 int DEFAULT 0, Tooth16 int DEFAULT 0,
    Tooth17 int DEFAULT 0, Tooth18 int DEFAULT 0,
    Tooth21 int DEFAULT 0, Tooth22 int DEFAULT 0, Tooth23 int DEFAULT 0,
    Tooth24 int DEFAULT 0, Tooth25 int DEFAULT 0, Tooth26 int DEFAULT 0,
    Tooth27 int DEFAULT 0, Tooth28 int DEFAULT 0,
    Tooth31 int DEFAULT 0, Tooth32 int DEFAULT 0, Tooth33 int DEFAULT 0,
    Tooth34 int DEFAULT 0, Tooth35 int DEFAULT 0, Tooth36 int DEFAULT 0,
    Tooth37 int DEFAULT 0, Tooth38 int DEFAULT 0,
    Tooth41 int DEFAULT 0, Tooth42 int DEFAULT 0, Tooth43 int DEFAULT 0,
    Tooth44 int DEFAULT 0, Tooth45 int DEFAULT 0, Tooth46 int DEFAULT 0,
    Tooth47 int DEFAULT 0, Tooth48 int DEFAULT 0,
    Tooth51 int DEFAULT 0, Tooth52 int DEFAULT 0, Tooth53 int DEFAULT 0,
    Tooth54 int DEFAULT 0, Tooth55 int DEFAULT 0,
    Tooth61 int DEFAULT 0, Tooth62 int DEFAULT 0, Tooth63 int DEFAULT 0,
    Tooth64 int DEFAULT 0, Tooth65 int DEFAULT 0,
    Tooth71 int DEFAULT 0, Tooth72 int DEFAULT 0, Tooth73 int DEFAULT 0,
    Tooth74 int DEFAULT 0, Tooth75 int DEFAULT 0,
    Tooth81 int DEFAULT 0, Tooth82 int DEFAULT 0, Tooth83 int DEFAULT 0,
    Tooth84 int DEFAULT 0, Tooth85 int DEFAULT 0
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- Loading and deleting a group by its number.
CREATE INDEX IF NOT EXISTS StandardGroupName_by_TGId ON standardgroupname (TGId);

-- The key of a new group, read back by its name.
CREATE INDEX IF NOT EXISTS StandardGroupName_by_Name ON standardgroupname (Name);

-- The images that the program has imported: none is stored twice, however many imports run at once. The library does not
-- use it. A row whose image is gone has no meaning.
CREATE TABLE IF NOT EXISTS importedimage_t (
    SOPInstanceUID varchar(64) NOT NULL PRIMARY KEY,
    ImageBildID int
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

-- The mark. It is stored last, because each statement above commits: a database without it has no rows, and running this
-- file again completes its tables.
INSERT INTO schemaversion_t (Application, Version) VALUES ('OXClass', 2);
