// Room `entry`: adding, editing, saving and testing one entry, with its rules.
//
// The values of the entry editor's inputs: every text as typed, and the check marks.
#pragma once

#include <string>

namespace korvane {

/// Named after the columns of `Servers` in which they are stored.
struct EntryFields {
    std::string strDownTime1;
    std::string strDownTime2;
    std::string nDownDuration1;  ///< minutes
    std::string nDownDuration2;
    std::string nIntervalSeconds;
    std::string strAddress_IP;
    std::string strDesc;
    std::string strGroup;
    std::string strEmailList1;
    std::string strEmailList2;
    std::string strEmailFrom;
    std::string nTries;
    std::string strEmailText;
    std::string strEmailBody;
    bool bIsMonitoring = false;
    bool bNotSendBody = false;
    bool bSendUpNotify = false;
    std::string strCMDUP;
    std::string strCMD;
    std::string strUserName;
    std::string strPassword;
    std::string strExpectedText;
    std::string nTimeout;
    std::string strType;  ///< empty when none is selected
    std::string strPort;
    std::string strRequestText;
    std::string HTTPStatusGood;  ///< stored beside the row
};

}  // namespace korvane
