// The reports as the monitor cycle asks for them: everything is written anew.
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
