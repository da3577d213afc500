// Pages of the website: addresses of commands and forms, their encoding and refusals, and what is said without a browser.
#include "shell/web/web_pages.h"

#include <gtest/gtest.h>

#include "shell/web/url_encode.h"
#include "shell/web/web_forms.h"
#include "support/memory_files.h"
#include "support/recording_operator.h"
#include "support/recording_processes.h"
#include "support/virtual_world.h"

namespace korvane {
namespace {

using Messages = std::vector<RecordingOperator::Message>;
using Texts = std::vector<std::string>;

const std::string kSite = "https://www.example.com/";

class WebPagesTest : public testing::Test {
protected:
    WebPagesTest() {
        files.CreateFolder("/home");
        file.Write("Settings", "uniqueid", "20261121150000");
    }

    VirtualWorld world{DateTime::Of(2026, 11, 21, 15, 0, 0)};
    MemoryFiles files;
    IniFile file{files, "/home/kvurlwatchn.ini"};
    RecordingOperator person;
    RecordingProcesses processes;
    WebPages pages{{processes, person, file}};
};

TEST_F(WebPagesTest, EachCommandOpensItsPage) {
    const std::pair<WebPage, std::string> cases[] = {
        {WebPage::mnuHelpWeb, "help.asp"},          {WebPage::mnuHelpFeatures, "features.asp?id=20261121150000"},
        {WebPage::mnuTerms, "terms.asp"},           {WebPage::AboutLink, "default.asp?id=20261121150000"},
        {WebPage::ServiceHelp, "help.asp#service"}, {WebPage::ShutdownHelp, "help.asp#shutdown"},
        {WebPage::RulesHelp, "help.asp?q_id=62"},
    };
    EXPECT_EQ(pages.GetHelpURL(), kSite + "help.asp");
    for (const auto& [page, path] : cases) {
        pages.Show(page);
        EXPECT_EQ(pages.GetHelpURL(), kSite + path);
        EXPECT_EQ(processes.opened.back(), kSite + path);
    }
    std::string shown;
    pages.OnShow([&] { shown = pages.GetHelpURL(); });
    pages.Show("https://www.example.com/else");
    EXPECT_EQ(shown, "https://www.example.com/else");
    EXPECT_EQ(processes.opened.size(), std::size(cases));
}

TEST_F(WebPagesTest, SaysWhyNoPageOpens) {
    processes.browserStarts = false;
    EXPECT_FALSE(pages.OpenHelpURL());
    EXPECT_FALSE(pages.OpenAddress("https://www.example.com/form"));
    processes.hasBrowser = false;
    EXPECT_FALSE(pages.TheirBrowser2());
    EXPECT_FALSE(pages.OpenHelpURL());
    EXPECT_EQ(person.messages, (Messages{{"URL Failed", "Web Page not Opened"},
                                         {"URL Failed", "Web Page not Opened"},
                                         {"Browser Not Found", "Could not find associated Browser"},
                                         {"Korvane", "Korvane can't open any URL until you configure a default browser."}}));
}

TEST_F(WebPagesTest, TellsTheKindOfBrowser) {
    const std::pair<std::string, std::string> cases[] = {
        {"firefox.desktop", "Other Browser: firefox.desktop"},
        {"/opt/wine/IEXPLORE.EXE", "Internet Explorer Browser "},
        {"Internet Explorer.desktop", "Internet Explorer Browser "},
    };
    for (const auto& [browser, type] : cases) {
        processes.browser = browser;
        EXPECT_EQ(pages.BrowserType(), type);
    }
    processes.hasBrowser = false;
    EXPECT_EQ(pages.BrowserType(), "Other Browser: ");
}

TEST_F(WebPagesTest, EncodesByteByByte) {
    using namespace std::string_literals;
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"plain", "plain"},
        {"%, /~:$&", "%25%2C%20%2F%7E%3A%24%26"},
        {"why?", "why?"},
        {"a\r\nb\r\n\r\nc", "aDAbDADAc"},
        {"a\nb\rc\n\r", "a\nb\rc\n\r"},
        {"%20", "%2520"},
        {"#+=\"'<>\\@\t", "#+=\"'<>\\@\t"},
        {"caf\xC3\xA9 \xFF", "caf\xC3\xA9%20\xFF"},
        {"a\0b c"s, "a\0b%20c"s},
    };
    for (const auto& [text, encoded] : cases)
        EXPECT_EQ(URLEncodeText(text, world.events), encoded) << text;

    int delivered = 0;
    world.After(std::chrono::milliseconds(0), [&] { ++delivered; });
    EXPECT_EQ(URLEncodeText(std::string(1'000'000, ' '), world.events).size(), 3'000'000U);
    EXPECT_EQ(delivered, 1);
}

TEST_F(WebPagesTest, FeedbackIsAnAddressOrARefusal) {
    const Feedback feedback{"me@example.com", "Nice & easy?\nBye", "1.0.0", "Other Browser: firefox.desktop"};
    const WebForm form = FeedbackForm(feedback, world.events);
    EXPECT_EQ(form.refusal, "");
    EXPECT_EQ(form.address,
              kSite +
                  "zshared/feedback.asp?prod=Korvane&email=me@example.com&body=Nice%20%26%20easy?DAByeDAV1.0.0Other%20"
                  "Browser%3A%20firefox.desktop");
    for (const char* blank : {"", "  ", "\r\n\t "}) {
        const WebForm refused = FeedbackForm({"me@example.com", blank, "1.0.0", ""}, world.events);
        EXPECT_EQ(refused.refusal, "Please enter a comment or question, then click Send Comment.  Thank you.");
        EXPECT_EQ(refused.address, "");
    }
}

TEST_F(WebPagesTest, TellAFriendIsAnAddressOrARefusal) {
    const std::string noMessage =
        "Please enter a message that can be sent to your friends, then click the 'Send' button  Thank you.";
    const std::string noFriend =
        "Please supply one or more of your friends email addresses. Then click the 'Send' button  Thank you.";
    const auto notValid = [](const std::string& email) {
        return "The email address you supplied '" + email +
               "' does not appear to be valid. Please supply one or more valid email addresses, then click the 'Send' button  "
               "Thank you.";
    };
    struct Case {
        std::array<std::string, 3> emails;
        std::string message;
        std::string refusal;
    };
    const Case cases[] = {
        {{"", "", ""}, "", noMessage},
        {{"no address", "", ""}, " \r\n", noMessage},
        {{"", " ", ""}, "Hi", noFriend},
        {{"no address", "", ""}, "Hi", notValid("no address")},
        {{"a@b.c", "", "a.b@c"}, "Hi", notValid("a.b@c")},
        {{"a@b.c", "a@", ".@"}, "Hi", notValid("a@")},
        {{"", "", "a@b@c.d"}, "Hi", ""},
        {{"a@b.c", "", ""}, "Hi", ""},
    };
    for (const Case& c : cases) {
        const WebForm form = TellAFriendForm({c.emails, "", "", c.message}, world.events);
        EXPECT_EQ(form.refusal, c.refusal);
        EXPECT_EQ(form.address.empty(), !c.refusal.empty());
    }
    EXPECT_EQ(TellAFriendForm({{"a@b.c", "", "d@e.f"}, "me", "My Name", "Hi\r\nthere"}, world.events).address,
              kSite +
                  "zshared/tellafriend.asp?prod=Korvane&email1=a@b.c&email2=&email3=d@e.f&fromemail=me&fromname=My%20Name&body="
                  "HiDAthere");
}

}  // namespace
}  // namespace korvane
