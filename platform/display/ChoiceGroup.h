// A group of choices in a form: radio buttons (exclusive) or check boxes (multiple).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "display/Item.h"

namespace DisplayAPI {

class Image;
struct ImageData;

class ChoiceGroup : public Item {
public:
    enum ChoiceGroupType { EXCLUSIVE = 0, MULTIPLE = 1 };

    ChoiceGroup(const std::string& label, ChoiceGroupType type);
    ~ChoiceGroup() override;

    // Returns the index of the new choice. The picture's content is shared, not the Image.
    int append(const std::string& text, Image* image);
    // Replaces the picture of choice `index` (null removes it); out-of-range indexes are ignored.
    void setImage(int index, Image* image);
    // Exclusive: selecting one deselects the others. Out-of-range indexes are ignored.
    void setSelectedIndex(int index, bool selected);
    int size() const;
    bool isSelected(int index) const;
    // Exclusive: the selected choice; multiple: the first selected; -1 for none.
    int getSelectedIndex() const;
    ChoiceGroupType getType() const;

    const char* kind() const override { return "choiceGroup"; }

    // ---- Used by the library itself. ----
    bool isFocusable() const override;
    bool itemKey(Key key) override;
    bool moveInside(int step) override;
    void focusArrives(int step) override;

protected:
    void describeContent(nlohmann::json& out) const override;

private:
    struct Choice {
        std::string text;
        std::shared_ptr<const ImageData> image;
        bool selected = false;
    };

    ChoiceGroupType mType;
    std::vector<Choice> mChoices;
    int mRow = 0;
};

} // namespace DisplayAPI
