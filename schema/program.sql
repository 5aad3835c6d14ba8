-- Tables of the program beside those of the library. A database that was made without them gets them with
-- the first import; readers take a missing table for an empty one.

-- The issuer of a patient's identifier, where it is known. Identifiers are unique only together with it.
CREATE TABLE IF NOT EXISTS PatientIssuer_T (
    PatientID INTEGER PRIMARY KEY,
    Issuer NVARCHAR(64)
);

-- One row: what the marker file of each storage root of this database must name.
CREATE TABLE IF NOT EXISTS ClinicIdentity_T (
    Identity NVARCHAR(64)
);
