// Availability attributes, as the SDK's <os/availability.h> declares them
// (one platform, macOS): an API introduced after the deployment target and
// used without `if (@available(macOS N, *))` is an error under
// -Wunguarded-availability-new.
#pragma once

#define __API_AVAILABLE_PLATFORM_macos(version) macos, introduced = version
#define __API_AVAILABLE_ONE(platform) __attribute__((availability(__API_AVAILABLE_PLATFORM_##platform)))
#define API_AVAILABLE(platform) __API_AVAILABLE_ONE(platform)
