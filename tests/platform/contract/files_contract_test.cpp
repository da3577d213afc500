// What the rooms rely on in all files: each operation happens as a whole, or says why not and leaves everything as it was.
#include <gtest/gtest.h>

#include "base/error.h"
#include "platform/contract/files_benches.h"

namespace korvane::contract {
namespace {

template <class Bench>
class FilesContract : public testing::Test {
protected:
    std::string Path(const std::string& name) const { return bench.folder + "/" + name; }

    Bench bench;
    Files& files = bench.files;
};
TYPED_TEST_SUITE(FilesContract, FilesBenches, FilesBenchNames);

TYPED_TEST(FilesContract, WhatIsNotThereIsNoError) {
    EXPECT_FALSE(this->files.Exists(this->Path("no")));
    EXPECT_FALSE(this->files.Read(this->Path("no")));
    EXPECT_FALSE(this->files.Read(this->Path("no/where")));
}

TYPED_TEST(FilesContract, ReplaceGivesTheWholeTextOrNone) {
    const std::string path = this->Path("a.ini");
    const std::string bytes("line\r\n\0\xFF end", 12);
    for (const std::string& text : {std::string("old"), bytes, std::string()}) {
        const auto before = this->files.Identity(path);
        this->files.Replace(path, text);
        EXPECT_EQ(this->files.Read(path), text);
        const auto after = this->files.Identity(path);
        EXPECT_NE(after, before);
        EXPECT_EQ(after->size, static_cast<std::int64_t>(text.size()));
        EXPECT_EQ(this->files.Identity(path), after);
    }
}

TYPED_TEST(FilesContract, AppendAddsAtTheEndAndMakesTheFile) {
    const std::string path = this->Path("a.txt");
    this->files.Append(path, "one\r\n");
    const auto before = this->files.Identity(path);
    this->files.Append(path, "two\r\n");
    EXPECT_EQ(this->files.Read(path), "one\r\ntwo\r\n");
    EXPECT_NE(this->files.Identity(path), before);
}

TYPED_TEST(FilesContract, NamesComeAndGo) {
    const std::string a = this->Path("a");
    const std::string b = this->Path("b");
    this->files.Publish(a, "old");
    this->files.Publish(a, "page");
    this->files.PublishPage(b, [](const TakeText& take) { take("pa"), take("ge"); });
    this->files.CreateFolder(this->Path("folder"));
    EXPECT_EQ(this->files.Read(b), "page");
    EXPECT_EQ(this->files.FileNames(this->bench.folder), (std::vector<std::string>{"a", "b"}));

    this->files.Publish(this->Path("new"), "new");
    this->files.Rename(this->Path("new"), a);
    EXPECT_EQ(this->files.Read(a), "new");
    EXPECT_EQ(this->files.Read(b), "page");
    this->files.Remove(b);
    this->files.Remove(b);
    EXPECT_EQ(this->files.FileNames(this->bench.folder), std::vector<std::string>{"a"});

    EXPECT_THROW(this->files.Rename(b, a), Error);
    EXPECT_THROW(this->files.Remove(this->Path("folder")), Error);
    EXPECT_THROW(this->files.FileNames(b), Error);
    EXPECT_THROW(this->files.Publish(this->Path("no/where"), "x"), Error);
    EXPECT_EQ(this->files.Read(a), "new");
}

TYPED_TEST(FilesContract, OverwriteKeepsTheLength) {
    const std::string path = this->Path("counter");
    EXPECT_THROW(this->files.Overwrite(path, 0, "x"), Error);
    EXPECT_FALSE(this->files.Exists(path));
    this->files.Replace(path, "LASTID=1234\n");
    this->files.Overwrite(path, 7, "1235");
    EXPECT_EQ(this->files.Read(path), "LASTID=1235\n");
    this->files.Overwrite(path, 11, "!");
    for (const std::int64_t offset : {-1, 9, 400})
        EXPECT_THROW(this->files.Overwrite(path, offset, "xxxx"), Error) << offset;
    EXPECT_EQ(this->files.Read(path), "LASTID=1235!");
}

TYPED_TEST(FilesContract, CopiesAreFilesOfTheirOwn) {
    this->files.Replace(this->Path("a"), "text");
    this->files.Replace(this->Path("b"), "other");
    for (const char* to : {"b", "c"}) {
        this->files.Copy(this->Path("a"), this->Path(to));
        EXPECT_EQ(this->files.Read(this->Path(to)), "text");
    }
    this->files.Append(this->Path("a"), "!");
    EXPECT_EQ(this->files.Read(this->Path("b")), "text");
    EXPECT_THROW(this->files.Copy(this->Path("no"), this->Path("b")), Error);
    EXPECT_EQ(this->files.Read(this->Path("b")), "text");
}

TYPED_TEST(FilesContract, FoldersComeWithThoseAboveThem) {
    const std::string path = this->Path("x/y/z");
    EXPECT_THROW(this->files.Replace(path + "/a", "text"), Error);
    EXPECT_THROW(this->files.Append(path + "/a", "text"), Error);
    EXPECT_FALSE(this->files.Exists(this->Path("x")));
    for (int i = 0; i < 2; ++i)
        this->files.CreateFolder(path);
    EXPECT_TRUE(this->files.Exists(path));
    this->files.Replace(path + "/a", "text");
    EXPECT_EQ(this->files.Read(path + "/a"), "text");
    EXPECT_THROW(this->files.CreateFolder(path + "/a"), Error);
    EXPECT_THROW(this->files.CreateFolder(path + "/a/b"), Error);
}

TYPED_TEST(FilesContract, AFolderIsNoFile) {
    const std::string path = this->Path("folder");
    this->files.CreateFolder(path);
    EXPECT_THROW(this->files.Read(path), Error);
    EXPECT_THROW(this->files.Replace(path, "text"), Error);
    EXPECT_THROW(this->files.Append(path, "text"), Error);
    EXPECT_THROW(this->files.Copy(path, this->Path("copy")), Error);
    EXPECT_FALSE(this->files.Exists(this->Path("copy")));
}

}  // namespace
}  // namespace korvane::contract
