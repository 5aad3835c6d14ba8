-- Tables of the dental imaging database, for SQLite 3.40 and newer.
--
-- Run once on an empty database, inside one transaction of the caller. The library never creates
-- or changes a table: it finds these and sends its statements. docs/tables.md describes each
-- column.
--
-- Declared types carry meaning, as the database layer reads them:
--   INTEGER PRIMARY KEY AUTOINCREMENT   an increasing counter; no value is used twice
--   INTEGER                             whole numbers, keys of other tables and flags
--   FLOAT                               numbers with decimals
--   NVARCHAR(n)                         text of at most n characters. The width applies to rows that
--                                       an updatable recordset writes, not to statements
--   TEXT                                text without a width
--   DATETIME                            date and time as the text yyyy-mm-dd hh:nn:ss
--
-- All columns but the keys take NULL, and no reference between tables is enforced: rows are
-- written and removed one table at a time, and every reader accepts a missing parent row.
-- An index is defined only if a statement of the library would scan a large table without it.

-- Marks the file as a database of this system ("OXCL") and stores the version of its tables, so that
-- a program can reject a foreign or a newer file.
PRAGMA application_id = 0x4F58434C;
PRAGMA user_version = 2;

-- Storage roots: the directories that hold the image files. One row has a Status other than 0,
-- the active root that takes new files. Few rows; the whole table is read.
CREATE TABLE Root_T (
    RootID INTEGER PRIMARY KEY,
    RootDirectory NVARCHAR(255),
    Status INTEGER
);

-- Settings and short lists of texts. The rows of one ListID are a list; a setting is a list of one row.
CREATE TABLE GlobalList_T (
    GlobalListID INTEGER PRIMARY KEY AUTOINCREMENT,
    ListID INTEGER,
    ListText TEXT
);

-- Loading or deleting one list. Returns the rows of a list in the order of their insertion.
CREATE INDEX GlobalList_by_ListID ON GlobalList_T (ListID);

-- Patients. The identifier that people know is PersonNr_CH, stored in upper case and compared
-- without regard to case. Several rows of one PersonNr_CH are possible.
CREATE TABLE Patient_T (
    PatientID INTEGER PRIMARY KEY AUTOINCREMENT,
    PersonNr_CH NVARCHAR(64) COLLATE NOCASE,
    FirstName_NVC NVARCHAR(128),
    LastName_NVC NVARCHAR(128),
    Birthdate_CH NVARCHAR(10),
    Sex_CH NVARCHAR(16),
    Address_NVC NVARCHAR(255),
    TelOne_NVC NVARCHAR(64),
    TelTwo_NVC NVARCHAR(64),
    TelMobile_NVC NVARCHAR(64),
    Email_adress NVARCHAR(255),
    Comments_NVC TEXT,
    IDImg NVARCHAR(255),
    OtherIDs NVARCHAR(255),
    RespDoctor INTEGER,
    PrevXrayDate_CH NVARCHAR(10)
);

-- Loading, saving and the card list of a patient by the text identifier, and the key of a new row.
CREATE INDEX Patient_by_PersonNr ON Patient_T (PersonNr_CH);

-- Counting the patients of a doctor.
CREATE INDEX Patient_by_RespDoctor ON Patient_T (RespDoctor);

-- Doctors. Names sort for display without regard to case. Few rows, the list reads them all.
CREATE TABLE Doctor_T (
    drID INTEGER PRIMARY KEY AUTOINCREMENT,
    DrContactInfo_NVC NVARCHAR(255),
    DrFirstName_NVC NVARCHAR(60) COLLATE NOCASE,
    DrLastName_NVC NVARCHAR(60) COLLATE NOCASE,
    DrName_NVC NVARCHAR(30),
    DrPrefix_NVC NVARCHAR(20),
    DrType_INT INTEGER,
    DrEMail NVARCHAR(255),
    drGUID NVARCHAR(38),
    DrLogin NVARCHAR(255)
);

-- Loading a doctor by GUID.
CREATE INDEX Doctor_by_GUID ON Doctor_T (drGUID);

-- Clinics. The row named __HQ is the head office. Names sort for display without regard to case.
-- Few rows, the list reads them all.
CREATE TABLE Clinic_T (
    ClinicID INTEGER PRIMARY KEY AUTOINCREMENT,
    ClinicName NVARCHAR(50) COLLATE NOCASE,
    OrgNumber NVARCHAR(50),
    ZipCode NVARCHAR(50),
    StreetAdress NVARCHAR(50),
    City NVARCHAR(50),
    Telephone NVARCHAR(50),
    Remarks NVARCHAR(50)
);

-- Images, one row a stored image. The largest table: every index here costs each save.
CREATE TABLE ImageBild_T (
    ImageBildID INTEGER PRIMARY KEY AUTOINCREMENT,
    ToothCollectionID INTEGER,
    PatientID INTEGER,
    DateCaptured_SD DATETIME,
    Comments_NVC TEXT,
    StandCollName_NVC NVARCHAR(255),
    ComputedDPI_INT INTEGER,
    HardwareSourceId_INT INTEGER,
    HardwareSourcetxt_NVC NVARCHAR(255),
    RootId INTEGER,
    GraphicURL_NVC NVARCHAR(512),
    Invert_BT INTEGER,
    StretchIntens_BT INTEGER,
    Rotation_INT INTEGER,
    Contrast_INT INTEGER,
    Brightness_INT INTEGER,
    Histogram_BT INTEGER,
    ExposureTime_F FLOAT,
    HorizMirror_BT INTEGER,
    VerticalMirror_BT INTEGER,
    Responsible_Person_NVC NVARCHAR(255),
    Approved INTEGER,
    MirrRotStatus INTEGER,
    ImageType INTEGER,
    CRC NVARCHAR(128),
    DPIY_INT INTEGER,
    DPIX_INT INTEGER,
    Voltage_INT INTEGER,
    Current_INT INTEGER,
    Capture_Person_NVC NVARCHAR(255),
    Pregnant_BT INTEGER,
    XRaySource_NVC NVARCHAR(255),
    PrevXrayDate_DT DATETIME,
    Dosage_INT INTEGER,
    Study_ID INTEGER,
    Series_ID INTEGER,
    SOPInstanceUID_NVC NVARCHAR(64),
    ImageNumberInSeries INTEGER,
    DicomStatus_INT INTEGER,
    FrameNumber_INT INTEGER,
    AnatomicRegion NVARCHAR(255),
    DCMDerived_BT INTEGER,
    Laterality NVARCHAR(16),
    AnaRegion NVARCHAR(64),
    AnaRegionMod NVARCHAR(64),
    PriStructure NVARCHAR(255),
    SubType_INT INTEGER,
    Gamma_INT INTEGER
);

-- All images of a patient in the order of capture, without a sort.
CREATE INDEX ImageBild_by_Patient ON ImageBild_T (PatientID, DateCaptured_SD);

-- All images of a series in the order of capture, without a sort, and the sums of the card list.
CREATE INDEX ImageBild_by_Series ON ImageBild_T (Series_ID, DateCaptured_SD);

-- The key of an image just inserted, read back by patient and file.
CREATE INDEX ImageBild_by_File ON ImageBild_T (PatientID, GraphicURL_NVC);

-- Finding an image that is imported a second time.
CREATE INDEX ImageBild_by_SOPInstanceUID ON ImageBild_T (SOPInstanceUID_NVC);

-- Signed, dated comments. tabelID names the kind of owner (1 an image), objectID its key.
CREATE TABLE Comments_T (
    CommentID INTEGER PRIMARY KEY AUTOINCREMENT,
    dates DATETIME,
    signature NVARCHAR(150),
    tabelID INTEGER,
    objectID INTEGER,
    commentString NVARCHAR(150)
);

-- The comments of an image, oldest first, without a sort, and the removal of a deletion mark.
CREATE INDEX Comments_by_Object ON Comments_T (objectID, tabelID, dates);

-- Studies. Study_ID is the key of the row, studyID the study identifier of DICOM. A study that is
-- saved without a patient gets PatientID 0, so that it can be loaded again.
CREATE TABLE Study_T (
    Study_ID INTEGER PRIMARY KEY AUTOINCREMENT,
    StudyInstanceUID NVARCHAR(64),
    PatientID INTEGER DEFAULT 0,
    accessionNumber NVARCHAR(64),
    StudyDateTime DATETIME,
    Studydesc NVARCHAR(64),
    referDrName NVARCHAR(255),
    studyID NVARCHAR(16),
    PhysOfRecord NVARCHAR(510)
);

-- Loading and merging a study by UID.
CREATE INDEX Study_by_InstanceUID ON Study_T (StudyInstanceUID);

-- The studies of a patient, for the card list.
CREATE INDEX Study_by_Patient ON Study_T (PatientID);

-- Series of a study. template_ID holds the TCDicomId of a template, not its key.
CREATE TABLE Series_T (
    Series_ID INTEGER PRIMARY KEY AUTOINCREMENT,
    SeriesInstanceUID NVARCHAR(64),
    Modality NVARCHAR(16),
    seriesNumber NVARCHAR(16),
    template_ID INTEGER,
    Study_ID INTEGER,
    orgServerID INTEGER,
    SeriesDescription NVARCHAR(64),
    SeriesDateTime DATETIME,
    Derived_BT INTEGER,
    location INTEGER,
    NumberOfImages INTEGER,
    ICShortcut INTEGER
);

-- Loading and merging a series by UID.
CREATE INDEX Series_by_InstanceUID ON Series_T (SeriesInstanceUID);

-- The series of a study, for the card list.
CREATE INDEX Series_by_Study ON Series_T (Study_ID);

-- Templates: named page layouts. The canvas is counted in pixels. TCMaximized stores the hidden flag.
CREATE TABLE TemplateCard_T (
    TemplateID INTEGER PRIMARY KEY AUTOINCREMENT,
    TCName NVARCHAR(255),
    TCDate DATETIME,
    TCComments TEXT,
    TCFullViewWidth FLOAT,
    TCFullViewHeight FLOAT,
    TCPreviewWidth FLOAT,
    TCPreviewHeight FLOAT,
    TCMaximized INTEGER,
    TCChecksum INTEGER,
    TCDicomId INTEGER,
    TCForcedImageType INTEGER
);

-- Loading a template by the number that series carry.
CREATE INDEX TemplateCard_by_DicomId ON TemplateCard_T (TCDicomId);

-- The key of a new template, read back by its name.
CREATE INDEX TemplateCard_by_Name ON TemplateCard_T (TCName);

-- Slots of a template, one row a place for an image. Places and sizes are fractions of the canvas,
-- counted from the top left. TAProportions is a text, as older rows hold a decimal comma.
CREATE TABLE TemplateAttribute_T (
    TemplateImageId INTEGER PRIMARY KEY AUTOINCREMENT,
    TemplateID INTEGER,
    TAGroupName NVARCHAR(255),
    TASequence INTEGER,
    TARotation INTEGER,
    TAFullViewWidth FLOAT,
    TAFullViewHeight FLOAT,
    TAFullViewPosX FLOAT,
    TAFullViewPosY FLOAT,
    TAPreviewWidth FLOAT,
    TAPreviewHeight FLOAT,
    TAPreviewPosX FLOAT,
    TAPreviewPosY FLOAT,
    TANumberInTemplate INTEGER,
    TAProportions NVARCHAR(16),
    TAComments TEXT,
    TATGId INTEGER,
    TAImagePath NVARCHAR(512)
);

-- The slots of a template in the order of their numbers, without a sort, and the key of a new slot.
CREATE INDEX TemplateAttribute_by_Template ON TemplateAttribute_T (TemplateID, TANumberInTemplate);

-- Image cards: pages that a user composed from images of one patient.
CREATE TABLE ImageCard_T (
    ImageCardID INTEGER PRIMARY KEY AUTOINCREMENT,
    PatientID INTEGER,
    ICName NVARCHAR(255),
    ICDateCreated DATETIME,
    ICLastUpdate DATETIME,
    ICDescription TEXT,
    ICFullViewWidth FLOAT,
    ICFullViewHeight FLOAT,
    ICPreviewWidth FLOAT,
    ICPreviewHeight FLOAT,
    ICMaximized INTEGER
);

-- The cards of a patient, for the card list, and the key of a card just inserted.
CREATE INDEX ImageCard_by_Patient ON ImageCard_T (PatientID);

-- Placed images of a card, on the scale of the template slots. The columns from IAContrast to
-- IAHistogram, IAColorized and IAAttCorr are written 0 and never read.
CREATE TABLE ImageAttribute_T (
    ImageAttributeID INTEGER PRIMARY KEY AUTOINCREMENT,
    ImageCardID INTEGER,
    ImageBildId INTEGER,
    IAFullViewWidth FLOAT,
    IAFullViewHeight FLOAT,
    IAFullViewPosX FLOAT,
    IAFullViewPosY FLOAT,
    IAContrast INTEGER,
    IABrightness INTEGER,
    IAInvert INTEGER,
    IARotation INTEGER,
    IASharpen INTEGER,
    IASoften INTEGER,
    IAZoom INTEGER,
    IAGamma INTEGER,
    IAHorizontalMirror INTEGER,
    IAVerticalMirror INTEGER,
    IAHistoEqualize INTEGER,
    IAStretchIntensity INTEGER,
    IAHistogram INTEGER,
    IASequence INTEGER,
    IAComments TEXT,
    IAMirrRotStatus INTEGER,
    IAColorized INTEGER,
    IAAttCorr INTEGER
);

-- The placed images of a card, in the order of the card, and the key of a new one.
CREATE INDEX ImageAttribute_by_Card ON ImageAttribute_T (ImageCardID, IASequence, ImageBildId);

-- Recorded manipulations of a placed image, numbered from 1 within it.
CREATE TABLE ImageManipulation_T (
    ImageManipulationID INTEGER PRIMARY KEY AUTOINCREMENT,
    ImageAttributeID INTEGER,
    SequenceNo INTEGER,
    Type INTEGER,
    LongParameter INTEGER,
    StringParameter TEXT
);

-- The manipulations of a placed image in their order, without a sort.
CREATE INDEX ImageManipulation_by_Attribute ON ImageManipulation_T (ImageAttributeID, SequenceNo);

-- Anatomic groups: what an image or a slot shows. StandardNameID is the key of the row, TGId the
-- number of the group. ADPriStructure lists the teeth of a group; the tooth columns are always 0.
CREATE TABLE StandardGroupName (
    StandardNameID INTEGER PRIMARY KEY AUTOINCREMENT,
    Name NVARCHAR(255),
    Comments TEXT,
    OrderNo INTEGER,
    TGId INTEGER,
    ADType INTEGER,
    ADLaterality NVARCHAR(16),
    ADAnaRegion NVARCHAR(64),
    ADAnaRegionMod NVARCHAR(64),
    ADPriStructure NVARCHAR(255),
    Tooth11 INTEGER DEFAULT 0, Tooth12 INTEGER DEFAULT 0, Tooth13 INTEGER DEFAULT 0,
    Tooth14 INTEGER DEFAULT 0, Tooth15 INTEGER DEFAULT 0, Tooth16 INTEGER DEFAULT 0,
    Tooth17 INTEGER DEFAULT 0, Tooth18 INTEGER DEFAULT 0,
    Tooth21 INTEGER DEFAULT 0, Tooth22 INTEGER DEFAULT 0, Tooth23 INTEGER DEFAULT 0,
    Tooth24 INTEGER DEFAULT 0, Tooth25 INTEGER DEFAULT 0, Tooth26 INTEGER DEFAULT 0,
    Tooth27 INTEGER DEFAULT 0, Tooth28 INTEGER DEFAULT 0,
    Tooth31 INTEGER DEFAULT 0, Tooth32 INTEGER DEFAULT 0, Tooth33 INTEGER DEFAULT 0,
    Tooth34 INTEGER DEFAULT 0, Tooth35 INTEGER DEFAULT 0, Tooth36 INTEGER DEFAULT 0,
    Tooth37 INTEGER DEFAULT 0, Tooth38 INTEGER DEFAULT 0,
    Tooth41 INTEGER DEFAULT 0, Tooth42 INTEGER DEFAULT 0, Tooth43 INTEGER DEFAULT 0,
    Tooth44 INTEGER DEFAULT 0, Tooth45 INTEGER DEFAULT 0, Tooth46 INTEGER DEFAULT 0,
    Tooth47 INTEGER DEFAULT 0, Tooth48 INTEGER DEFAULT 0,
    Tooth51 INTEGER DEFAULT 0, Tooth52 INTEGER DEFAULT 0, Tooth53 INTEGER DEFAULT 0,
    Tooth54 INTEGER DEFAULT 0, Tooth55 INTEGER DEFAULT 0,
    Tooth61 INTEGER DEFAULT 0, Tooth62 INTEGER DEFAULT 0, Tooth63 INTEGER DEFAULT 0,
    Tooth64 INTEGER DEFAULT 0, Tooth65 INTEGER DEFAULT 0,
    Tooth71 INTEGER DEFAULT 0, Tooth72 INTEGER DEFAULT 0, Tooth73 INTEGER DEFAULT 0,
    Tooth74 INTEGER DEFAULT 0, Tooth75 INTEGER DEFAULT 0,
    Tooth81 INTEGER DEFAULT 0, Tooth82 INTEGER DEFAULT 0, Tooth83 INTEGER DEFAULT 0,
    Tooth84 INTEGER DEFAULT 0, Tooth85 INTEGER DEFAULT 0
);

-- Loading and deleting a group by its number.
CREATE INDEX StandardGroupName_by_TGId ON StandardGroupName (TGId);

-- The key of a new group, read back by its name.
CREATE INDEX StandardGroupName_by_Name ON StandardGroupName (Name);

-- The images that the program has imported: none is stored twice, however many imports run at once. The library does not
-- use it. A row whose image is gone has no meaning.
CREATE TABLE ImportedImage_T (
    SOPInstanceUID NVARCHAR(64) NOT NULL PRIMARY KEY,
    ImageBildID INTEGER
);
