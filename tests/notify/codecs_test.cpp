// MD5, HMAC-MD5 and Base64 against the vectors of their RFCs, and the texts in which people and servers name things.
#include <gtest/gtest.h>

#include "base/text.h"
#include "notify/base64.h"
#include "notify/md5.h"
#include "notify/recipients.h"
#include "notify/smtp_reply.h"

namespace korvane {
namespace {

using Texts = std::vector<std::string>;

TEST(Md5, GivesTheDigestsOfRfc1321) {
    const std::pair<std::string, const char*> kVectors[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890", "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto& [text, digest] : kVectors)
        EXPECT_EQ(HexOf(Md5(text)), digest) << text;
}

TEST(HmacMd5, GivesTheDigestsOfRfc2202And2195) {
    struct Vector {
        std::string key;
        std::string text;
        const char* digest;
    };
    std::string counting;
    for (char byte = 1; byte <= 25; ++byte)
        counting += byte;
    const Vector kVectors[] = {
        {std::string(16, '\x0b'), "Hi There", "9294727a3638bb1c13f48ef8158bfc9d"},
        {"Jefe", "what do ya want for nothing?", "750c783e6ab0b503eaa86e310a5db738"},
        {std::string(16, '\xaa'), std::string(50, '\xdd'), "56be34521d144c88dbb8c733f0e8b3f6"},
        {counting, std::string(50, '\xcd'), "697eaf0aca3a3aea3a75164746ffaa79"},
        {std::string(80, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First", "6b1ab7fe4bd7bf8f0b62e6ce61b9d0cd"},
        {"tanstaaftanstaaf", "<1896.697170952@postoffice.reston.mci.net>", "b913a602c7eda7a495b4e6e7334d3890"},
    };
    for (const Vector& vector : kVectors)
        EXPECT_EQ(HmacMd5Hex(vector.key, vector.text), vector.digest) << vector.text;
}

TEST(Base64, GivesTheVectorsOfRfc4648BothWays) {
    const std::pair<const char*, const char*> kVectors[] = {{"", ""},
                                                            {"f", "Zg=="},
                                                            {"fo", "Zm8="},
                                                            {"foo", "Zm9v"},
                                                            {"foob", "Zm9vYg=="},
                                                            {"fooba", "Zm9vYmE="},
                                                            {"foobar", "Zm9vYmFy"},
                                                            {"\xfb\xff\xbf", "+/+/"}};
    for (const auto& [text, encoded] : kVectors) {
        EXPECT_EQ(Base64Encode(text), encoded);
        EXPECT_EQ(Base64Decode(encoded), text);
    }
    EXPECT_EQ(Base64Decode("Zg==Zm9v"), "ffoo");
    for (const char* wrong : {"Zg=", "Zg", "Zm9v\r\n", "Zm9\xff", "Z===", "====", "Z=g=", "Zg=g", "Zm-_"})
        EXPECT_EQ(Base64Decode(wrong), "") << wrong;
}

TEST(Base64, AttachmentLinesAreOf72CharactersAndOneCaseLosesItsLineEnd) {
    for (std::size_t size = 0; size <= 120; ++size) {
        const std::string contents(size, 'x');
        int lines = 0;
        const std::string encoded = Base64EncodeLines(contents, [&] { ++lines; });
        const bool endsInLine = size == 0 || size % 54 % 3 != 1;
        EXPECT_EQ(size > 0 && encoded.ends_with("\r\n"), size > 0 && endsInLine) << size;
        EXPECT_EQ(Base64Decode(ReplaceAll(encoded, "\r\n", "")), contents) << size;
        EXPECT_EQ(lines, static_cast<int>((size + 53) / 54));
        for (const std::string& line : Split(ReplaceAll(encoded, "\r\n", "\n"), '\n'))
            EXPECT_LE(line.size(), 72u);
    }
}

TEST(Recipients, AreFoundInWhatPeopleWrite) {
    struct Case {
        const char* text;
        const char* normalised;
        const char* list;
        Texts recipients;
    };
    const Case kCases[] = {
        {"a@x, b@y  c@z", "a@x;b@y;c@z", "<a@x>, <b@y>  <c@z>", {"<a@x>", "<b@y>", "<c@z>"}},
        {"Ann <a@b>, c@d", "Ann;<a@b>;c@d", "Ann <a@b>, <c@d>", {"<a@b>", "<c@d>"}},
        {"Ann <a@b>,c@d", "Ann;<a@b>;c@d", "Ann <a@b>,<c@d>", {"<a@b>", "<c@d>"}},
        {" a@x;;b@y; ", "a@x;b@y;", "<a@x>;;<b@y>;", {"<a@x>", "<b@y>"}},
        {"nobody", "nobody", "nobody", {}},
        {"<a@x", "<a@x", "<a@x>", {"<a@x>"}},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.text);
        Texts recipients = {"<old@x>"};
        EXPECT_EQ(NormaliseRecipients(c.text), c.normalised);
        EXPECT_EQ(ParseRecipients(c.text, recipients), c.list);
        EXPECT_EQ(recipients, c.recipients);
    }
    Texts untouched = {"<old@x>"};
    EXPECT_EQ(ParseRecipients("  ", untouched), "");
    EXPECT_EQ(untouched, Texts{"<old@x>"});
}

TEST(Recipients, TenThousandAreNoBurden) {
    std::string many;
    for (int i = 0; i < 10'000; ++i)
        many += "person" + std::to_string(i) + "@example.com, ";
    Texts recipients;
    ParseRecipients(many, recipients);
    EXPECT_EQ(recipients.size(), 10'000u);
    EXPECT_EQ(Split(NormaliseRecipients(many), ';').size(), 10'001u);
}

TEST(SmtpReply, WordsAreKnownByTheirFirstCharacters) {
    const std::pair<ReplyKind, Texts> kWords[] = {
        {ReplyKind::Smtp, {"220", "220 ", "220\r", "\r220", "220-", "250-", "354 ", "535 ", "\r554"}},
        {ReplyKind::Pop, {"+OK", "+OK ", "+OK\r", "\r+OK", "-ERR"}},
        {ReplyKind::Unknown, {"", "2", "25", "221-", "535-", "299 ", "250x", "+ok ", "-ER", " 250", "\n250"}},
    };
    for (const auto& [kind, words] : kWords) {
        for (const std::string& word : words)
            EXPECT_EQ(KindOfReply(word), kind) << word;
    }
    EXPECT_EQ(ReplyCode("250-"), 250);
    EXPECT_EQ(ReplyCode("\r334"), 334);
    EXPECT_EQ(ReplyCode("+OK "), 0);
}

TEST(SmtpReply, MechanismsAreReadFromTheLinesThatNameThem) {
    const std::pair<const char*, AuthMechanisms> kReplies[] = {
        {"250-mail\r\n250-AUTH CRAM-MD5 LOGIN PLAIN\r\n250 SIZE", {true, true, true}},
        {"250 auth plain gssapi", {false, false, true}},
        {"250-AUTH=LOGIN PLAIN\r\n250 OK", {}},
        {"250-AUTHENTICATE LOGIN", {}},
        {"250-STARTTLS\r\n250 SIZE 1000", {}},
    };
    for (const auto& [text, expected] : kReplies) {
        AuthMechanisms mechanisms;
        ParseAuthMechanisms(text, mechanisms);
        EXPECT_EQ(mechanisms, expected) << text;
    }
    AuthMechanisms kept{.login = true};
    ParseAuthMechanisms("250-AUTH PLAIN", kept);
    EXPECT_EQ(kept, (AuthMechanisms{false, true, true}));
}

}  // namespace
}  // namespace korvane
