-- The blank database: kvempty.mdb is made from this at build time.
--
-- The program reads its columns and their kinds from this text (src/store/schema.cpp): a table's columns stand below its CREATE
-- TABLE, one on each indented line. SMALLINT is a whole number of 16 bits, INT of 32, INTEGER of 64 (and an id), REAL a fraction,
-- BOOLEAN 1 or 0, DATETIME a text "YYYY-MM-DD HH:MM:SS" in local time. Queries compare texts without regard to case. Blank is NULL.

PRAGMA page_size = 4096;
PRAGMA encoding = 'UTF-8';

-- One row per monitored entry: configuration and live counters together.
CREATE TABLE Servers (
    ID               INTEGER PRIMARY KEY,
    idCustomer       INTEGER DEFAULT 0,
    strGroup         TEXT COLLATE NOCASE DEFAULT 'Group1',
    strDesc          TEXT COLLATE NOCASE,
    strAddress_IP    TEXT COLLATE NOCASE,
    strType          TEXT COLLATE NOCASE DEFAULT 'HTTP',
    strPort          TEXT COLLATE NOCASE DEFAULT '80',
    nTimeout         SMALLINT DEFAULT 15,
    nTries           SMALLINT DEFAULT 3,
    nTriesCur        SMALLINT DEFAULT 0,
    nListFrequency   SMALLINT DEFAULT 0,
    nIntervalSeconds INTEGER DEFAULT 60,
    strExpectedText  TEXT COLLATE NOCASE DEFAULT '',
    strRequestText   TEXT COLLATE NOCASE DEFAULT '',
    strUserName      TEXT COLLATE NOCASE DEFAULT '',
    strPassword      TEXT COLLATE NOCASE DEFAULT '',
    bIsMonitoring    BOOLEAN DEFAULT 1,
    bSendUpNotify    BOOLEAN DEFAULT 1,
    bNotSendBody     BOOLEAN DEFAULT 0,
    strDownTime1     TEXT COLLATE NOCASE,
    strDownTime2     TEXT COLLATE NOCASE,
    nDownDuration1   SMALLINT DEFAULT 0,
    nDownDuration2   SMALLINT DEFAULT 0,
    strCMD           TEXT COLLATE NOCASE DEFAULT '',
    strCMDUP         TEXT COLLATE NOCASE DEFAULT '',
    strEmailList1    TEXT COLLATE NOCASE DEFAULT '',
    strEmailList2    TEXT COLLATE NOCASE DEFAULT '',
    strEmailFrom     TEXT COLLATE NOCASE DEFAULT '',
    strEmailText     TEXT COLLATE NOCASE DEFAULT '',
    strEmailBody     TEXT COLLATE NOCASE DEFAULT '',
    nFailScanText    INT DEFAULT 0,
    strCurStatus     TEXT COLLATE NOCASE DEFAULT 'UP',
    strLastResponse  TEXT COLLATE NOCASE,
    nAveResponse     REAL DEFAULT 0,
    nAveSession      REAL DEFAULT 0,
    nTotalSession    INT DEFAULT 0,
    nSuccess         INT DEFAULT 0,
    nFail            INT DEFAULT 0,
    nPercentUp       REAL DEFAULT 100,
    dtNextCheck      DATETIME,
    datelastcheck    DATETIME,
    datelastfail     DATETIME,
    datelastreset    DATETIME
);
CREATE INDEX ServersByNextCheck ON Servers (dtNextCheck);

-- One row per failed check.
CREATE TABLE Failures (
    ID            INTEGER PRIMARY KEY,
    IDParent      INTEGER,
    strGroup      TEXT COLLATE NOCASE,
    strDesc       TEXT COLLATE NOCASE,
    strAddress_IP TEXT COLLATE NOCASE,
    strType       TEXT COLLATE NOCASE,
    strPort       TEXT COLLATE NOCASE,
    nTimeout      SMALLINT,
    nFailCount    SMALLINT,
    nFailMax      SMALLINT,
    strAction     TEXT COLLATE NOCASE,
    strReason     TEXT COLLATE NOCASE,
    dateFail      DATETIME
);
CREATE INDEX FailuresByParentAndDate ON Failures (IDParent, dateFail);

-- Hourly and daily averages.
CREATE TABLE Response (
    id           INTEGER PRIMARY KEY,
    idParent     INTEGER,
    txtType      TEXT COLLATE NOCASE,
    dtCur        DATETIME,
    nAveResponse REAL,
    nAveSession  REAL
);
CREATE INDEX ResponseByParentAndDate ON Response (idParent, txtType, dtCur);
-- Each publish looks for hours of any entry that are over.
CREATE INDEX ResponseByDate ON Response (txtType, dtCur);

-- Texts that mean failure when an answer holds them.
CREATE TABLE ResponseFailText (
    id             INTEGER PRIMARY KEY,
    idParent       INTEGER,
    strFailText    TEXT COLLATE NOCASE,
    strFailCommand TEXT COLLATE NOCASE
);
CREATE INDEX ResponseFailTextByParent ON ResponseFailText (idParent);
