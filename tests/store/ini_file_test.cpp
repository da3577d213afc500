#include "store/ini_file.h"

#include <gtest/gtest.h>

#include "support/faulty_files.h"
#include "support/memory_files.h"

namespace korvane {
namespace {

constexpr const char* kPath = "/home.ini";

struct IniFileTest : testing::Test {
    MemoryFiles disk;
    FaultyFiles files{disk};
    IniFile file{files, kPath};

    void Put(std::string_view text) { disk.Replace(kPath, text); }
    std::string Text() const { return disk.Text(kPath); }
};

TEST_F(IniFileTest, ReadsByTheRules) {
    const std::string threeHundred(300, 'x');
    std::string umlauts;
    for (int i = 0; i < 300; ++i)
        umlauts += "\xC3\xBC";
    struct {
        std::string text, expected;
    } cases[] = {
        {"", "default"},
        {"[Settings]", "default"},
        {"[Settings]\nKey=value", "value"},
        {"[SETTINGS]\nkEY=value\n", "value"},
        {"  [ Settings ] remark\r\n\t Key \t= a b \t\r\n", "a b"},
        {"\xEF\xBB\xBF[Settings]\nKey=value\n", "value"},
        {"[Settings]\nKey=\n", "default"},
        {"[Settings]\nKey=   \r\n", "default"},
        {"[Settings]\nKey", "default"},
        {"[Settings]\n;Key=a\n=b\nKey=c=d;e\n", "c=d;e"},
        {"[Settings]\nKey=first\nkey=second\n", "first"},
        {"[Settings]\nOther=1\n[settings]\nKey=unseen\n", "default"},
        {"Key=unseen\n[Settings]\n", "default"},
        {"[Settings7]\nKey=unseen\n[Settings\nKey=unseen\n", "default"},  // a header cut short
        {"[Settings]\nKey=" + threeHundred + "\n", threeHundred.substr(50)},
        {"[Settings]\nKey=" + umlauts + "\n", umlauts.substr(100)},
        {"[Settings]\nKey=caf\xE9\n", "caf\xC3\xA9"},
    };
    for (const auto& each : cases) {
        Put(each.text);
        EXPECT_EQ(file.Read("Settings", "Key", "default"), each.expected) << each.text;
    }
}

TEST_F(IniFileTest, WritesNothingButTheValue) {
    struct {
        std::string before, after;
    } cases[] = {
        {"", "[Settings]\nKey=new\n"},
        {"[Other]", "[Other]\n[Settings]\nKey=new\n"},
        {"; mine\r\n[SETTINGS]\r\n kEY =  old \r\nUnknown=1\r\n", "; mine\r\n[SETTINGS]\r\n kEY =  new\r\nUnknown=1\r\n"},
        {"[Settings]\nKey=a longer one", "[Settings]\nKey=new"},
        {"[Settings]\r\nA=1\r\n\r\n  \r\n[Other]\r\nKey=x\r\n", "[Settings]\r\nA=1\r\nKey=new\r\n\r\n  \r\n[Other]\r\nKey=x\r\n"},
        {"[Settings]\nA=1", "[Settings]\nA=1\nKey=new\n"},
        {"\xEF\xBB\xBF;caf\xE9\n[Settings]\nKey=old\nB=caf\xE9\n", "\xEF\xBB\xBF;caf\xE9\n[Settings]\nKey=new\nB=caf\xE9\n"},
        {"[Settings]\nKey=a\nkey=b\n[settings]\nKey=c\n", "[Settings]\nKey=new\nkey=b\n[settings]\nKey=c\n"},
        {"[Settings]\nKey= new \t\n", "[Settings]\nKey= new \t\n"},
    };
    for (const auto& each : cases) {
        Put(each.before);
        file.Write("Settings", "Key", "new");
        EXPECT_EQ(Text(), each.after);
        EXPECT_EQ(file.Read("Settings", "Key", ""), "new");
    }
    EXPECT_EQ(file.LastWriteError(), "");
}

TEST_F(IniFileTest, ValueIsOneLineAndMayBeBlank) {
    file.Write("Settings", "Key", std::string_view("a\r\nb\nc\rd\0e", 10));
    EXPECT_EQ(Text(), "[Settings]\nKey=a b c d e\n");
    file.Write("Settings", "Key", "");
    EXPECT_EQ(Text(), "[Settings]\nKey=\n");
}

TEST_F(IniFileTest, OnAFullDiskOnlyValuesOfTheSameLengthAreWritten) {
    Put("\xEF\xBB\xBF[Settings]\r\nKey=old\r\n[KEYGEN]\r\nLASTID=41\r\n[Z]\r\nB=2\r\n");
    files.FillDisk();
    file.Write("KEYGEN", "LASTID", "42");
    EXPECT_EQ(file.LastWriteError(), "");
    file.Write("Settings", "Key", "new value");
    EXPECT_EQ(file.LastWriteError(), "No space left on device");
    file.Write("KEYGEN", "LASTID", "43");
    EXPECT_EQ(file.LastWriteError(), "");
    EXPECT_EQ(file.Read("Settings", "Key", ""), "old");
    EXPECT_EQ(Text(), "\xEF\xBB\xBF[Settings]\r\nKey=old\r\n[KEYGEN]\r\nLASTID=43\r\n[Z]\r\nB=2\r\n");
}

TEST_F(IniFileTest, OperatorsEditIsSeenAndKept) {
    Put("[Settings]\nA=1\nB=1\n");
    EXPECT_EQ(file.Read("Settings", "A", ""), "1");
    Put("[Settings]\nA=2\nB=1\nMine=yes\n");
    EXPECT_EQ(file.Read("Settings", "A", ""), "2");
    {
        const IniFile::Batch batch(file);
        file.Write("Settings", "B", "5");
        Put("[Settings]\n; a remark\nA=3\nB=1\n");
    }
    EXPECT_EQ(Text(), "[Settings]\n; a remark\nA=3\nB=5\n");
    disk.Remove(kPath);
    EXPECT_EQ(file.Read("Settings", "A", "gone"), "gone");
}

TEST_F(IniFileTest, BatchIsOneWriteAndNoneWithoutAChange) {
    files.faults.Add({.operation = FilesOperation::Replace, .nth = 2, .forever = true});
    for (int time = 0; time < 2; ++time) {
        const IniFile::Batch outer(file);
        for (int n = 1; n <= 500; ++n) {
            const IniFile::Batch inner(file);
            file.Write("Settings" + std::to_string(n), "Key", "value");
            EXPECT_EQ(file.Read("settings" + std::to_string(n), "key", ""), "value");
        }
    }
    EXPECT_EQ(file.LastWriteError(), "");
    EXPECT_EQ(IniDocument(Text()).Find("Settings500", "Key"), "value");
    EXPECT_EQ(IniDocument(Text()).SectionNames().size(), 500u);
}

TEST_F(IniFileTest, UnusableFileIsNeverWrittenTo) {
    const std::string binary("SQLite format 3\0[Settings]\nKey=x\n", 33);
    Put(binary);
    EXPECT_EQ(file.Problem(), "/home.ini is no text file.");
    EXPECT_EQ(file.Read("Settings", "Key", "default"), "default");
    file.Write("Settings", "Key", "new");
    {
        const IniFile::Batch batch(file);
        file.Write("Settings", "Key", "new");
    }
    EXPECT_EQ(Text(), binary);
    EXPECT_EQ(file.LastWriteError(), file.Problem());

    Put("[Settings]\nKey=x\n");
    files.faults.Add({.operation = FilesOperation::Read, .forever = true, .description = "Permission denied"});
    EXPECT_EQ(file.Problem(), "Permission denied");
    file.Write("Settings", "Key", "new");
    EXPECT_EQ(Text(), "[Settings]\nKey=x\n");
    files.faults.Heal();
    EXPECT_EQ(file.Problem(), "");
    EXPECT_EQ(file.Read("Settings", "Key", ""), "x");
}

}  // namespace
}  // namespace korvane
