// The notification addresses that all entries share, in a small text file beside the program: what a new entry begins with.
#pragma once

#include <string>
#include <string_view>

#include "platform/files.h"

namespace korvane {

class clsGlobalEmail {
public:
    /// The file is `<dir>/GlobalEmail.dat`. `files` must outlive this.
    clsGlobalEmail(Files& files, const std::string& dir) : files_(files), path_(dir + "/GlobalEmail.dat") {}

    /// Reads the file into the four texts. An item ends at a comma or a line end, leading blanks are dropped and double quotes
    /// delimit it, so a list joined by commas is cut at the first of them. Items without a known key are passed over. Without a
    /// file, or with one that cannot be read, the texts stay as they are.
    void OpenFile();

    /// Writes the four texts, a line each, replacing the file. What could not be written is reported by nothing.
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
    void TakeItem(std::string_view item);

    Files& files_;
    std::string path_;
    std::string strToList1_;
    std::string strToList2_;
    std::string strFrom_;
    std::string strSubject_;
};

}  // namespace korvane
