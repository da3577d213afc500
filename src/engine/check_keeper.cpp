#include "engine/check_keeper.h"

#include <algorithm>
#include <cstdlib>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "engine/server_table.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kTryAgainAfter = 1h;
/// A server may show another certificate to each check.
constexpr auto kSameMailAfter = 24h;

std::string LeftInWords(std::chrono::seconds left) {
    const bool inHours = left < 48h;
    const auto count = inHours ? left / 1h : left / 24h;
    return std::to_string(count) + (inHours ? " hour" : " day") + (count == 1 ? "" : "s");
}

}  // namespace

void CheckKeeper::Take(Recordset& rs, const CheckResult& result) {
    taken_.reset();
    const std::string problem = LastChecksProblem(ports_.settings);
    if (std::exchange(toldSetting_, problem) != problem && !problem.empty()) Tell(problem, kLogError);
    if (!Wanted()) return;
    IgnoreErrors([&] {
        taken_ = {.id = rs.Fields("ID").Value().Int64(), .when = ports_.clock.Now(), .phases = result.phases};
        const bool noAnswer = !result.strReason.empty() && !result.phases.certificateEnd;
        keepsCertificate_ = noAnswer && CheckKindOf(ColumnText(rs, "strType")) == CheckKind::Https;
    });
}

void CheckKeeper::Prepare(Recordset& rs, Connection& conn) {
    if (!taken_ || !taken_->phases.certificateEnd) return;
    const auto first = CertWarnDays(ports_.settings);
    if (!first) return;
    IgnoreErrors([&] {
        const DateTime end = *taken_->phases.certificateEnd;
        const auto limit = LimitOf(end, *first);
        if (!limit) return;
        const CertificateMail mail{taken_->id, end, *limit, ports_.clock.Now()};
        if (!IsMailed(conn, mail) && Mail(rs, mail)) mailed_.push_back(mail);
    });
}

// Returns the latest moment that has come, so that one mail stands for those that were missed.
std::optional<CheckKeeper::Limit> CheckKeeper::LimitOf(DateTime end, std::chrono::days first) const {
    const auto left = end - ports_.clock.Now();
    std::optional<Limit> limit;
    for (const Limit each : {Limit(first), Limit(first) / 2, Limit(72), Limit(24), Limit(0)})
        if (left <= each && each <= first && (!limit || each < *limit)) limit = each;
    return limit;
}

bool CheckKeeper::IsMailed(Connection& conn, const CertificateMail& mail) {
    std::vector<CertificateMail> mails;
    IgnoreErrors([&] { mails = table_.MailsOf(conn, mail.idEntry); });  // without a mail there is no table
    mails.insert(mails.end(), mailed_.begin(), mailed_.end());
    return std::any_of(mails.begin(), mails.end(), [&](const CertificateMail& each) {
        if (each.idEntry != mail.idEntry) return false;
        if (each.end == mail.end) return each.limit <= mail.limit;
        return each.limit == mail.limit && std::chrono::abs(mail.mailed - each.mailed) < kSameMailAfter;
    });
}

// Returns whether it need not be tried again.
bool CheckKeeper::Mail(Recordset& rs, const CertificateMail& mail) {
    const auto tick = ports_.clock.GetTickCount();
    if (const auto failed = nextTry_.find(mail.idEntry); failed != nextTry_.end() && tick < failed->second) return false;
    nextTry_.erase(mail.idEntry);
    const auto left = mail.end - mail.mailed;
    const std::string strDesc = TextOrEmpty(rs, "strDesc");
    const std::string begin = left > 0s ? "ends in " + LeftInWords(left) : "has ended";
    const std::string text = "The certificate of https://" + TextOrEmpty(rs, "strAddress_IP") + " (" + strDesc + ") " + begin +
                             ", on " + mail.end.Text() + ".";
    const Notification notice{TextOrEmpty(rs, "strEmailList1"), TextOrEmpty(rs, "strEmailList2"), TextOrEmpty(rs, "strEmailFrom"),
                              "Certificate " + begin + " (" + strDesc + ")",
                              IsSet(rs, "bNotSendBody", false) ? "" : "Time: " + mail.mailed.Text() + "\r\n\r\n" + text};
    const std::string everybody = Trim(notice.strTo1 + " " + notice.strTo2);
    const bool isOn = ports_.outbox.IsOn();
    if (everybody.empty() ||
        (isOn && !ports_.outbox.Put(notice, MailEvent::Other, ports_.outbox.IsShared() ? mail.idEntry : 0))) {
        Tell(text + " Nobody is notified.", kLogInformation);
        return true;
    }
    if (isOn) {
        Tell(text + " A mail is in the outbox for: '" + everybody + "'.", kLogInformation);
        return true;
    }
    const SendOutcome outcome = ports_.send(notice);
    if (!outcome.sent) nextTry_[mail.idEntry] = tick + kTryAgainAfter;
    Tell(text + (outcome.sent ? " Mailed to: '" + everybody + "'."
                              : " The mail about it FAILED because '" + outcome.strError + "'."),
         outcome.sent ? kLogInformation : kLogError);
    return outcome.sent;
}

void CheckKeeper::WriteWith(Connection& conn) {
    noted_ = false;
    try {
        if (taken_ && keepsCertificate_)
            IgnoreErrors([&] {
                if (const auto before = table_.Read(conn, taken_->id))
                    taken_->phases.certificateEnd = before->phases.certificateEnd;
            });
        if (taken_) table_.Write(conn, *taken_);
        for (const CertificateMail& mail : mailed_)
            table_.AddMail(conn, mail);
        noted_ = true;
    } catch (const std::exception& error) {
        const std::string problem = "What the check measured could not be kept: " + std::string(error.what());
        if (std::exchange(toldRefusal_, problem) != problem) Tell(problem, kLogError);
    }
}

void CheckKeeper::Committed() {
    taken_.reset();
    if (noted_) mailed_.clear();
}

void CheckKeeper::Tell(const std::string& text, std::string_view messageClass) {
    ports_.status.setStatusMSG(text);
    ports_.log.WriteLog(kLogOrdinary, messageClass, text);
}

}  // namespace korvane
