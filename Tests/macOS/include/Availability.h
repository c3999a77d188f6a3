// When an interface appeared. What carries no API_AVAILABLE is older than macOS 11.
#pragma once

#define QUILLON_PLATFORM_macos(version) macos, introduced = version
#define API_AVAILABLE(platform) __attribute__((availability(QUILLON_PLATFORM_##platform)))
