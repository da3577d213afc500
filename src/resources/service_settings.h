// The settings of the service monitor, with one line for each watched service.
#pragma once

#include <memory>

#include "base/text.h"
#include "resources/alert_settings.h"

namespace korvane {

class clsSvcMon : public AlertSettings {
public:
    using SvcList = std::shared_ptr<std::vector<std::string>>;

    /// The file is `<dir>/SvcMon.dat`. `files` must outlive this.
    clsSvcMon(Files& files, const std::string& dir) : AlertSettings(files, dir, "SvcMon.dat", {kEmail, kDisable, kRestart}) {}

    /// Replaces the list by that of the file.
    void OpenFile() override {
        services_ = std::make_shared<std::vector<std::string>>();
        AlertSettings::OpenFile();
    }

    /// The names of the services as the system knows them, never null. The caller shares the list that is set; it is not copied
    /// and must not be null.
    const SvcList& getSvcList() const { return services_; }
    void setSvcList(SvcList services) { services_ = std::move(services); }

    /// "1": a mail when a service that had stopped runs again. Any other text: none.
    const std::string& getRestart() const { return Get(kRestart); }
    void setRestart(std::string_view text) { Set(kRestart, text); }

protected:
    void TakeOther(std::string_view line, std::string_view value) override {
        if (Holds(line, kService)) services_->emplace_back(value);
    }
    std::vector<std::string> OtherLines() const override {
        std::vector<std::string> lines;
        for (const std::string& service : *services_)
            lines.push_back(std::string(kService) + service);
        return lines;
    }

private:
    static constexpr std::string_view kRestart = "RESTART=";
    static constexpr std::string_view kService = "SVC=";

    SvcList services_ = std::make_shared<std::vector<std::string>>();
};

}  // namespace korvane
