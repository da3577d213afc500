#include "engine/collaborators.h"

namespace korvane {

std::string NoReports::PublishReports() {
    return "This version does not publish reports.";
}

}  // namespace korvane
