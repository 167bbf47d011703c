// The unit of work of the request pipeline: requests, pushes, downloads, traces and user commands.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "AGPTypes.h"
#include "display/Command.h"
#include "display/Displayable.h"

class AGPMessage {
public:
    enum MessageType : std::int32_t {
        Unknown = 0,
        UrlRequest_XML = 1,
        UrlRequest_XML_cache_expired_back = 2,
        UrlRequest_XML_cache_expired_screenId = 3,
        UrlRequest_XML_push_active = 4,
        UrlRequest_XML_push_queue = 5,
        UrlRequest_XML_push_indicate = 6,
        UrlRequest_XML_push_force = 7,
        UrlRequest_Exit = 8,
        UrlRequest_Remote_Trace = 9,
        UrlRequest_Image = 10,
        UrlRequest_Display_Error = 11,
        KeyPressed = 12,
        Command_Error = 14,
        Command_Back = 15,
        Command_Cancel = 16,
        Command_Exit = 17,
        Command_Help = 18,
        Command_Item = 19,
        Command_OK = 20,
        Command_Screen = 21,
        Command_Stop = 22,
        Command_Right = 23,
        Command_Timer = 24,
        Command_Save = 25,
        Command_Delete = 26,
        Command_Skip_Back = 27,
        Command_Skip_Right = 28,
        Command_Pause = 29,
        Command_Tabbar_Active = 30,
        Command_Tabbar_Inactive = 31,
        Command_Tab_Back = 32,
        Command_Tab_Forward = 33,
        Command_Action = 34,
        Command_Select = 35,
        Command_Update = 36,
        Command_Dismiss_context_menu = 37,
        Command_Screen_By_ID = 38,
        Command_Previous_Screen = 39,
        Command_Item_state_changed = 40
    };

    enum Priority : std::int32_t { Low = 0, Mid = 1, High = 2 };

    AGPMessage() = default;
    // Priority follows the type: Unknown is Low, error display and key presses High, the rest Mid.
    AGPMessage(MessageType type, std::string content);

    // Widget command type 0..19 to message type 14..33; anything else to Unknown.
    static MessageType translateCommandType(int commandType);
    static std::string getMessageTypeString(MessageType type);
    std::string getMessageTypeString() const { return getMessageTypeString(type); }
    std::string getMessagePrioString() const;

    // Records the widget and command a listener was told about, with watches on their lives:
    // call only inside the listener, while both are guaranteed alive.
    void setWidgets(DisplayAPI::Command* widgetCommand, DisplayAPI::Displayable* widget);
    // False when a widget or command recorded by setWidgets has been deleted since; the queue
    // thread checks this before an element sees the pointers (it deletes its own widgets only on
    // that same thread, so they stay valid while it processes the message).
    bool widgetsAlive() const;

    MessageType type = Unknown;
    std::uint32_t id = 0;
    std::int32_t priority = Low;
    AGPId agpId = 0;
    std::string label;
    std::string content;
    std::string data;
    DisplayAPI::Command* command = nullptr;
    DisplayAPI::Displayable* displayable = nullptr;
    bool bringToFront = true;
    // Work that another thread hands to the queue's thread because it touches that queue's
    // elements, which only that thread may use; run instead of processing the message.
    std::function<void()> task;

private:
    bool mWatched = false;
    DisplayAPI::core::Ref<DisplayAPI::Command> mCommandLife;
    DisplayAPI::core::Ref<DisplayAPI::Displayable> mDisplayableLife;
};

// Queue order of the max-heap: higher priority first, and first in, first out within a priority.
bool operator<(const AGPMessage& a, const AGPMessage& b);
