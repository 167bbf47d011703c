// A list of rows with check marks, toggled with Ok.
#pragma once

#include <list>
#include <vector>

#include "display/List.h"

namespace DisplayAPI {

// Ok toggles the focused row's mark instead of reporting to the application.
class MultipleList : public List {
public:
    MultipleList();
    ~MultipleList() override;

    // One flag per row, in row order; missing flags clear the remaining rows.
    void setSelectedFlags(const std::list<bool>& flags);
    std::list<bool> getSelectedFlags() const;

    const char* kind() const override { return "multipleList"; }

protected:
    void okPressed() override;
    void describeRow(nlohmann::json& row, int index) const override;
};

} // namespace DisplayAPI
