-- Changes the tables from version 2 back to version 1, for PostgreSQL.
-- Run in one transaction.

UPDATE SchemaVersion_T SET Version = 1 WHERE Application = 'OXClass';

DROP TABLE ImportedImage_T;
DROP INDEX StandardGroupName_by_Name;
DROP INDEX TemplateCard_by_Name;
