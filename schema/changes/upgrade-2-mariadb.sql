-- Changes the tables from version 1 to version 2, for MariaDB.
-- The server commits each definition by itself. Every statement can be repeated, and the version changes last, so that an
-- interrupted change is completed by running the script again.

-- The key of a new template, and of a new group, read back by its name.
CREATE INDEX IF NOT EXISTS TemplateCard_by_Name ON templatecard_t (TCName);
CREATE INDEX IF NOT EXISTS StandardGroupName_by_Name ON standardgroupname (Name);

-- The images that the program has imported: none is stored twice, however many imports run at once.
CREATE TABLE IF NOT EXISTS importedimage_t (
    SOPInstanceUID varchar(64) NOT NULL PRIMARY KEY,
    ImageBildID int
) ENGINE = InnoDB CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin;

UPDATE schemaversion_t SET Version = 2 WHERE Application = 'OXClass';
