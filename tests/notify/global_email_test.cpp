// The file of the shared addresses: what is read back from contents of every kind, and what is written.
#include "notify/global_email.h"

#include <gtest/gtest.h>

#include "support/faulty_files.h"
#include "support/memory_files.h"

namespace korvane {
namespace {

const std::string kPath = "/home/korvane/GlobalEmail.dat";

struct Texts {
    std::string toList1, toList2, from, subject;
    bool operator==(const Texts&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Texts& texts) {
    return out << "[" << texts.toList1 << "] [" << texts.toList2 << "] [" << texts.from << "] [" << texts.subject << "]";
}

Texts TextsOf(const clsGlobalEmail& email) {
    return {email.getToList1(), email.getToList2(), email.getFrom(), email.getSubject()};
}

TEST(GlobalEmail, ReadsItemByItem) {
    using namespace std::string_literals;
    struct Case {
        std::string contents;
        Texts read;
    };
    const Case cases[] = {
        {"TO_LIST1=a;b\r\nTO_LIST2=c\r\nFROM=d\r\nSUBJECT=e f\r\n", {"a;b", "c", "d", "e f"}},
        {"SUBJECT=e\nFROM=d\nTO_LIST2=c\nTO_LIST1=a", {"a", "c", "d", "e"}},
        {"TO_LIST1=a,b\r\nSUBJECT=Hello, you\r\nFROM=x=y\r\n", {"a", "", "x=y", "Hello"}},
        {"TO_LIST1=a,TO_LIST2=c , \t FROM=d", {"a", "c ", "d", ""}},
        {"\"TO_LIST1=a,b\",\"FROM=d\r\ne\" \r\n\"SUBJECT=s\"TO_LIST2=c", {"a,b", "c", "d\r\ne", "s"}},
        {"SUBJECT=say \"hi\"\r\nFROM=d\r\n\"TO_LIST1=never closed, \r\n", {"never closed, \r\n", "", "d", "say \"hi\""}},
        {"my to_list1=a\r\nSubject=FROM=d\r\nTO_LIST2\r\n=x\r\n\r\n,,\r\n", {"a", "", "FROM=d", "FROM=d"}},
        {"TO_LIST1=old\rTO_LIST1=new\r\r\nFROM=", {"new", "", "", ""}},
        {"", {}},
        {"\"", {}},
        {"FROM=a\0b\r\n\0SUBJECT=\0"s, {"", "", "a\0b"s, "\0"s}},
        {"FROM=caf\xE9\r\n", {"", "", "caf\xC3\xA9", ""}},
    };
    for (const Case& c : cases) {
        MemoryFiles files;
        files.CreateFolder("/home/korvane");
        files.Replace(kPath, c.contents);
        clsGlobalEmail email(files, "/home/korvane");
        email.OpenFile();
        EXPECT_EQ(TextsOf(email), c.read) << c.contents;
    }
}

TEST(GlobalEmail, TenMegabytesAreReadLikeAnyOtherFile) {
    MemoryFiles files;
    files.CreateFolder("/home/korvane");
    std::string contents;
    while (contents.size() < 10'000'000)
        contents += "\"x\",,\r\nNOTHING=" + std::string(1000, ' ');
    files.Replace(kPath, contents + "\r\nFROM=me");
    clsGlobalEmail email(files, "/home/korvane");
    email.OpenFile();
    EXPECT_EQ(email.getFrom(), "me");
}

TEST(GlobalEmail, WritesFourLinesAndReplacesTheFile) {
    MemoryFiles files;
    files.CreateFolder("/home/korvane");
    files.Replace(kPath, "TO_LIST1=before\r\nmore\r\n");
    clsGlobalEmail email(files, "/home/korvane");
    email.setToList1("a;b");
    email.setFrom("me@example.com\r\nSUBJECT=slipped in");
    email.setSubject("Hello, you");
    email.UpdateData();
    EXPECT_EQ(files.Read(kPath), "TO_LIST1=a;b\r\nTO_LIST2=\r\nFROM=me@example.com SUBJECT=slipped in\r\nSUBJECT=Hello, you\r\n");
}

TEST(GlobalEmail, AFileThatIsNotThereOrCannotBeUsedChangesNothing) {
    MemoryFiles disk;
    disk.CreateFolder("/home/korvane");
    FaultyFiles files(disk);
    clsGlobalEmail email(files, "/home/korvane");
    email.setFrom("me");
    email.OpenFile();
    EXPECT_EQ(email.getFrom(), "me");

    disk.Replace(kPath, "FROM=you\r\n");
    files.faults.Add({.forever = true});
    email.OpenFile();
    email.UpdateData();
    EXPECT_EQ(email.getFrom(), "me");
    EXPECT_EQ(disk.Read(kPath), "FROM=you\r\n");
}

}  // namespace
}  // namespace korvane
