-- Changes the tables from version 1 to version 2, for SQLite.
-- Run in one transaction.

-- The key of a new template, and of a new group, read back by its name.
CREATE INDEX TemplateCard_by_Name ON TemplateCard_T (TCName);
CREATE INDEX StandardGroupName_by_Name ON StandardGroupName (Name);

-- The images that the program has imported: none is stored twice, however many imports run at once.
CREATE TABLE ImportedImage_T (
    SOPInstanceUID NVARCHAR(64) NOT NULL PRIMARY KEY,
    ImageBildID INTEGER
);

PRAGMA user_version = 2;
