-- Changes the tables from version 2 back to version 1, for SQLite.
-- Run in one transaction.

PRAGMA user_version = 1;

DROP TABLE ImportedImage_T;
DROP INDEX StandardGroupName_by_Name;
DROP INDEX TemplateCard_by_Name;
