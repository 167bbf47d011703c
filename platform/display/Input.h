// The phone's keys and what each widget does with them (the key table of the widget library).
#pragma once

#include <string>

// Keys reach the library through Display::pressKey (and text through Display::typeText). A key goes
// to the popup when one is up, else to the screen; in a tab screen to the tab bar while it has the
// focus, else to the current tab's widget. Every resulting callback is queued on the event thread.
// "cmd t" below means: commandAction(Command::standard(t) or the named command, widget) on the
// widget's command listeners; "item" means itemStateChanged(item) on the form's item listeners.
//
// Every widget, before the table below:
//   soft-key bar:  SoftKey k      the command on key k (its own type). With more commands than
//                                 keys, the last key is "Options" and opens the widget's menu of
//                                 the remaining commands.
//   no soft keys:  #              opens the widget's built-in context menu of its commands
//                                 (isContextMenuDisplayed() is true while it is open).
//   menu open:     Up/Down        move in the menu (wrapping); Ok: the entry's command; Back: close.
//
// Widget        | Up / Down                     | Left / Right                 | Ok                        |
// Back
// --------------+-------------------------------+------------------------------+---------------------------+---------
// Form          | focus item (and choice rows); | slider -/+ (item), selection | editable text: edit/finish |
// edit:
//               | cmd 7 CURRENT_ITEM_CHANGED    | field entry -/+ (item unless | (item); choice: toggle     |
//               undo; | per move; an edit in progress | it informs on Ok); editing:  | (item); popup
//               selection:   | else | finishes first (item)         | Left deletes; Right: cmd 9   | open;
//               informAppOnOk: cmd 6 | cmd 1 |                               |                              |
//               with the form              |
// List          | focus row                     | Left: cmd 13, Right: cmd 9   | cmd 6                      |
// cmd 1 ExclusiveList | focus row (= the choice)      | Left: cmd 13, Right: cmd 9   | cmd 6 | cmd 1
// MultipleList  | focus row                     | Left: cmd 13, Right: cmd 9   | toggles the tick           |
// cmd 1 Table         | focus row; Up from the first  | Left: cmd 13, Right: cmd 9   | cmd 6 | cmd 1
//               | row without wrap: no row      |                              |                            |
// TextBox       | -                             | Left deletes, Right: cmd 9   | cmd 6                      |
// cmd 1 Alert         | move between its commands     | -                            | highlighted command |
// first command PopupConfirm, | move the highlight (wrapping) | Left: cmd 13                 | highlighted
// entry's command| cmd 1 ContextMenu   |                               |                              | |
// PopupPlayer   | Up: cmd 13, Down: cmd 14      | Left: cmd 1 (rewind),        | PLAY()/RECORD() when       |
// cmd 2
//               |                               | Right: cmd 9 (forward)       | stopped, else cmd 15       |
// Tab bar       | Down: leave the bar, cmd 17   | cmd 18 / cmd 19 (the app     | leave the bar, cmd 17      |
// -
//               |                               | switches with nextTab)       |                            |
//
// Player digits: 5 cmd 8 (stop), 0 cmd 7 (call), * cmd 12 (delete), # CONFIRM().
// Up on the first focusable row or item (or on a widget without rows) of a widget marked
// setUsedWithTab(true, tabScreen) enters that tab bar and reports cmd 16 with the tab screen to the
// tab screen's listeners; marked with a null tab screen it reports cmd 16 with the widget itself.
// Focus movement wraps unless setWrapAround(false); items that cannot take the focus are skipped.
// Digits, * and #: typed into the text being edited (form text field, text box); digits only in
// numeric, phone number and date/time fields. A digit, * or # that no widget used goes to the
// keypad observer (codes: 1..9, 10 for *, 11 for #, 0 for 0) while keypad event sending is off.
// Keys are ignored while the display is hidden.

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
