* One small survey in every form that pspp writes.

DATA LIST LIST NOTABLE
  /id (F4.0) name (A12) city (A40) score (F8.2) group (F1.0) height (F5.1) answer (F2.0)
   day (SDATE10) moment (DATETIME20) clock (TIME8) averylongvariablename (F8.2) code (A2).
BEGIN DATA
1 "Anna" "Zürich" 12.5 1 170.2 1 "2020/02/29" "29-FEB-2020 13:05:59" 00:00:00 0.1 "a"
2 "Björn" "Łódź" -9 2 165 98 "1582/10/15" "15-OCT-1582 00:00:00" 23:59:59 -1e300 "b"
3 "Çelik" "北京" 95 9 . 99 "1970/01/01" "01-JAN-1970 00:00:01" 12:00:00 123456789.5 "x"
4 "" "" -0.25 1 181.5 -3 . . . . "a"
5 "Eve" "O'Neill, 'Co'" 0 2 175 2 "2099/12/31" "31-DEC-2099 23:59:59" 01:02:03 -7 ""
6 "Zoë" "Kraków" 90 . 160.7 97 "1899/12/31" "31-DEC-1899 06:30:00" 06:30:00 1e-300 "b"
END DATA.

VARIABLE LABELS id "Running number" name "Given name" height "Körpergröße in cm"
  score "Score, with a range and a value that mean missing" group "Group".
VALUE LABELS group 1 "low" 2 "high" 9 "not asked"
  /answer 1 "yes" 2 "no" 97 "überspringt" 98 "refused" 99 "don't know"
  /code "a" "first" "b" "second" "x" "unknown".
MISSING VALUES score (90 THRU 99, -9) group (9) answer (97, 98, 99) averylongvariablename (LO THRU -1)
  code ("x").
VARIABLE LEVEL group code (NOMINAL) answer (ORDINAL) score height (SCALE).
VARIABLE WIDTH name (12).

SAVE OUTFILE="survey.sav" /UNCOMPRESSED.
SAVE OUTFILE="survey-packed.sav" /COMPRESSED.
SAVE OUTFILE="survey.zsav" /ZCOMPRESSED.

* The portable form holds names of eight characters and one character set for all.
SAVE OUTFILE="survey-v2.sav" /VERSION=2 /UNCOMPRESSED.
EXPORT OUTFILE="survey.por" /RENAME=(averylongvariablename=longname)
  /DROP=name city.

* A file with variables and no cases.
SELECT IF id < 0.
SAVE OUTFILE="nocases.sav".

* Texts longer than one segment, and names that are equal in their first sixteen bytes.
DATA LIST LIST NOTABLE /abcdefghijklmnop1 (F8) abcdefghijklmnop2 (F8) größenverhältnis (F8) long (A300).
BEGIN DATA
1 2 3 "short"
4 5 6 ""
END DATA.
IF abcdefghijklmnop1 = 4 long = RPAD("begin", 295, "=").
SAVE OUTFILE="names.sav".
