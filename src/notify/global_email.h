// The notification addresses shared by all entries, in a small text file in the program's folder: the initial values of a new
// entry.
#pragma once

#include <string>
#include <string_view>

#include "platform/files.h"

namespace korvane {

class clsGlobalEmail {
public:
    /// The file is `<dir>/GlobalEmail.dat`. `files` must outlive this.
    clsGlobalEmail(Files& files, const std::string& dir) : files_(files), path_(dir + "/GlobalEmail.dat") {}

    /// Reads the file into the four texts. An item ends at a comma or a line end; leading spaces are dropped and double quotes
    /// delimit it, so a list joined by commas is cut at the first of them. Items without a known key are ignored. If the file is
    /// missing or unreadable, the texts stay unchanged.
    void OpenFile();

    /// Writes the four texts, one line each, replacing the file. A write error is not reported.
    void UpdateData();

    const std::string& getToList1() const { return strToList1_; }
    const std::string& getToList2() const { return strToList2_; }
    const std::string& getFrom() const { return strFrom_; }
    const std::string& getSubject() const { return strSubject_; }
    void setToList1(std::string_view text) { strToList1_ = text; }
    void setToList2(std::string_view text) { strToList2_ = text; }
    void setFrom(std::string_view text) { strFrom_ = text; }
    void setSubject(std::string_view text) { strSubject_ = text; }

private:
    struct Line {
        std::string_view key;
        std::string clsGlobalEmail::*text;
    };
    static const Line kLines[4];

    void TakeItem(std::string_view item);

    Files& files_;
    std::string path_;
    std::string strToList1_;
    std::string strToList2_;
    std::string strFrom_;
    std::string strSubject_;
};

}  // namespace korvane
