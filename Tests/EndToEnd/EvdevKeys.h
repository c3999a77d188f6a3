#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace quillon::e2e {

// X key codes of the test server's keyboard: the numbers of linux/input-event-codes.h plus 8.
inline constexpr std::uint8_t escapeKey = 9;
inline constexpr std::uint8_t tabKey = 23;
inline constexpr std::uint8_t returnKey = 36;
inline constexpr std::uint8_t controlKey = 37;
inline constexpr std::uint8_t shiftKey = 50;
inline constexpr std::uint8_t altKey = 64;
inline constexpr std::uint8_t spaceKey = 65;
inline constexpr std::uint8_t capsLockKey = 66;
inline constexpr std::uint8_t numLockKey = 77;
inline constexpr std::uint8_t superKey = 133;
inline constexpr std::uint8_t pKey = 33;
inline constexpr std::uint8_t oKey = 32;
inline constexpr std::uint8_t kKey = 45;
inline constexpr std::uint8_t f5Key = 71;
inline constexpr std::uint8_t downKey = 116;

/// The X key code of the key that has this virtual key code on macOS. Keys that follow each other on the keyboard do
/// so in evdev's numbers.
inline std::uint8_t evdevKeyCode(std::uint16_t virtualKeyCode) {
    static constexpr std::array<std::pair<std::uint8_t, std::uint16_t>, 110> keys{{
        {9, 53},                                                                                        // escape
        {10, 18},   {11, 19},   {12, 20},   {13, 21},   {14, 23},   {15, 22},                           // 1 to 6
        {16, 26},   {17, 28},   {18, 25},   {19, 29},   {20, 27},   {21, 24},   {22, 51},               // 7 to ⌫
        {23, 48},   {24, 12},   {25, 13},   {26, 14},   {27, 15},   {28, 17},   {29, 16},               // ⇥ to Y
        {30, 32},   {31, 34},   {32, 31},   {33, 35},   {34, 33},   {35, 30},   {36, 36},               // U to ↩
        {38, 0},    {39, 1},    {40, 2},    {41, 3},    {42, 5},    {43, 4},                            // A to H
        {44, 38},   {45, 40},   {46, 37},   {47, 41},   {48, 39},   {49, 50},   {51, 42},               // J to \.
        {52, 6},    {53, 7},    {54, 8},    {55, 9},    {56, 11},                                       // Z to B
        {57, 45},   {58, 46},   {59, 43},   {60, 47},   {61, 44},   {65, 49},                           // N to space
        {67, 122},  {68, 120},  {69, 99},   {70, 118},  {71, 96},   {72, 97},                           // F1 to F6
        {73, 98},   {74, 100},  {75, 101},  {76, 109},  {95, 103},  {96, 111},                          // F7 to F12
        {191, 105}, {192, 107}, {193, 113}, {194, 106}, {195, 64},  {196, 79},  {197, 80},  {198, 90},  // F13 to F20
        {63, 67},   {77, 71},   {79, 89},   {80, 91},   {81, 92},   {82, 78},   {83, 86},   {84, 87},   // keypad
        {85, 88},   {86, 69},   {87, 83},   {88, 84},   {89, 85},   {90, 82},   {91, 65},   {104, 76},  // keypad
        {106, 75},  {125, 81},  {129, 95},                                                              // keypad
        {94, 10},   {97, 94},   {100, 104}, {102, 102}, {132, 93},                                      // ISO, JIS
        {110, 115}, {111, 126}, {112, 116}, {113, 123}, {114, 124}, {115, 119}, {116, 125}, {117, 121}, // navigation
        {118, 114}, {119, 117}, {121, 74},  {122, 73},  {123, 72},  {135, 110},
    }};
    for (const auto& [key, code] : keys) {
        if (code == virtualKeyCode) {
            return key;
        }
    }
    throw std::logic_error("no key has the virtual key code " + std::to_string(virtualKeyCode));
}

} // namespace quillon::e2e
