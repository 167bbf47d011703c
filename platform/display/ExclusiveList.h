// A list whose focused row is the user's single choice.
#pragma once

#include "display/List.h"

namespace DisplayAPI {

class ExclusiveList : public List {
public:
    ExclusiveList();
    ~ExclusiveList() override;

    const char* kind() const override { return "exclusiveList"; }

protected:
    void describeRow(nlohmann::json& row, int index) const override;
};

} // namespace DisplayAPI
