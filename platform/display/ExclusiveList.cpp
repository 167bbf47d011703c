// Exclusive lists.
#include "display/ExclusiveList.h"

#include <nlohmann/json.hpp>

namespace DisplayAPI {

ExclusiveList::ExclusiveList() : List(1) {}

ExclusiveList::~ExclusiveList() {
    retire();
}

void ExclusiveList::describeRow(nlohmann::json& row, int index) const {
    row["chosen"] = index == getSelectedIndex();
}

} // namespace DisplayAPI
