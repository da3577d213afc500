#include "notify/global_email.h"

namespace korvane {

void clsGlobalEmail::OpenFile() {}
void clsGlobalEmail::UpdateData() {}

}  // namespace korvane
