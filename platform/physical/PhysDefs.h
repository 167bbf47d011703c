// Types of the phone's physical interface: keys, hook switch, jacks and subscription groups.
#pragma once

struct PhysDefs {
    enum keyFunctionType {
        KeyFunctionNone = 0,
        KeyFunctionDialpad = 1, // the twelve keys 0-9, * and #
        KeyFunctionSoftKey = 2,
        KeyFunctionFixedKey = 3, // application and feature keys
    };

    // Keypad subscribers receive only KeyPressed (one event per press); the other values are
    // reserved for subscribers of every transition.
    enum actionType {
        KeyPressed = 1,
        KeyReleased = 2,
        KeyLongPressed = 3,
        HookOff = 4,
        HookOn = 5,
    };

    enum plugIdentifier {
        PlugHeadset = 1,
        PlugHandset = 2,
        PlugUsb = 3,
    };

    enum plugStatus {
        PlugRemoved = 0,
        PlugInserted = 1,
    };

    // A subscription group names what an observer wants: the device class (2 the keypad), the
    // kind of event (1 button events) and the delivery (1 once per press, 2 every transition).
    struct SubscriptionGrp {
        int deviceClass = 0;
        int eventKind = 0;
        int delivery = 0;
    };

    static constexpr int DeviceClassKeypad = 2;
    static constexpr int EventKindButtons = 1;
    static constexpr int DeliveryOncePerPress = 1;

    // Keypad button events, once per press: {2, 1, 1}.
    struct KeyGrpButtonEvents : SubscriptionGrp {
        KeyGrpButtonEvents() : SubscriptionGrp{DeviceClassKeypad, EventKindButtons, DeliveryOncePerPress} {}
    };
};
