// Publishes the reports for the monitor cycle: always writes everything.
#pragma once

#include <string>

#include "engine/collaborators.h"
#include "reports/pipeline.h"

namespace korvane {

class CyclePublisher : public ReportPublisher {
public:
    explicit CyclePublisher(Reports& reports) : reports_(reports) {}

    std::string PublishReports() override {
        std::string strErr;
        reports_.PublishReports(false, strErr);
        return strErr;
    }

private:
    Reports& reports_;
};

}  // namespace korvane
