// Offers the groups that exist while one is typed.
#pragma once

#include <string>
#include <vector>

class QLineEdit;

namespace korvane {

/// The box stays as it is. Without a choice in the list, Return does what it does without the list.
void OfferGroups(QLineEdit& box, const std::vector<std::string>& groups);

}  // namespace korvane
