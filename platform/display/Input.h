// The phone's keys and what each widget does with them (the key table of the widget library).
#pragma once

#include <string>

// clang-format off
// Keys reach the library through Display::pressKey (and text through Display::typeText). A key goes
// to the popup when one is up, else to the screen; in a tab screen to the tab bar while it has the
// focus, else to the current tab's widget. Every resulting callback is queued on the event thread.
// "cmd t" means commandAction(Command::standard(t), widget) on the widget's command listeners (or
// the named command); "item" means itemStateChanged(item) on the form's item state listeners.
//
// Every widget first:
//   soft-key bar     SoftKey k: the command on key k (its own type). With more commands than keys
//                    the last key is "Options" and opens a menu of the remaining commands.
//   no soft keys     #: opens the built-in context menu of the widget's commands, when it has any
//                    (isContextMenuDisplayed() is true while it is open).
//   menu open        Up/Down move (wrapping), Ok delivers the entry's command, Back or Left closes.
//
// Widget         Up / Down                 Left / Right               Ok                       Back
// -------------  ------------------------  -------------------------  -----------------------  -----------
// Form           focus the next item or    focused slider -/+ (item); informAppOnOk item:      edit: undo;
//                choice row; cmd 7         selection field -/+ (item  cmd 6 with the form;     else cmd 1
//                CURRENT_ITEM_CHANGED per  unless it informs on Ok);  text: start/finish edit
//                item move; finishes an    editing: Left deletes;     (item); choice: toggle
//                edit first (item)         else Right: cmd 9          (item); popup field: open
// List           focus row                 cmd 13 / cmd 9             cmd 6                    cmd 1
// ExclusiveList  focus row (the choice)    cmd 13 / cmd 9             cmd 6                    cmd 1
// MultipleList   focus row                 cmd 13 / cmd 9             toggle the row's tick    cmd 1
// Table          focus row; without wrap,  cmd 13 / cmd 9             cmd 6                    cmd 1
//                Up from row 0: no row
// TextBox        -                         Left deletes / cmd 9       cmd 6                    cmd 1
// Alert          highlight a command       -                          highlighted command      first command
// PopupConfirm,  highlight (wrapping)      Left: cmd 13               highlighted entry's      cmd 1
// ContextMenu                                                         command
// PopupPlayer    cmd 13 / cmd 14           cmd 1 (rewind) / cmd 9     PLAY() or RECORD() when  cmd 2
//                                          (forward)                  stopped, else cmd 15
// Tab bar        Up: cmd 16 with the tab   cmd 18 / cmd 19 (the app   leave, cmd 17            -
//                screen (leave upwards);   switches with nextTab)
//                Down: leave, cmd 17
//
// Player digits: 5 cmd 8 (stop), 0 cmd 7 (call), * cmd 12 (delete), # CONFIRM().
// Up on the first focusable item or row (or on a widget without rows) of a widget marked
// setUsedWithTab(true, tabScreen) enters that tab bar and reports cmd 16 with that widget to the
// tab screen's listeners; marked with a null tab screen, it reports cmd 16 with the widget itself.
// Focus movement wraps unless setWrapAround(false); items that cannot take the focus are skipped.
// Digits, * and #: typed into the text being edited (form text field, text box); digits only in
// numeric fields, digits and separators in date and time fields. A digit, * or # that no widget
// used goes to the keypad observer (1..9, 10 for *, 11 for #, 0 for 0) while keypad event sending
// is off. Keys are ignored while the display is hidden.
// clang-format on

namespace DisplayAPI {

enum class Key {
    SoftKey1,
    SoftKey2,
    SoftKey3,
    SoftKey4,
    SoftKey5,
    SoftKey6,
    Up,
    Down,
    Left,
    Right,
    Ok,
    Back,
    Digit0,
    Digit1,
    Digit2,
    Digit3,
    Digit4,
    Digit5,
    Digit6,
    Digit7,
    Digit8,
    Digit9,
    Star,
    Hash,
};

// Soft key n, counted from 1; out-of-range numbers give SoftKey1.
Key softKey(int number);
// 1..6 for a soft key, 0 for any other key.
int softKeyNumber(Key key);
// The character a digit, * or # key types; 0 for other keys.
char keyCharacter(Key key);
// The keypad code of a digit, * or # key (1..9, 10 for *, 11 for #, 0 for 0); -1 for other keys.
int keypadCode(Key key);
// Names used by the host's control interface: "softkey1".."softkey6", "up", "down", "left",
// "right", "ok", "back", "0".."9", "*", "#".
const char* keyName(Key key);
bool keyFromName(const std::string& name, Key& key);

} // namespace DisplayAPI
