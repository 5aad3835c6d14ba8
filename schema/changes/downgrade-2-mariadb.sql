-- Changes the tables from version 2 back to version 1, for MariaDB.
-- The server commits each definition by itself. Every statement can be repeated, and the version changes first, so that an
-- interrupted change is completed by running the script again.

UPDATE schemaversion_t SET Version = 1 WHERE Application = 'OXClass';

DROP TABLE IF EXISTS importedimage_t;
DROP INDEX IF EXISTS StandardGroupName_by_Name ON standardgroupname;
DROP INDEX IF EXISTS TemplateCard_by_Name ON templatecard_t;
