#include "shell/entry/fresh_entry.h"

#include "engine/server_table.h"

namespace korvane {

ColumnValues FreshEntry(ColumnValues own, DateTime now) {
    const ColumnValues common{{"strAddress_IP", kSampleWebHost},
                              {"strDesc", "Example"},
                              {"strPort", "80"},
                              {"strType", "HTTP"},
                              {"nTries", kNewTries},
                              {"nListFrequency", 0},
                              {"bIsMonitoring", true},
                              {"nTimeout", kNewTimeout.count()},
                              {"strCMD", ""},
                              {"strCMDUP", ""},
                              {"strExpectedText", ""},
                              {"strUserName", ""},
                              {"strPassword", ""},
                              {"strLastResponse", ""},
                              {"strCurStatus", status::kUp},
                              {"dtNextCheck", now},
                              {"nAveResponse", 0},
                              {"nSuccess", 0},
                              {"nFail", 0},
                              {"nFailScanText", 0},
                              {"nTriesCur", 0},
                              {"nDownDuration1", 0},
                              {"nDownDuration2", 0},
                              {"nPercentUP", 100},
                              {"bSendUpNotify", true}};
    own.insert(own.end(), common.begin(), common.end());
    return own;
}

}  // namespace korvane
