// The published pages with the installation's templates and pictures, as a real browser shows them.
#include "support/world.h"
#include "system/program.h"

namespace korvane::test::pages_test {

// Two customers with entries of each type and each status, with failures whose reasons hold a script, and with response times.
constexpr const char* kEntries = R"(
INSERT INTO Servers (ID, idCustomer, strGroup, strDesc, strAddress_IP, strType, strCurStatus, nAveResponse, nAveSession, nSuccess, nFail,
    nPercentUp, dtNextCheck, datelastfail, datelastreset)
  SELECT key + 1, key % 2, iif(key % 3, 'Web', 'Büro') || (key % 2), 'Entry & co.', 'a-rather-long-name-of-a-server.example.org', value,
    trim(substr('UP       DOWN     Failing  Down-TimeInactive ', key % 5 * 9 + 1, 9)), 137, 90.5, 12345, 67, 98.7, '2027-01-01 00:00:00',
    '2026-11-21 14:04:00', '2026-01-01 00:00:00'
  FROM json_each('[''HTTP'',''HTTPS'',''PING'',''DNS'',''ECHO'',''FINGER'',''FTP'',''GOPHER'',''IMAP'',''IMAP4'',''NNTP'',''POP'',''POP2'',''POP3'',
    ''SMTP'',''SNMP'',''SNPP'',''TELNET'',''OTHER PORT'']');
CREATE TEMP TABLE n AS WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 30) SELECT i FROM n;
INSERT INTO Failures (ID, IDParent, strDesc, strAction, strReason, dateFail)
  SELECT ID * 100 + i, ID, strDesc, 'None.<ul><li>noted</ul>', 'No answer.<script>document.title = 7</script>',
    datetime('2026-11-21 14:04:00', '-' || i || ' hours') FROM Servers, n;
INSERT INTO Response (id, idParent, txtType, dtCur, nAveResponse)
  SELECT ID * 1000 + i, ID, iif(i < 20, 'hour', 'day'), datetime('2026-11-21 14:04:00', '-' || i || ' hours'), 80 + i % 7 FROM Servers, n;
)";

// A page that opens all `pages` in frames, wide and narrow, and writes down what it sees in them.
constexpr const char* kLook = R"(<meta charset="utf-8"><body><pre id="seen"></pre><script>
const links = new Set();
const say = (...words) => document.getElementById("seen").append(words.join("|") + "\n");
async function look(page, width) {
  const frame = document.createElement("iframe");
  Object.assign(frame, {width, height: 800, src: page});
  document.body.append(frame);
  await new Promise(loaded => frame.onload = loaded);
  const inside = frame.contentDocument;
  for (const image of inside.images) if (!image.complete || !image.naturalWidth) say("bad", "no picture", page, image.src);
  for (const link of inside.links) links.add(decodeURI(link.href));
  for (const source of inside.querySelectorAll("[src]")) if (!/^(file|data):/.test(source.src)) say("bad", "asks", source.src);
  if (inside.documentElement.scrollWidth > frame.clientWidth) say("bad", "wider than", width, page);
  if (inside.title == "7") say("bad", "a script ran", page);
  if (getComputedStyle(inside.body).fontFamily == getComputedStyle(document.body).fontFamily) say("bad", "no style", page);
  say("looked", page);
  frame.remove();
}
(async () => {
  for (const page of pages) for (const width of [1280, 390]) await look(page, width);
  for (const link of links) if (!pages.includes(link)) say("bad", "leads nowhere", link);
  for (const page of pages) if (!links.has(page) && !page.endsWith("/groups.htm")) say("bad", "nobody leads to", page);
  say("done");
})();
</script></body>)";

TEST(Pages, ShowInABrowserWithPicturesStyleAndLinksButRunNoScript) {
    KORVANE_NEEDS("chromium");
    const Program program(kBegin, ReplaceAll(kEntries, "''", "\\\""));
    World world({.home = program.home.Path()});
    world.Start();
    world.run.TheDesk().reports.PublishReports(false);
    const std::string pages = Answer("find " + program.home.At("Reports") + " -name '*.htm' -printf '\"file://%p\",'");
    ASSERT_GT(Count(pages, "\","), 38);
    program.home.Write("look.htm", "<!DOCTYPE html><script>const pages = [" + pages + "];</script>" + kLook);

    const Folder browser;
    const Process process(
        "exec chromium --headless --no-sandbox --disable-gpu --disable-dev-shm-usage --no-first-run "
        "--allow-file-access-from-files "
        "--virtual-time-budget=60000 --user-data-dir=data --dump-dom file://" +
            program.home.At("look.htm"),
        browser);
    ASSERT_TRUE(process.Ended());
    const std::string output = browser.Read("output");
    EXPECT_EQ(Count(output, "\nlooked|") + 1, 2 * Count(pages, "\","));
    EXPECT_TRUE(Holds(output, "\ndone\n") && !Holds(output, "\nbad|")) << output;
}

}  // namespace korvane::test::pages_test
