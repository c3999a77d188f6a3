#include "Platform/X11/KeyPositions.h"

namespace quillon::x11 {

namespace {

// Virtual key codes: kVK_ in HIToolbox/Events.h. Names: the keycodes files of xkeyboard-config, where the letter tells
// the row (E digits, D, C, B letters from the top) and the number the place in it.
constexpr KeyPosition positions[] = {
    // kVK_ANSI_: the typewriter keys, row by row, named after the US layout
    {50, "TLDE"}, // Grave
    {18, "AE01"},
    {19, "AE02"},
    {20, "AE03"},
    {21, "AE04"},
    {23, "AE05"},
    {22, "AE06"},
    {26, "AE07"},
    {28, "AE08"},
    {25, "AE09"},
    {29, "AE10"}, // 0
    {27, "AE11"}, // Minus
    {24, "AE12"}, // Equal
    {12, "AD01"}, // Q
    {13, "AD02"},
    {14, "AD03"},
    {15, "AD04"},
    {17, "AD05"},
    {16, "AD06"},
    {32, "AD07"},
    {34, "AD08"},
    {31, "AD09"},
    {35, "AD10"}, // P
    {33, "AD11"}, // LeftBracket
    {30, "AD12"}, // RightBracket
    {42, "BKSL"}, // Backslash; beside Return on ISO keyboards
    {0, "AC01"},  // A
    {1, "AC02"},
    {2, "AC03"},
    {3, "AC04"},
    {5, "AC05"},
    {4, "AC06"},
    {38, "AC07"},
    {40, "AC08"},
    {37, "AC09"}, // L
    {41, "AC10"}, // Semicolon
    {39, "AC11"}, // Quote
    {6, "AB01"},  // Z
    {7, "AB02"},
    {8, "AB03"},
    {9, "AB04"},
    {11, "AB05"},
    {45, "AB06"},
    {46, "AB07"}, // M
    {43, "AB08"}, // Comma
    {47, "AB09"}, // Period
    {44, "AB10"}, // Slash
    // The key that ISO keyboards have beside the left Shift, and those of Japanese ones
    {10, "LSGT"},  // kVK_ISO_Section
    {93, "AE13"},  // kVK_JIS_Yen
    {94, "AB11"},  // kVK_JIS_Underscore
    {95, "I129"},  // kVK_JIS_KeypadComma, as USB keyboards send it
    {95, "JPCM"},  // the same, as others do
    {102, "MUHE"}, // kVK_JIS_Eisu, left of the space bar
    {102, "NFER"},
    {104, "HENK"}, // kVK_JIS_Kana, right of the space bar
    {104, "XFER"},
    // Control keys
    {36, "RTRN"},
    {48, "TAB"},
    {49, "SPCE"},
    {51, "BKSP"}, // kVK_Delete
    {53, "ESC"},
    {110, "COMP"}, // kVK_ContextualMenu
    {110, "MENU"},
    // Navigation
    {114, "INS"}, // kVK_Help, which has Insert's place
    {115, "HOME"},
    {116, "PGUP"},
    {117, "DELE"}, // kVK_ForwardDelete
    {119, "END"},
    {121, "PGDN"},
    {123, "LEFT"},
    {124, "RGHT"},
    {125, "DOWN"},
    {126, "UP"},
    // Function keys
    {122, "FK01"},
    {120, "FK02"},
    {99, "FK03"},
    {118, "FK04"},
    {96, "FK05"},
    {97, "FK06"},
    {98, "FK07"},
    {100, "FK08"},
    {101, "FK09"},
    {109, "FK10"},
    {103, "FK11"},
    {111, "FK12"},
    {105, "FK13"},
    {107, "FK14"},
    {113, "FK15"},
    {106, "FK16"},
    {64, "FK17"},
    {79, "FK18"},
    {80, "FK19"},
    {90, "FK20"},
    // kVK_ANSI_Keypad
    {71, "NMLK"}, // Clear, which has Num Lock's place
    {81, "KPEQ"},
    {75, "KPDV"},
    {67, "KPMU"},
    {78, "KPSU"},
    {69, "KPAD"},
    {76, "KPEN"},
    {65, "KPDL"}, // Decimal
    {82, "KP0"},
    {83, "KP1"},
    {84, "KP2"},
    {85, "KP3"},
    {86, "KP4"},
    {87, "KP5"},
    {88, "KP6"},
    {89, "KP7"},
    {91, "KP8"},
    {92, "KP9"},
    // Sound
    {72, "VOL+"},
    {73, "VOL-"},
    {74, "MUTE"},
};

} // namespace

std::span<const KeyPosition> keyPositions() {
    return positions;
}

} // namespace quillon::x11
