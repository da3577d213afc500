#include "shell/cli/print_phases.h"

#include <QJsonArray>
#include <algorithm>
#include <cstddef>

#include "base/text.h"
#include "shell/cli/session.h"
#include "shell/list/entry_detail_text.h"

namespace korvane {
namespace {

std::size_t Characters(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

double Milliseconds(CheckPhases::Duration time) {
    return static_cast<double>(time.count()) / 1000;
}

}  // namespace

std::vector<std::string> PrintPhases(const CheckPhases& phases, DateTime now) {
    auto words = PhasesInWords(phases);
    std::size_t names = 0, times = 0;
    for (auto& [name, took] : words) {
        name = WithoutControls(name);
        names = std::max(names, Characters(name));
        times = std::max(times, took.size());
    }
    std::vector<std::string> lines;
    for (const auto& [name, took] : words)
        lines.push_back(name + std::string(names - Characters(name) + 2 + times - took.size(), ' ') + took);
    if (const std::string certificate = CertificateInWords(phases, now); !certificate.empty())
        lines.push_back("certificate " + certificate);
    return lines;
}

QJsonObject PhasesForJson(const CheckPhases& phases) {
    QJsonObject object;
    const std::pair<const char*, std::optional<CheckPhases::Duration>> all[] = {
        {"name", phases.name},           {"connect", phases.connect}, {"tls", phases.tls},
        {"firstByte", phases.firstByte}, {"whole", phases.whole},     {"leftOver", phases.LeftOver()}};
    for (const auto& [name, time] : all)
        if (time) object.insert(name, Milliseconds(*time));
    QJsonArray steps;
    for (const CheckPhases::Step& step : phases.steps)
        steps.append(QJsonObject{{"awaited", ForJson(step.awaited)}, {"milliseconds", Milliseconds(step.took)}});
    if (!steps.isEmpty()) object.insert("steps", steps);
    if (phases.certificateEnd) object.insert("certificateEnd", ForJson(phases.certificateEnd->Text()));
    return object;
}

}  // namespace korvane
