-- Changes the tables from version 1 to version 2, for PostgreSQL.
-- Run in one transaction.

-- The key of a new template, and of a new group, read back by its name.
CREATE INDEX TemplateCard_by_Name ON TemplateCard_T (TCName, TemplateID);
CREATE INDEX StandardGroupName_by_Name ON StandardGroupName (Name, StandardNameID);

-- The images that the program has imported: none is stored twice, however many imports run at once.
CREATE TABLE ImportedImage_T (
    SOPInstanceUID varchar(64) COLLATE "C" NOT NULL PRIMARY KEY,
    ImageBildID integer
);

UPDATE SchemaVersion_T SET Version = 2 WHERE Application = 'OXClass';
