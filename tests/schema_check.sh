#!/bin/sh
# Checks the table definitions and the standard layouts with the sqlite3 shell alone:
#   - both files load on an empty database and carry the marks that programs look for
#   - the layouts are sound: frames and sequences without gaps, slots on the canvas and apart
#
# Usage: schema_check.sh [directory of the SQL files]. Exit code 0 when all holds, otherwise 1.

schema=${1:-$(dirname "$0")/../schema}
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
db=$work/check.db
failed=0

fail() {
    echo "FAILED: $*" >&2
    failed=1
}

# expect WANTED QUERY: the query's whole output must be the wanted text.
expect() {
    got=$(sqlite3 -bail "$db" "$2" 2>&1)
    [ "$got" = "$1" ] || fail "$2
    wanted: $1
    got:    $got"
}

for file in sqlite.sql layouts.sql; do
    sqlite3 -bail "$db" "BEGIN" ".read $schema/$file" "COMMIT" || fail "$file does not load"
done
[ $failed = 0 ] || exit 1

expect 1331184460 "PRAGMA application_id"
expect 2 "PRAGMA user_version"
expect 16 "SELECT COUNT(*) FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite%'"
expect ok "PRAGMA integrity_check"

# --- what a column must do besides holding its value ------------------------------------------------

expect "1" "BEGIN; INSERT INTO Patient_T (PersonNr_CH) VALUES ('A1B');
 SELECT COUNT(*) FROM Patient_T WHERE PersonNr_CH = 'a1b'; ROLLBACK"
expect "0.85 text" "BEGIN; INSERT INTO TemplateAttribute_T (TAProportions) VALUES (0.85);
 SELECT TAProportions || ' ' || typeof(TAProportions) FROM TemplateAttribute_T WHERE TemplateID IS NULL;
 ROLLBACK"
expect "2 integer" "BEGIN; INSERT INTO ImageManipulation_T (SequenceNo) VALUES ('2');
 SELECT SequenceNo || ' ' || typeof(SequenceNo) FROM ImageManipulation_T; ROLLBACK"
expect "2024-01-31 09:05:07 text" "BEGIN;
 INSERT INTO ImageBild_T (DateCaptured_SD) VALUES ('2024-01-31 09:05:07');
 SELECT DateCaptured_SD || ' ' || typeof(DateCaptured_SD) FROM ImageBild_T; ROLLBACK"
expect "" "SELECT m.name, c.name FROM sqlite_schema m, pragma_table_info(m.name) c
 WHERE m.type = 'table' AND m.name NOT LIKE 'sqlite%' AND c.\"notnull\" AND c.pk = 0"

# --- the layouts -------------------------------------------------------------------------------------

expect "1:1 2:1 5:20 6:18 7:4 8:2 9:1 10:3 11:5 12:9 14:1" \
    "SELECT group_concat(TCDicomId || ':' || n, ' ') FROM (SELECT TCDicomId, COUNT(*) AS n FROM TemplateCard_T
     JOIN TemplateAttribute_T USING (TemplateID) GROUP BY TCDicomId ORDER BY TCDicomId)"
# Frames and sequences run from 1 without a gap.
for column in TANumberInTemplate TASequence; do
    expect "" "SELECT TemplateID FROM TemplateAttribute_T GROUP BY TemplateID
     HAVING MIN($column) <> 1 OR MAX($column) <> COUNT(*) OR COUNT(DISTINCT $column) <> COUNT(*)"
done
# Slots lie on the canvas.
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T WHERE TAFullViewPosX < 0 OR TAFullViewPosY < 0
 OR TAFullViewWidth <= 0 OR TAFullViewHeight <= 0
 OR TAFullViewPosX + TAFullViewWidth > 1 OR TAFullViewPosY + TAFullViewHeight > 1"
# Slots of a layout stand apart, by 6 pixels of the canvas at least.
expect "" "SELECT a.TemplateImageId, b.TemplateImageId FROM TemplateAttribute_T a JOIN TemplateAttribute_T b
 ON a.TemplateID = b.TemplateID AND a.TemplateImageId < b.TemplateImageId
 JOIN TemplateCard_T t ON t.TemplateID = a.TemplateID
 WHERE a.TAFullViewPosX < b.TAFullViewPosX + b.TAFullViewWidth + 5.99 / TCFullViewWidth
   AND b.TAFullViewPosX < a.TAFullViewPosX + a.TAFullViewWidth + 5.99 / TCFullViewWidth
   AND a.TAFullViewPosY < b.TAFullViewPosY + b.TAFullViewHeight + 5.99 / TCFullViewHeight
   AND b.TAFullViewPosY < a.TAFullViewPosY + a.TAFullViewHeight + 5.99 / TCFullViewHeight"
# The stored proportion is the slot's height by width in pixels.
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T JOIN TemplateCard_T USING (TemplateID)
 WHERE abs(TAProportions - TAFullViewHeight * TCFullViewHeight / (TAFullViewWidth * TCFullViewWidth)) >
 0.0001"
# The right side of the patient lies left of the left side, the upper jaw above the lower.
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T JOIN StandardGroupName ON TGId = TATGId
 WHERE ADType = 0 AND CASE ADLaterality WHEN 'R' THEN TAFullViewPosX + TAFullViewWidth > 0.5
  WHEN 'L' THEN TAFullViewPosX < 0.5 ELSE abs(TAFullViewPosX + TAFullViewWidth / 2 - 0.5) > 0.001 END"
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T JOIN StandardGroupName ON TGId = TATGId
 WHERE ADAnaRegion = 'T-11170' AND TAFullViewPosY + TAFullViewHeight > 0.5
    OR ADAnaRegion = 'T-11180' AND TAFullViewPosY < 0.5"
# Every slot names its group rightly, every group is used, and no slot has the number of a group.
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T
 LEFT JOIN StandardGroupName ON TGId = TATGId WHERE Name IS NOT TAGroupName"
expect "" "SELECT TGId FROM StandardGroupName WHERE TGId NOT IN (SELECT TATGId FROM TemplateAttribute_T)"
expect "" "SELECT TemplateImageId FROM TemplateAttribute_T
 WHERE TemplateImageId IN (SELECT TGId FROM StandardGroupName) OR TemplateImageId > 1000"
# Tooth strings consist of two digits and a comma each.
expect "" "SELECT Name FROM StandardGroupName WHERE length(ADPriStructure) % 3 <> 0
 OR (ADType = 0) <> (ADPriStructure GLOB '[1-8][1-8],*')"

[ $failed = 0 ] && echo "schema and layouts hold"
exit $failed
