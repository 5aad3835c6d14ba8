-- Tables of the program, in addition to those of the library. The first import creates them in a database
-- that lacks them; readers treat a missing table as an empty one.

-- The issuer of a patient's identifier, where it is known. Identifiers are unique only together with it.
CREATE TABLE IF NOT EXISTS PatientIssuer_T (
    PatientID INTEGER PRIMARY KEY,
    Issuer VARCHAR(64)
);

-- One row: what the marker file of each storage root of this database must name.
CREATE TABLE IF NOT EXISTS ClinicIdentity_T (
    Identity VARCHAR(64)
);
