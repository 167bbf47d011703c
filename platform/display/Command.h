// A command the user can trigger on a widget: a label and a type, delivered back by identity.
#pragma once

#include <optional>
#include <string>

#include "display/Core.h"
#include "text/TranslationInfo.h"

namespace DisplayAPI {

class Command {
public:
    // The numbers are part of the library's interface: applications translate them.
    enum Type {
        ERROR = 0,
        BACK = 1,
        CANCEL = 2,
        EXIT = 3,
        HELP = 4,
        ITEM = 5,
        OK = 6,
        SCREEN = 7, // also the type of every MenuCommand
        STOP = 8,
        RIGHT = 9,
        TIMER = 10,
        SAVE = 11,
        DELETE = 12,
        SKIP_BACK = 13,
        SKIP_RIGHT = 14,
        PAUSE = 15,
        TABBAR_ACTIVE = 16,
        TABBAR_INACTIVE = 17,
        TAB_BACK = 18,
        TAB_FORWARD = 19,
    };

    Command(const std::string& label, Type type);
    Command(const TranslationInfo& label, Type type);
    // Detaches the command from every widget, menu, timer and selection field that holds it, and
    // waits while a listener on another thread is being told about it.
    virtual ~Command();
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    // Whether `command` is a live command (a deleted one is no longer known).
    static bool exists(const Command* command);
    // The library's own command of a type, for keys that stand for a type rather than for a
    // command the application added (OK, Back, Right, the tab-bar reports). Never deleted.
    static Command* standard(Type type);

    Type getType() const;
    // The label as shown (translated when it was given as a TranslationInfo).
    std::string getBasicText() const;
    std::string getLabel() const { return getBasicText(); }
    void setOwnerId(unsigned long id);
    unsigned long getOwnerId() const;

    // A watch on this command that tells later, on any thread, whether it is still alive.
    core::Ref<Command> ref() {
        core::Lock lock(core::mutex()); // another thread may be ending the life right now
        return core::Ref<Command>(this, mLife);
    }

private:
    void registerLive();

    std::string mLabel;
    std::optional<TranslationInfo> mTranslatedLabel;
    Type mType;
    unsigned long mOwnerId = 0;
    core::Lifetime mLife;
};

} // namespace DisplayAPI
