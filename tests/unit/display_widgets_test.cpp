// Tests of the widget library driven through keys: focus, editing, choices, soft keys, menus, popups.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <list>
#include <memory>

#include "DisplayTestKit.h"
#include "TestPictures.h"
#include "display/Alert.h"
#include "display/ChoiceGroup.h"
#include "display/ContextMenu.h"
#include "display/ExclusiveList.h"
#include "display/Form.h"
#include "display/Image.h"
#include "display/ImageItem.h"
#include "display/List.h"
#include "display/ListItem.h"
#include "display/MenuCommand.h"
#include "display/MultipleList.h"
#include "display/PopupConfirm.h"
#include "display/PopupPlayer.h"
#include "display/SelectionField.h"
#include "display/SliderItem.h"
#include "display/TabScreen.h"
#include "display/Table.h"
#include "display/TableItem.h"
#include "display/TextBox.h"
#include "display/TextField.h"
#include "text/Translator.h"

using namespace DisplayAPI;

namespace {

TextField* textField(const std::string& label, TextField::FieldType type = TextField::ANY) {
    auto* field = new TextField(nullptr, 0, nullptr, type, false);
    field->setLabel(label);
    return field;
}

TextField* spacer() {
    auto* field = textField("");
    field->setReadOnlyMode(true);
    field->setSelectable(false);
    return field;
}

} // namespace

TEST_F(DisplayTest, FormFocusSkipsSpacersWrapsAndReportsEveryMove) {
    Form form(Form::PROPORTION_60_40);
    form.setOwnerId(7);
    form.addCommandListener(&recorder);
    TextField* name = textField("Name");
    auto* choices = new ChoiceGroup("Colour", ChoiceGroup::EXCLUSIVE);
    choices->append("red", nullptr);
    choices->append("blue", nullptr);
    form.append(name);
    form.append(spacer());
    form.appendChoiceGroup(choices);
    display->setCurrent(&form);

    EXPECT_EQ(form.getSelected(), name) << "the first focusable item takes the focus";
    press({Key::Down});
    EXPECT_EQ(form.getSelected(), choices) << "the spacer is skipped";
    press({Key::Down}); // second choice row, same item
    EXPECT_EQ(form.getSelected(), choices);
    EXPECT_EQ(snap()["screen"]["items"][2]["row"], 1);
    press({Key::Down}); // wraps to the top
    EXPECT_EQ(form.getSelected(), name);

    const auto calls = recorder.calls();
    ASSERT_EQ(calls.size(), 2u) << "moves between items are reported, moves inside a choice group not";
    for (const auto& call : calls) {
        EXPECT_EQ(call.command, Form::CURRENT_ITEM_CHANGED_COMMAND());
        EXPECT_EQ(call.type, Command::SCREEN);
        EXPECT_EQ(call.displayable, &form);
        EXPECT_TRUE(call.onLoopThread);
    }

    recorder.clear();
    form.setWrapAround(false);
    press({Key::Up});
    EXPECT_EQ(form.getSelected(), name) << "no wrap from the top";
    press({Key::Down, Key::Down, Key::Down, Key::Down});
    EXPECT_EQ(form.getSelected(), choices) << "no wrap from the bottom";
    EXPECT_EQ(recorder.calls().size(), 1u);

    recorder.clear();
    form.setSelected(name);
    form.setUsedWithTab(true, nullptr);
    press({Key::Up});
    ASSERT_EQ(recorder.types(), std::vector<int>{Command::TABBAR_ACTIVE});
    EXPECT_EQ(recorder.calls()[0].displayable, &form) << "without a tab screen the widget itself reports";

    const auto screen = snap()["screen"];
    EXPECT_EQ(screen["kind"], "form");
    EXPECT_EQ(screen["ownerId"], 7);
    EXPECT_EQ(screen["proportion"], 2);
    EXPECT_EQ(screen["items"][1]["focusable"], false);
    EXPECT_EQ(screen["items"][0]["focused"], true);
}

TEST_F(DisplayTest, TextEntryFollowsTypeLengthAndReadOnlyRulesAndReportsOnlyFinishedEdits) {
    Form form;
    form.addCommandListener(&recorder);
    form.addItemStateListener(&recorder);
    TextField* number = textField("PIN", TextField::NUMERIC);
    number->setMaxFieldLength(4);
    TextField* password = textField("Password", TextField::PASSWORD);
    TextField* fixed = textField("Fixed");
    fixed->setString("keep");
    fixed->setReadOnlyMode(true);
    form.append(number);
    form.append(password);
    form.append(fixed);
    display->setCurrent(&form);

    press({Key::Digit1, Key::Star, Key::Digit2});
    EXPECT_TRUE(display->typeText("3x4é56"));
    EXPECT_EQ(number->getString(), "1234") << "digits only, at most four";
    EXPECT_TRUE(number->isEditing());
    EXPECT_TRUE(recorder.items().empty()) << "no notice per keystroke";
    press({Key::Left, Key::Ok});
    EXPECT_EQ(number->getString(), "123");
    ASSERT_EQ(recorder.items().size(), 1u);
    EXPECT_EQ(recorder.items()[0], number);

    press({Key::Digit9, Key::Back});
    EXPECT_EQ(number->getString(), "123") << "Back undoes the edit";
    EXPECT_EQ(recorder.items().size(), 1u);

    press({Key::Down});
    display->typeText("sécret");
    press({Key::Down}); // moving away finishes the edit
    EXPECT_EQ(password->getString(), "sécret");
    EXPECT_EQ(recorder.items().size(), 2u);
    const auto items = snap()["screen"]["items"];
    EXPECT_EQ(items[1]["value"], "******") << "passwords are masked, one mark per character";
    EXPECT_EQ(items[0]["value"], "123");

    EXPECT_FALSE(display->typeText("x"));
    press({Key::Ok, Key::Digit5});
    EXPECT_EQ(fixed->getString(), "keep");
    EXPECT_EQ(recorder.items().size(), 2u);

    number->setString("123456789");
    EXPECT_EQ(number->getString(), "1234") << "the widget shortens what it is given";

    TextBox box(false);
    box.addCommandListener(&recorder);
    box.setTextBoxType(TextBox::NUMBER);
    box.setMaxSize(3);
    box.setText("98765");
    EXPECT_EQ(box.getText(), "987");
    box.setText("");
    display->setCurrent(&box);
    recorder.clear();
    display->typeText("a1b2c3d4");
    press({Key::Left, Key::Digit7, Key::Ok});
    EXPECT_EQ(box.getText(), "127");
    ASSERT_EQ(recorder.types(), std::vector<int>{Command::OK});
    EXPECT_EQ(recorder.calls()[0].displayable, &box);
    box.setTextBoxType(TextBox::PASSWORD);
    EXPECT_EQ(snap()["screen"]["text"], "***");
}

TEST_F(DisplayTest, ChoicesSelectionFieldsAndSlidersReportTheirChanges) {
    Form form;
    form.addCommandListener(&recorder);
    form.addItemStateListener(&recorder);
    auto* multiple = new ChoiceGroup("Extras", ChoiceGroup::MULTIPLE);
    multiple->append("milk", nullptr);
    multiple->append("sugar", nullptr);
    MenuCommand first("First", 23), second("Second", 23), third("Third", 23);
    auto* popup = new SelectionField(nullptr, &first, &form, true);
    popup->appendSelection(&first);
    popup->appendSelection(&second);
    popup->appendSelection(&third);
    auto* slider = new SliderItem(nullptr);
    slider->setMinValue("0");
    slider->setMaxValue("10");
    slider->setInterval("4");
    slider->setValue("42");
    EXPECT_EQ(slider->getValue(), "10") << "kept inside the range";
    slider->setValue("3x");
    EXPECT_EQ(slider->getValue(), "10") << "text that is not a number changes nothing";
    form.append(multiple);
    form.append(popup);
    form.append(slider);
    display->setCurrent(&form);

    press({Key::Ok, Key::Down, Key::Ok, Key::Ok});
    EXPECT_FALSE(multiple->isSelected(0) && multiple->isSelected(1));
    EXPECT_TRUE(multiple->isSelected(0));
    EXPECT_EQ(recorder.items().size(), 3u) << "every toggle is a finished change";

    recorder.clear();
    press({Key::Down, Key::Ok});
    EXPECT_TRUE(popup->isPopupOpen());
    EXPECT_EQ(snap()["screen"]["items"][1]["popup"]["focus"], 0);
    press({Key::Down, Key::Down, Key::Ok});
    EXPECT_EQ(popup->getSelectionIndex(), 2);
    EXPECT_EQ(popup->getSelectionCommand(), &third);
    EXPECT_EQ(recorder.items(), std::vector<Item*>{popup});
    press({Key::Left});
    EXPECT_EQ(popup->getSelectionIndex(), 1);

    recorder.clear();
    press({Key::Down, Key::Right, Key::Left, Key::Left, Key::Left, Key::Left});
    EXPECT_EQ(slider->getValue(), "0");
    EXPECT_EQ(recorder.items().size(), 3u) << "moves that change nothing at the ends are not reported";
    slider->setAutomatic(true);
    recorder.clear();
    press({Key::Right});
    EXPECT_EQ(slider->getValue(), "0") << "an automatic slider ignores the keys";
    ASSERT_EQ(recorder.types(), std::vector<int>{Command::RIGHT}) << "Right goes to the form instead";

    // The options field: Ok goes to the application with the form, browsing is not a change.
    MenuCommand select("Select", 35), back("Back", 15);
    auto* options = new SelectionField(nullptr, &select, &form, true);
    options->setInformAppOnOk(true);
    options->appendSelection(&select);
    options->appendSelection(&back);
    form.insertItem(options, 0);
    form.setSelected(options);
    recorder.clear();
    press({Key::Right, Key::Ok});
    EXPECT_TRUE(recorder.items().empty());
    ASSERT_EQ(recorder.types(), std::vector<int>{Command::OK});
    EXPECT_EQ(recorder.calls()[0].displayable, &form);
    EXPECT_EQ(options->getSelectionCommand(), &back);
}

TEST_F(DisplayTest, SoftKeysShowCommandsAndAnOptionsMenuForTheRest) {
    Form form;
    form.addCommandListener(&recorder);
    std::vector<std::unique_ptr<MenuCommand>> commands;
    auto* options = new SelectionField(nullptr, nullptr, &form, true);
    for (int i = 1; i <= 5; ++i) {
        commands.push_back(std::make_unique<MenuCommand>("c" + std::to_string(i), 30 + i));
        options->appendSelection(commands.back().get());
    }
    form.setFormOptions(options);
    form.append(textField("Name"));
    display->setCurrent(&form);

    EXPECT_EQ(snap()["softKeys"], nlohmann::json({"c1", "c2", "c3", "Options"}));
    press({Key::SoftKey2});
    ASSERT_EQ(recorder.calls().size(), 1u);
    EXPECT_EQ(recorder.calls()[0].command, commands[1].get());
    EXPECT_EQ(recorder.calls()[0].type, Command::SCREEN);
    EXPECT_EQ(recorder.calls()[0].displayable, &form);
    EXPECT_EQ(static_cast<MenuCommand*>(recorder.calls()[0].command)->getId(), 32);

    press({Key::SoftKey4});
    EXPECT_TRUE(form.isContextMenuDisplayed());
    EXPECT_EQ(snap()["screen"]["menu"]["entries"], nlohmann::json({"c4", "c5"}));
    press({Key::Down, Key::Ok});
    EXPECT_FALSE(form.isContextMenuDisplayed());
    ASSERT_EQ(recorder.calls().size(), 2u);
    EXPECT_EQ(recorder.calls()[1].command, commands[4].get());

    press({Key::SoftKey6});
    EXPECT_EQ(recorder.calls().size(), 2u) << "a key the phone does not have does nothing";
    press({Key::Hash});
    EXPECT_FALSE(form.isContextMenuDisplayed()) << "with soft keys # opens no menu";

    commands.erase(commands.begin());
    EXPECT_EQ(snap()["softKeys"], nlohmann::json({"c2", "c3", "c4", "c5"}))
        << "a deleted command leaves the keys";
}

TEST_F(DisplayTest, WithoutSoftKeyBarHashOpensTheBuiltInContextMenu) {
    makeDisplay(false);
    EXPECT_EQ(display->hasSoftKeyBar(), 0);
    TextBox box(false);
    box.addCommandListener(&recorder);
    MenuCommand select("Select", 35), exitCommand("Exit", 17);
    box.addCommand(&select);
    box.addCommand(&exitCommand);
    display->setCurrent(&box);
    EXPECT_TRUE(snap()["softKeys"].empty());
    EXPECT_FALSE(display->pressKey(Key::SoftKey1));

    press({Key::Hash});
    EXPECT_TRUE(box.isContextMenuDisplayed());
    EXPECT_EQ(box.getText(), "") << "the menu key types nothing";
    press({Key::Up, Key::Ok});
    ASSERT_EQ(recorder.calls().size(), 1u);
    EXPECT_EQ(recorder.calls()[0].command, &exitCommand) << "the menu wraps upwards to the last entry";
    EXPECT_EQ(recorder.calls()[0].displayable, &box);
    press({Key::Hash, Key::Back});
    EXPECT_FALSE(box.isContextMenuDisplayed());
    EXPECT_EQ(recorder.calls().size(), 1u);
}

TEST_F(DisplayTest, PopupsShowOverTheScreenAndTakeTheKeys) {
    List list(1);
    list.addCommandListener(&recorder);
    list.append("one|1|first");
    list.append("two||");
    display->setCurrent(&list);

    Command cancel(TranslationInfo("command.cancel"), Command::CANCEL);
    MenuCommand dismiss("Dismiss", 15);
    Alert alert("Careful", "Something happened", nullptr, ALERT_WARNING);
    alert.addCommandListener(&recorder);
    alert.addCommand(&dismiss);
    alert.addCommand(&cancel);
    display->setCurrent(&alert);
    EXPECT_EQ(display->getCurrent(), &alert);
    EXPECT_FALSE(display->isCurrentForKeyEvents(&list));
    auto shot = snap();
    EXPECT_EQ(shot["screen"]["kind"], "list");
    EXPECT_EQ(shot["screen"]["rows"][0]["columns"], nlohmann::json({"one", "1", "first"}));
    EXPECT_EQ(shot["screen"]["rows"][1]["columns"], nlohmann::json({"two"}));
    EXPECT_EQ(shot["popup"]["kind"], "alert");
    EXPECT_EQ(shot["popup"]["alertType"], 5);
    EXPECT_EQ(shot["softKeys"], nlohmann::json({"Dismiss", "Cancel", "", ""}));

    press({Key::Down, Key::Ok, Key::Back});
    ASSERT_EQ(recorder.calls().size(), 2u);
    EXPECT_EQ(recorder.calls()[0].command, &cancel);
    EXPECT_EQ(recorder.calls()[0].displayable, &alert);
    EXPECT_EQ(recorder.calls()[1].command, &dismiss) << "Back dismisses with the first command";

    display->setCurrent(nullptr);
    EXPECT_TRUE(snap()["screen"].is_null());
    display->setCurrent(&alert);
    EXPECT_EQ(snap()["screen"]["kind"], "list") << "the popup comes back over the last screen";

    PopupConfirm confirm(true);
    confirm.setState(1);
    confirm.addCommandListener(&recorder);
    MenuCommand back("Back", 15), stay("Cancel", 16);
    confirm.addCommand(&back);
    confirm.addCommand(&stay);
    display->setCurrent(&confirm);
    recorder.clear();
    press({Key::Down});
    EXPECT_EQ(confirm.getSelectedIndex(), 1);
    EXPECT_EQ(confirm.getSelectedCommand(), &stay);
    press({Key::Ok, Key::Back});
    ASSERT_EQ(recorder.calls().size(), 2u);
    EXPECT_EQ(recorder.calls()[0].command, &stay);
    EXPECT_EQ(recorder.calls()[0].displayable, &confirm);
    EXPECT_EQ(recorder.calls()[1].type, Command::BACK);

    display->setCurrent(&list);
    EXPECT_TRUE(snap()["popup"].is_null()) << "a full screen closes the popup";
    recorder.clear();
    press({Key::Down, Key::Ok, Key::Right, Key::Left, Key::Back});
    EXPECT_EQ(list.getSelectedIndex(), 1);
    EXPECT_EQ(recorder.types(),
              (std::vector<int>{Command::OK, Command::RIGHT, Command::SKIP_BACK, Command::BACK}));
}

TEST_F(DisplayTest, ListKindsTablesAndPlayersHandleTheirKeys) {
    ExclusiveList exclusive;
    exclusive.addCommandListener(&recorder);
    auto* options = new ListItem(TranslationInfo("list.options"), true);
    exclusive.append("a");
    exclusive.append("b");
    exclusive.insert(options, 0);
    options->setActiveFontColour(false);
    EXPECT_EQ(exclusive.getSelectedIndex(), 1) << "inserting above keeps the focused row";
    display->setCurrent(&exclusive);
    press({Key::Up});
    auto rows = snap()["screen"]["rows"];
    EXPECT_EQ(rows[0]["columns"][0], "Options");
    EXPECT_EQ(rows[0]["grey"], true);
    EXPECT_EQ(rows[0]["chosen"], true);

    MultipleList multiple;
    multiple.addCommandListener(&recorder);
    multiple.append("x");
    multiple.append("y");
    multiple.append("z");
    multiple.setSelectedFlags({true, false});
    display->setCurrent(&multiple);
    recorder.clear();
    press({Key::Down, Key::Ok, Key::Down, Key::Ok, Key::Ok});
    EXPECT_EQ(multiple.getSelectedFlags(), (std::list<bool>{true, true, false}));
    EXPECT_TRUE(recorder.calls().empty()) << "ticking is the list's own business";

    Table table(1, 2, true);
    table.addCommandListener(&recorder);
    table.setText(0, 0, "Name");
    table.setText(0, 5, "ignored");
    table.setWrapAround(false);
    for (int i = 0; i < 2; ++i) {
        auto* row = new TableItem(2, 2);
        row->setOwnerId(100 + i);
        row->setText(1, 1, "cell");
        row->setActiveFontColour(1, 1, false);
        row->setText(9, 9, "ignored");
        table.append(row);
    }
    display->setCurrent(&table);
    EXPECT_EQ(table.getSelected()->getOwnerId(), 100u);
    press({Key::Up});
    EXPECT_EQ(table.getSelected(), nullptr) << "above the first row the table has no focused row";
    press({Key::Down, Key::Down, Key::Down});
    EXPECT_EQ(table.getSelectedIndex(), 1);
    const auto screen = snap()["screen"];
    EXPECT_EQ(screen["header"]["lines"][0][0]["text"], "Name");
    EXPECT_EQ(screen["rows"][1]["lines"][1][1]["grey"], true);

    PopupPlayer player;
    player.addCommandListener(&recorder);
    player.setState(PLAYER_STOPPED, PLAYER_MODE_RECORD);
    player.setProgressBarMaxValue(50);
    player.setProgressBarValue(80);
    EXPECT_EQ(player.getProgressBarValue(), 50);
    display->setCurrent(&player);
    recorder.clear();
    press({Key::Ok});
    player.setState(PLAYER_PLAYING, PLAYER_MODE_CALL);
    press({Key::Ok, Key::Digit5, Key::Hash, Key::Back});
    const auto calls = recorder.calls();
    ASSERT_EQ(calls.size(), 5u);
    EXPECT_EQ(calls[0].command, PopupPlayer::RECORD());
    EXPECT_EQ(calls[1].type, Command::PAUSE);
    EXPECT_EQ(calls[2].type, Command::STOP);
    EXPECT_EQ(calls[3].command, PopupPlayer::CONFIRM());
    EXPECT_EQ(calls[4].type, Command::CANCEL);
}

TEST(DisplayImage, RealPicturesDecodeAndEverythingElseIsBrokenWithAReason) {
    auto make = [](const std::string& bytes) {
        return DisplayAPI::Image(bytes.data(), static_cast<int>(bytes.size()));
    };
    const DisplayAPI::Image png = make(TestPictures::png(258, 3));
    EXPECT_EQ(png.getKind(), "png");
    EXPECT_EQ(png.getWidth(), 258);
    EXPECT_EQ(png.getHeight(), 3);
    const DisplayAPI::Image jpeg = make(TestPictures::jpeg(64, 48));
    EXPECT_EQ(jpeg.getKind(), "jpeg");
    EXPECT_EQ(jpeg.getWidth(), 64);
    EXPECT_EQ(jpeg.getHeight(), 48);
    EXPECT_EQ(make(TestPictures::bmp(10, 7)).getKind(), "bmp");
    EXPECT_EQ(make(TestPictures::bmp(10, 7)).getHeight(), 7);
    EXPECT_EQ(make(TestPictures::gif()).getKind(), "gif");

    const std::string whole = TestPictures::png(40, 40);
    // The same bytes again take the first picture's verdict; a part of them is judged anew.
    const DisplayAPI::Image first = make(whole);
    const DisplayAPI::Image again = make(whole);
    EXPECT_EQ(again.getWidth(), 40);
    EXPECT_NE(again.data()->id, first.data()->id) << "each widget picture has its own id";
    const DisplayAPI::Image truncated = make(whole.substr(0, whole.size() / 2));
    EXPECT_TRUE(truncated.isBroken()) << "a header alone is no picture";
    EXPECT_NE(truncated.data()->problem.find("does not decode"), std::string::npos)
        << truncated.data()->problem;
    // Headers claiming more pixels than the bound are refused before any pixel memory is taken.
    EXPECT_TRUE(make(TestPictures::pngClaiming(30000, 30000)).isBroken());
    const DisplayAPI::Image huge = make(TestPictures::pngClaiming(5000, 3000));
    EXPECT_TRUE(huge.isBroken());
    EXPECT_EQ(huge.data()->problem, "a picture of 5000x3000 pixels is too large");
    EXPECT_TRUE(DisplayAPI::Image("text, not a picture", 19).isBroken());
    EXPECT_TRUE(DisplayAPI::Image(nullptr, 5).isBroken());
    EXPECT_TRUE(DisplayAPI::Image(std::string()).isBroken());

    // A picture is found by its id while something holds it, and not after.
    unsigned long id = 0;
    {
        const DisplayAPI::Image held = make(TestPictures::gif());
        id = held.data()->id;
        ASSERT_NE(DisplayAPI::Image::find(id), nullptr);
        EXPECT_EQ(DisplayAPI::describeImage(held.data())["url"], "/api/pictures/" + std::to_string(id));
    }
    EXPECT_EQ(DisplayAPI::Image::find(id), nullptr);
}

// Files come only from inside the phone's folders: no way out by "..", links, devices or folders.
TEST(DisplayImage, FilesAreRegularFilesInsideThePhonesFolders) {
    namespace fs = std::filesystem;
    const fs::path root = fs::temp_directory_path() / ("agp-pictures-" + std::to_string(::getpid()));
    fs::create_directories(root / "files" / "sub");
    fs::create_directories(root / "skin" / "05_Icons");
    auto write = [](const fs::path& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    };
    write(root / "files" / "sub" / "logo.png", TestPictures::png(12, 8));
    write(root / "skin" / "05_Icons" / "05_Phone.png", TestPictures::png(24, 24));
    write(root / "secret.png", TestPictures::png(5, 5));
    write(root / "files" / "big.bmp", TestPictures::bmp(500, 500));
    fs::create_symlink(root / "secret.png", root / "files" / "link.png");
    fs::create_symlink("/dev/zero", root / "files" / "zero.png");
    DisplayAPI::Image::setFolders((root / "files").string(), (root / "skin").string());

    const DisplayAPI::Image logo(std::string("/sub/logo.png"));
    EXPECT_EQ(logo.getKind(), "png");
    EXPECT_EQ(logo.getWidth(), 12);
    EXPECT_EQ(DisplayAPI::Image(std::string("sub/logo.png")).getHeight(), 8);
    EXPECT_EQ(DisplayAPI::Image(std::string(":/images/Skin1_CS/05_Icons/05_Phone.png")).getWidth(), 24);
    EXPECT_EQ(DisplayAPI::Image(std::string(":/images/Skin2_WG/05_Icons/05_Phone.png")).getWidth(), 24)
        << "every skin shares the one icon set";
    for (const char* bad :
         {"../secret.png", "link.png", "zero.png", "/../../../../dev/zero", "sub", "none.png", "big.bmp",
          ":/images/Skin1_CS/05_Icons/none.png", ":/images/Skin1_CS/../../secret.png", ":/images/nothing"}) {
        const DisplayAPI::Image image{std::string(bad)};
        EXPECT_TRUE(image.isBroken()) << bad;
        EXPECT_FALSE(image.data()->problem.empty()) << bad;
    }
    DisplayAPI::Image::setFolders("", "");
    EXPECT_TRUE(DisplayAPI::Image(std::string("/sub/logo.png")).isBroken()) << "a phone without files folder";
    fs::remove_all(root);
}

namespace {

// Counts live fields, to see who deletes them.
struct CountedField : TextField {
    static int alive;
    CountedField() : TextField(nullptr, 0, nullptr, TextField::ANY, false) { ++alive; }
    ~CountedField() override { --alive; }
};
int CountedField::alive = 0;

struct CountedOptions : SelectionField {
    static int alive;
    CountedOptions() : SelectionField(nullptr, nullptr, nullptr, true) { ++alive; }
    ~CountedOptions() override { --alive; }
};
int CountedOptions::alive = 0;

} // namespace

TEST_F(DisplayTest, FormsOwnTheirItemsAndOptionsAndLabelsFollowTheLanguage) {
    Translator translator("test");
    translator.setLanguage("en");
    {
        Form form;
        form.addCommandListener(&recorder);
        auto* field = new CountedField();
        const TranslationInfo optionsKey("selectionfield.options", &translator);
        field->setLabel(optionsKey);
        form.append(field);
        form.append(new CountedField());
        auto* button = new ImageItem("Press", nullptr, "[button]");
        button->setInformAppOnOk(true);
        form.append(button);
        form.append(field); // already in the form: refused
        EXPECT_EQ(form.size(), 3);
        form.setFormOptions(new CountedOptions());
        form.setFormOptions(new CountedOptions());
        EXPECT_EQ(CountedOptions::alive, 1) << "a replaced options field is deleted";
        display->setCurrent(&form);
        EXPECT_EQ(snap()["screen"]["items"][0]["label"], "Options");
        translator.setLanguage("de");
        EXPECT_EQ(snap()["screen"]["items"][0]["label"], "Optionen");

        form.setSelected(button);
        press({Key::Ok});
        ASSERT_EQ(recorder.types(), std::vector<int>{Command::OK});
        EXPECT_EQ(recorder.calls()[0].displayable, &form) << "a button's Ok is reported with its form";
        EXPECT_EQ(snap()["screen"]["items"][2]["altText"], "[button]");
    }
    EXPECT_EQ(CountedField::alive, 0);
    EXPECT_EQ(CountedOptions::alive, 0);
}

TEST_F(DisplayTest, TabsShowTheirWidgetsSoftKeysAndPopupsOverTheTabScreen) {
    TabScreen tabs(2, 1);
    ExclusiveList list;
    list.addCommandListener(&recorder);
    list.append("first");
    list.append("second");
    MenuCommand options("Back", 15), details("Details", 34);
    list.addCommand(&options);
    list.addItemCommand(&details);
    Form other;
    tabs.addTab("List", &list, nullptr);
    tabs.addTab("Form", &other, nullptr);
    display->setCurrent(&tabs);
    EXPECT_EQ(snap()["softKeys"], nlohmann::json({"Back", "Details", "", ""})) << "item commands follow";
    press({Key::Down, Key::SoftKey2});
    ASSERT_EQ(recorder.calls().size(), 1u);
    EXPECT_EQ(recorder.calls()[0].command, &details);
    EXPECT_EQ(recorder.calls()[0].displayable, &list);
    EXPECT_EQ(list.getSelectedIndex(), 1);

    Alert alert("Note", "Over the tabs", nullptr, ALERT_INFO);
    alert.addCommandListener(&recorder);
    Command dismiss("OK", Command::OK);
    alert.addCommand(&dismiss);
    display->setCurrent(&alert);
    const auto shot = snap();
    EXPECT_EQ(shot["tabBar"]["current"], 0);
    EXPECT_EQ(shot["screen"]["kind"], "exclusiveList");
    EXPECT_EQ(shot["screen"]["rows"][1]["chosen"], true);
    EXPECT_EQ(shot["popup"]["text"], "Over the tabs");
    press({Key::Up, Key::Ok});
    EXPECT_EQ(list.getSelectedIndex(), 1) << "the popup takes the keys";
    EXPECT_EQ(recorder.calls().back().command, &dismiss);
    display->setCurrent(&tabs);
    EXPECT_TRUE(snap()["popup"].is_null());
}
